#pragma once

#include <QScrollBar>

namespace brimlet {

/// An upright scroll bar in the menu's colours: a bar on the bare ground.
class SlimScrollBar final : public QScrollBar {
    Q_OBJECT

public:
    explicit SlimScrollBar(QWidget* parent = nullptr);

    /// Points.
    static constexpr int kWidth = 8;

    /// Shows that what it scrolls has the keyboard.
    void setHighlighted(bool isHighlighted);

    [[nodiscard]] QSize sizeHint() const override { return {kWidth, 3 * kWidth}; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    bool m_isHighlighted = false;
};

} // namespace brimlet
