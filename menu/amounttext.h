#pragma once

#include <QLabel>
#include <QList>

#include <vector>

namespace brimlet {

/// The big amount: bold, letters 1.2 points closer than usual, digits of equal width, so that they
/// keep their places when the amount changes: the font's own, or else in equal cells. An amount
/// wider than the menu continues on the next line. The accessible name is the whole amount; a
/// QLabel for the accessible role, but QLabel's own text stays empty.
class AmountText final : public QLabel {
    Q_OBJECT

public:
    AmountText();

    /// The same text again does nothing.
    void setAmount(const QString& amount);

    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    /// The width of a character's cell in points. A digit's is that of the widest digit.
    [[nodiscard]] double cellWidth(QChar character) const;
    [[nodiscard]] double widthOf(QStringView line) const;
    /// The amount in lines that are not wider than `width`, in points.
    [[nodiscard]] std::vector<QStringView> linesFor(int width) const;
    void drawCharacter(QPainter& painter, QChar character, QPointF at) const;

    QString m_amount;
    QList<quint32> m_figures; ///< Glyphs of the digits; if empty, these are usual text.
    double m_digitWidth = 0;
};

} // namespace brimlet
