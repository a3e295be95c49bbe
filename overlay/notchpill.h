#pragma once

#include "creative/carradioline.h"
#include "creative/creativeenvironment.h"
#include "creative/creativemark.h"
#include "host/assignment.h"

#include <QPainterPath>
#include <QWidget>

namespace brimlet {

class PixelSpace;

/// One black capsule beside the notch: a creative's mark and its line of text. The text moves only
/// while the pill is on screen; the picture loads at any time.
class NotchPill final : public QWidget {
    Q_OBJECT

public:
    /// What `environment` refers to outlives the pill.
    NotchPill(const CreativeEnvironment& environment, QWidget* parent);

    /// Places the capsule in the parent, exactly: its edges may be inside a point, and are rounded
    /// to pixels when it is painted.
    void setFrame(const QRectF& frame);
    /// Without a creative the pill forgets its picture. Only a clickable pill accepts clicks.
    void setCreative(const std::optional<SlotCreative>& creative, bool isClickable);

    [[nodiscard]] const std::optional<SlotCreative>& creative() const { return m_creative; }
    [[nodiscard]] bool isClickable() const { return m_isClickable; }
    /// The line's text as it is now.
    [[nodiscard]] TextStrip strip() { return m_line.strip(); }
    /// Advances a scrolling text to its position at this time without emitting `moved`; returns
    /// whether it moved.
    bool catchUp() { return isVisible() && m_line.catchUp(); }
    /// The capsule's outline in the parent's coordinates.
    [[nodiscard]] QPainterPath capsule() const;
    /// The accessible name.
    [[nodiscard]] QString spokenText() const;
    /// The target of a click, as in the tooltip; empty for a pill that is not clickable.
    [[nodiscard]] QString destination() const;
    [[nodiscard]] const CreativeMark& mark() const { return m_mark; }
    [[nodiscard]] const CarRadioLine& line() const { return m_line; }

Q_SIGNALS:
    /// The visible creative was activated, with the pointer or by a screen reader.
    void clicked();
    /// The text has moved by a step: its `strip` is to be shown.
    void moved();
    /// Something else is to be painted again: this box, in the parent's coordinates.
    void changed(QRect box);

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void paintLine(QPainter& painter);
    void paintBackground(QPainter& painter, const PixelSpace& pixels);
    [[nodiscard]] QRectF markBox() const;
    [[nodiscard]] QRectF lineBox() const;

    std::optional<SlotCreative> m_creative;
    bool m_isClickable = false;
    CreativeMark m_mark;
    CarRadioLine m_line;
    QRectF m_capsule;    ///< In the pill's own coordinates; the widget surrounds it.
    QImage m_background; ///< The capsule's picture, made once per size.
};

} // namespace brimlet
