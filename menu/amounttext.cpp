#include "menu/amounttext.h"

#include "creative/notchfont.h"
#include "menu/textlines.h"

#include <QPainter>

#include <algorithm>

namespace brimlet {
namespace {

constexpr double kTracking = -1.2; // points

} // namespace

AmountText::AmountText() {
    setFont(systemFont(44, QFont::Bold));
    QSizePolicy policy(QSizePolicy::Preferred,
                       QSizePolicy::Preferred); // the number of lines varies
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    const QFontMetricsF metrics(font());
    for (char digit = '0'; digit <= '9'; ++digit) {
        m_digitWidth = std::max(m_digitWidth, metrics.horizontalAdvance(QLatin1Char(digit)));
    }
}

void AmountText::setAmount(const QString& amount) {
    if (amount == accessibleName()) {
        return;
    }
    setAccessibleName(amount);
    updateGeometry();
    update();
}

double AmountText::cellWidth(QChar character) const {
    return kTracking + (character.isDigit() ? m_digitWidth
                                            : QFontMetricsF(font()).horizontalAdvance(character));
}

template <typename Visit>
int AmountText::placeCells(int width, Visit visit) const {
    int line = 0;
    double x = 0;
    for (const QChar character : accessibleName()) {
        const double cell = cellWidth(character);
        if (x > 0 && x + cell > width) {
            ++line;
            x = 0;
        }
        visit(character, line, x, cell);
        x += cell;
    }
    return line + 1;
}

int AmountText::heightForWidth(int width) const {
    return lineHeight(font()) * placeCells(width, [](QChar, int, double, double) {});
}

QSize AmountText::sizeHint() const {
    double width = 0;
    for (const QChar character : accessibleName()) {
        width += cellWidth(character);
    }
    return {qCeil(width), lineHeight(font())};
}

QSize AmountText::minimumSizeHint() const {
    return {0, lineHeight(font())};
}

void AmountText::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setFont(font());
    painter.setPen(Qt::white);
    const QFontMetricsF metrics(font());
    placeCells(width(), [&](QChar character, int line, double x, double cell) {
        const double spare = cell - kTracking - metrics.horizontalAdvance(character);
        painter.drawText(QPointF(x + spare / 2, line * lineHeight(font()) + metrics.ascent()),
                         character);
    });
}

} // namespace brimlet
