#pragma once

#include "creative/carradioline.h"
#include "creative/creativeenvironment.h"
#include "creative/creativemark.h"
#include "host/assignment.h"

#include <QWidget>

namespace brimlet {

/// One black capsule beside the notch: a creative's mark and its line of text. It works while it is
/// on screen and rests while it is not.
class NotchPill final : public QWidget {
    Q_OBJECT

public:
    NotchPill(const CreativeEnvironment& environment, QWidget* parent);

    /// What it shows; absent empties it. Only a clickable pill takes clicks.
    void setCreative(const std::optional<SlotCreative>& creative, bool isClickable);

    [[nodiscard]] const std::optional<SlotCreative>& creative() const { return m_creative; }
    [[nodiscard]] bool isClickable() const { return m_isClickable; }
    /// What a step of its scrolling text changes, in the parent's coordinates.
    [[nodiscard]] QRect movingBox() const;
    /// Moves a scrolling text to where it is due by now, without a word. Whether that is elsewhere.
    bool catchUp() { return isVisible() && m_line.catchUp(); }
    /// Paints the line alone. The pill's origin in the painter's untransformed coordinates.
    void paintLine(QPainter& painter, QPoint origin);
    /// The capsule's shape in the parent's coordinates.
    [[nodiscard]] QRegion capsule() const;
    /// What a screen reader says.
    [[nodiscard]] QString spokenText() const;
    /// Where a click leads, as the tooltip has it; empty for a pill that takes none.
    [[nodiscard]] QString destination() const;
    [[nodiscard]] const CreativeMark& mark() const { return m_mark; }
    [[nodiscard]] const CarRadioLine& line() const { return m_line; }

Q_SIGNALS:
    /// The creative that it shows was clicked, by pointer or by a screen reader.
    void clicked();
    /// The text has moved on by a step, which is for the receiver to paint.
    void moved();

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;

private:
    void paintGround(QPainter& painter, const QRect& box, double devicePixelRatio);
    [[nodiscard]] QRect markBox() const;
    [[nodiscard]] QRect lineBox() const;

    std::optional<SlotCreative> m_creative;
    bool m_isClickable = false;
    CreativeMark m_mark;
    CarRadioLine m_line;
    // The capsule's shape at the pill's own origin, and its picture: made once for each size.
    mutable QRegion m_capsule;
    mutable QSize m_capsuleSize;
    QImage m_ground;
};

} // namespace brimlet
