#include "menu/menutext.h"

#include <QPaintEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>
#include <limits>

namespace brimlet {
namespace {

/// Draws one line where its upper left corner is; a line of a paragraph that is read from the right
/// stands at the left like the others.
void drawLine(QPainter& painter, const QString& text, bool isRightToLeft, QPointF at) {
    QTextLayout layout(text, painter.font());
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    option.setAlignment(Qt::AlignLeft | Qt::AlignAbsolute);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(painter.window().width());
    layout.endLayout();
    layout.draw(&painter, at);
}

} // namespace

MenuText::MenuText(const QFont& font, const QColor& color, const QString& text)
    : m_color(color) {
    setTextFormat(Qt::PlainText);
    setFont(font);
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Fixed);
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setWording(text);
}

void MenuText::setWording(const QString& text) {
    if (text == accessibleName()) {
        return;
    }
    setAccessibleName(text);
    m_text = wrappableText(text);
    m_linesWidth = -1;
    updateGeometry();
    update();
}

const std::vector<TextSpan>& MenuText::linesFor(int width) const {
    if (m_linesWidth != width) {
        // One more than is shown tells whether that is all.
        const auto enough = m_mostLines > 0 ? static_cast<std::size_t>(m_mostLines) + 1
                                            : std::numeric_limits<std::size_t>::max();
        m_lines = wrapText(m_text, font(), std::max(1, width), enough);
        m_linesWidth = width;
    }
    return m_lines;
}

bool MenuText::isHigher(int width, int height) const {
    const auto fitting = static_cast<std::size_t>(height / lineHeight(font()));
    return wrapText(m_text, font(), std::max(1, width), fitting + 1).size() > fitting;
}

int MenuText::heightForWidth(int width) const {
    const int lines = static_cast<int>(linesFor(width).size());
    return lineHeight(font()) * (m_mostLines > 0 ? std::min(lines, m_mostLines) : lines);
}

QSize MenuText::sizeHint() const {
    // A column of the menu is no wider, and a text that is asks for all of it.
    constexpr int kWidest = 288;
    const QString start = m_text.left(kWidest);
    const int width = std::min(kWidest, qCeil(QFontMetricsF(font()).horizontalAdvance(start)));
    return {width, heightForWidth(width)};
}

QSize MenuText::minimumSizeHint() const {
    return {0, lineHeight(font())};
}

void MenuText::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setFont(font());
    painter.setPen(m_color);
    const auto& lines = linesFor(width());
    const int height = lineHeight(font());
    const int count = heightForWidth(width()) / height;
    const int first = std::max(0, event->rect().top() / height);
    const int last = std::min(count - 1, event->rect().bottom() / height);
    for (int i = first; i <= last; ++i) {
        const TextSpan& span = lines[static_cast<std::size_t>(i)];
        QString text = m_text.mid(span.start, span.length);
        if (i == count - 1 && i + 1 < static_cast<int>(lines.size())) {
            const QString rest = m_text.mid(span.start, 2 * span.length + 1);
            text = fontMetrics().elidedText(rest, Qt::ElideRight, width());
        }
        drawLine(painter, text, span.isRightToLeft, QPointF(0, i * height));
    }
}

} // namespace brimlet
