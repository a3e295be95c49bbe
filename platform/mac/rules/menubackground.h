#pragma once

#include "platform/qt/panelbackground.h"
#include "platform/rect.h"

#include <QRect>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

namespace brimlet {

/// The background of the menu-bar panel, with round corners in the content's window colour. The
/// content covers it.
class MenuBackground final : public QWidget {
public:
    /// Takes ownership of the content. `cancelled` is called for Escape and other cancel keys,
    /// `changed` when the content's size hint may have changed, and `reshaped` after the background
    /// was first painted in a new size.
    MenuBackground(std::unique_ptr<QWidget> content, RoundedPath roundedPath,
                   std::function<void()> cancelled, std::function<void()> changed,
                   std::function<void()> reshaped);

    [[nodiscard]] QSize sizeHint() const override { return m_content->sizeHint(); }

    /// Sets the status item's place, in global points; absent when unknown. `fit` places beside it.
    void setItem(const std::optional<Rect>& item);

    /// Shows the content, to be placed beside the status item (as for `setItem`). Focus starts
    /// before the first control, so that no key activates one by accident.
    void appear(const std::optional<Rect>& item);

    /// Resizes to the content's size hint, limited by the screen, and returns the window's frame in
    /// global points; absent without a screen.
    [[nodiscard]] std::optional<Rect> fit();

protected:
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    QWidget* m_content;
    RoundedPath m_roundedPath;
    std::optional<QRect> m_item; ///< In Qt's space.
    std::function<void()> m_cancelled;
    std::function<void()> m_changed;
    std::function<void()> m_reshaped;
    bool m_isReshaped = false; ///< Whether it was resized since it was last painted.
};

} // namespace brimlet
