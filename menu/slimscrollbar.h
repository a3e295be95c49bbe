#pragma once

#include <QScrollBar>

namespace brimlet {

/// A vertical scroll bar in the menu's colours: a handle without arrows and without a groove.
class SlimScrollBar final : public QScrollBar {
    Q_OBJECT

public:
    explicit SlimScrollBar(QWidget* parent = nullptr);

    /// Points.
    static constexpr int kWidth = 8;

    /// Shows whether the scrolled widget has the keyboard focus.
    void setHighlighted(bool isHighlighted);

    [[nodiscard]] QSize sizeHint() const override { return {kWidth, 3 * kWidth}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_isHighlighted = false;
};

} // namespace brimlet
