#pragma once

#include <QLabel>
#include <QPoint>
#include <QRect>

namespace brimlet {

/// A tooltip that looks like a capsule: dark, with round corners where it can be translucent, and
/// a hairline. It has no parent and is not shown yet. `text` may be rich text.
class ToolTipLabel final : public QLabel {
    Q_OBJECT

public:
    explicit ToolTipLabel(const QString& text, bool isRound = true);

    /// Between the box that it belongs to and itself, and to the screen's edges, in points.
    static constexpr int kGap = 6;

    /// The top left corner of a tooltip of this size: below the box, centred as far as the screen
    /// allows. All in one coordinate system.
    [[nodiscard]] static QPoint placeBelow(const QRect& box, QSize toolTip, const QRect& screen);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_isRound;
};

} // namespace brimlet
