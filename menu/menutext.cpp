#include "menu/menutext.h"

#include "creative/boundedmarks.h"

#include <QPaintEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace brimlet {
namespace {

/// Draws one line where its upper left corner is; a line of a paragraph that is read from the right
/// stands at the left like the others, without the blanks that follow its last word.
void drawLine(QPainter& painter, const QString& text, bool isRightToLeft, QPointF at) {
    qsizetype length = text.size();
    while (length > 0 && text.at(length - 1).isSpace()) {
        --length;
    }
    QTextLayout layout(text.left(length), painter.font());
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
    QSizePolicy policy(QSizePolicy::Preferred, QSizePolicy::Preferred); // lines may be added
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setWording(text);
}

void MenuText::setWording(const QString& text) {
    if (text == accessibleName()) {
        return;
    }
    setAccessibleName(text);
    m_text = wrappableText(withBoundedMarks(text));
    m_wrapped = {};
    m_wrappedLines = -1;
    updateGeometry();
    update();
}

void MenuText::setMostLines(int lines) {
    m_mostLines = lines;
    m_enoughLines = lines + 1; // one more tells whether that is all
}

void MenuText::setFirstLines(int lines) {
    m_enoughLines = lines;
}

void MenuText::growBy(int lines) {
    m_enoughLines = static_cast<int>(m_wrapped.lines.size()) + lines;
}

const WrappedText& MenuText::wrappedFor(int width) const {
    if (m_wrappedWidth != width) {
        m_wrapped = {};
        m_wrappedWidth = width;
        m_wrappedLines = -1;
    }
    if (m_wrappedLines != m_enoughLines) {
        m_wrappedLines = m_enoughLines;
        wrapText(m_wrapped, m_text, font(), std::max(1, width),
                 static_cast<std::size_t>(m_enoughLines));
    }
    return m_wrapped;
}

bool MenuText::isHigher(int width, int height) const {
    const int enough = height / lineHeight(font()) + 1;
    WrappedText start;
    wrapText(start, m_text, font(), std::max(1, width), static_cast<std::size_t>(enough));
    return static_cast<int>(start.lines.size()) >= enough;
}

int MenuText::heightForWidth(int width) const {
    const int lines = static_cast<int>(wrappedFor(width).lines.size());
    return lineHeight(font()) * std::min(lines, m_mostLines);
}

QSize MenuText::sizeHint() const {
    // A column of the menu is no wider, and a text that is asks for all of it.
    constexpr int kWidest = 288;
    const QString start = m_text.left(kWidest);
    const int width = std::min(kWidest, qCeil(QFontMetricsF(font()).horizontalAdvance(start)));
    // The height follows from the width that it gets. A scroll area asks for this hint each time
    // the text grows, when lines for another width would cost all those that are there.
    return {width, lineHeight(font())};
}

QSize MenuText::minimumSizeHint() const {
    return {0, lineHeight(font())};
}

void MenuText::paintEvent(QPaintEvent* event) {
    QPainter painter(this);
    painter.setFont(font());
    painter.setPen(m_color);
    const auto& lines = wrappedFor(width()).lines;
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
