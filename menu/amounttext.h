#pragma once

#include <QLabel>

namespace brimlet {

/// The big amount: bold, letters 1.2 points closer than usual, digits of equal width, so that it
/// stands still while it counts. An amount that is wider than the menu goes on in a line below. A
/// screen reader gets it as one phrase.
class AmountText final : public QLabel {
    Q_OBJECT

public:
    AmountText();

    /// Nothing happens when it is the same text.
    void setAmount(const QString& amount);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// The cell of a character, which may be wider than the character.
    [[nodiscard]] double cellWidth(QChar character) const;
    /// Goes through the characters' cells; returns how many lines they take.
    template <typename Visit>
    int placeCells(int width, Visit visit) const;

    double m_digitWidth = 0;
};

} // namespace brimlet
