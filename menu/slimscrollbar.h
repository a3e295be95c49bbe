#pragma once

#include <QScrollBar>

namespace brimlet {

/// A vertical scroll bar in the menu's colours: a handle without arrows and without a groove.
class SlimScrollBar final : public QScrollBar {
    Q_OBJECT

public:
    /// The handle stays this far from both ends of the bar, in points.
    explicit SlimScrollBar(int freeEnds = 0);

    /// Points.
    static constexpr int kWidth = 8;

    [[nodiscard]] int freeEnds() const { return m_freeEnds; }

    /// Shows whether the scrolled widget has the keyboard focus.
    void setHighlighted(bool isHighlighted);

    [[nodiscard]] QSize sizeHint() const override { return {kWidth, 3 * kWidth}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    int m_freeEnds;
    bool m_isHighlighted = false;
};

} // namespace brimlet
