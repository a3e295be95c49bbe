#include "menu/amounttext.h"

#include "creative/notchfont.h"
#include "menu/tabularfigures.h"
#include "menu/textlines.h"

#include <QFontMetricsF>
#include <QGlyphRun>
#include <QPainter>
#include <QRawFont>

#include <algorithm>
#include <numeric>

namespace brimlet {
namespace {

constexpr double kTracking = -1.2; // points

} // namespace

AmountText::AmountText() {
    QFont font = systemFont(44, QFont::Bold);
    preferTabularFigures(font);
    setFont(font);
    QSizePolicy policy(QSizePolicy::Preferred,
                       QSizePolicy::Preferred); // the number of lines varies
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    m_figures = tabularFigures(font);
    if (!m_figures.isEmpty()) {
        m_digitWidth = QRawFont::fromFont(font).advancesForGlyphIndexes(m_figures).first().x();
        return;
    }
    const QFontMetricsF metrics(font);
    for (char digit = '0'; digit <= '9'; ++digit) {
        m_digitWidth =
            std::max(m_digitWidth, metrics.horizontalAdvance(QString(QLatin1Char(digit))));
    }
}

void AmountText::setAmount(const QString& amount) {
    if (amount == m_amount) {
        return;
    }
    m_amount = amount;
    setAccessibleName(amount);
    updateGeometry();
    update();
}

double AmountText::cellWidth(QChar character) const {
    return kTracking + (character.isDigit()
                            ? m_digitWidth
                            : QFontMetricsF(font()).horizontalAdvance(QString(character)));
}

double AmountText::widthOf(QStringView line) const {
    return std::accumulate(line.begin(), line.end(), 0.0, [this](double width, QChar character) {
        return width + cellWidth(character);
    });
}

std::vector<QStringView> AmountText::linesFor(int width) const {
    std::vector<QStringView> lines;
    qsizetype start = 0;
    double x = 0;
    for (qsizetype i = 0; i < m_amount.size(); ++i) {
        const double cell = cellWidth(m_amount[i]);
        if (x > 0 && x + cell > width) {
            lines.push_back(QStringView(m_amount).mid(start, i - start));
            start = i;
            x = 0;
        }
        x += cell;
    }
    lines.push_back(QStringView(m_amount).mid(start));
    return lines;
}

int AmountText::heightForWidth(int width) const {
    return lineHeight(font()) * static_cast<int>(linesFor(width).size());
}

QSize AmountText::sizeHint() const {
    return {qCeil(widthOf(m_amount)), lineHeight(font())};
}

QSize AmountText::minimumSizeHint() const {
    return {0, lineHeight(font())};
}

void AmountText::drawCharacter(QPainter& painter, QChar character, QPointF at) const {
    if (character.isDigit() && !m_figures.isEmpty()) {
        QGlyphRun figure;
        figure.setRawFont(QRawFont::fromFont(font()));
        figure.setGlyphIndexes({m_figures[character.digitValue()]});
        figure.setPositions({at});
        painter.drawGlyphRun({}, figure);
        return;
    }
    const double width = QFontMetricsF(font()).horizontalAdvance(QString(character));
    const double spare = cellWidth(character) - kTracking - width;
    painter.drawText(at + QPointF(spare / 2, 0), QString(character));
}

void AmountText::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setFont(font());
    painter.setPen(Qt::white);
    double baseline = QFontMetricsF(font()).ascent();
    for (const QStringView line : linesFor(width())) {
        double x = layoutDirection() == Qt::RightToLeft ? width() - widthOf(line) : 0;
        for (const QChar character : line) {
            drawCharacter(painter, character, {x, baseline});
            x += cellWidth(character);
        }
        baseline += lineHeight(font());
    }
}

} // namespace brimlet
