#pragma once

#include "platform/rect.h"

#include <QRect>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

namespace brimlet {

/// The ground of the menu-bar panel: the content's colour with round corners, and the content on
/// it.
class MenuGround final : public QWidget {
public:
    /// Takes the content as its child. `cancelled` is called for Escape and its like, `changed`
    /// when the content wants another size, `reshaped` after the ground was painted in one.
    MenuGround(std::unique_ptr<QWidget> content, std::function<void()> cancelled,
               std::function<void()> changed, std::function<void()> reshaped);

    [[nodiscard]] QSize sizeHint() const override { return m_content->sizeHint(); }

    /// Shows the content, for a place beside the status item (global points). The keyboard begins
    /// above the first control, so that no key presses one by accident.
    void appear(const std::optional<Rect>& item);

    /// Takes the size that fits there, and tells where the window has to be, in global points;
    /// absent without a screen.
    [[nodiscard]] std::optional<Rect> fit();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* m_content;
    std::optional<QRect> m_item; ///< In Qt's space.
    std::function<void()> m_cancelled;
    std::function<void()> m_changed;
    std::function<void()> m_reshaped;
    bool m_isReshaped = false; ///< Since it was last painted.
};

} // namespace brimlet
