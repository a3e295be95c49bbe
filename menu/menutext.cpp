#include "menu/menutext.h"

#include "creative/boundedmarks.h"

#include <QPaintEvent>
#include <QPainter>
#include <QTextLayout>

#include <algorithm>

namespace brimlet {
namespace {

/// Draws one line with its top left corner at `at`. Lines of both directions are aligned to the
/// same side, without the blanks after their last word.
void drawLine(QPainter& painter, const QString& text, bool isRightToLeft, QPointF at, int width,
              Qt::Alignment side) {
    qsizetype length = text.size();
    while (length > 0 && text.at(length - 1).isSpace()) {
        --length;
    }
    QTextLayout layout(text.left(length), painter.font());
    QTextOption option;
    option.setWrapMode(QTextOption::NoWrap);
    option.setTextDirection(isRightToLeft ? Qt::RightToLeft : Qt::LeftToRight);
    option.setAlignment(side | Qt::AlignAbsolute);
    layout.setTextOption(option);
    layout.beginLayout();
    QTextLine line = layout.createLine();
    line.setLineWidth(width);
    layout.endLayout();
    layout.draw(&painter, at);
}

} // namespace

MenuText::MenuText(const QFont& font, const QColor& color, const QString& text)
    : m_color(color) {
    setFont(font);
    QSizePolicy policy(QSizePolicy::Preferred,
                       QSizePolicy::Preferred); // the number of lines varies
    policy.setHeightForWidth(true);
    setSizePolicy(policy);
    setText(text);
}

void MenuText::setText(const QString& text) {
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

void MenuText::setMaximumLines(int lines) {
    m_maximumLines = lines;
    m_wantedLines = lines + 1; // one more, to know whether there are more
}

void MenuText::setInitialLines(int lines) {
    m_wantedLines = lines;
    m_isBalanced = false;
}

void MenuText::addLines(int lines) {
    m_wantedLines = static_cast<int>(m_wrapped.lines.size()) + lines;
}

const WrappedText& MenuText::wrappedFor(int width) const {
    if (m_wrappedWidth != width) {
        m_wrapped = {};
        m_wrappedWidth = width;
        m_wrappedLines = -1;
    }
    if (m_wrappedLines != m_wantedLines) {
        m_wrappedLines = m_wantedLines;
        wrapText(m_wrapped, m_text, font(), std::max(1, width),
                 static_cast<std::size_t>(m_wantedLines));
        if (m_isBalanced && static_cast<int>(m_wrapped.lines.size()) <= m_maximumLines) {
            balanceLines(m_wrapped, m_text, font(), width);
        }
    }
    return m_wrapped;
}

bool MenuText::isHigher(int width, int height) const {
    const int tooMany = height / lineHeight(font()) + 1;
    WrappedText start;
    wrapText(start, m_text, font(), std::max(1, width), static_cast<std::size_t>(tooMany));
    return static_cast<int>(start.lines.size()) >= tooMany;
}

int MenuText::heightForWidth(int width) const {
    const int lines = static_cast<int>(wrappedFor(width).lines.size());
    return lineHeight(font()) * std::min(lines, m_maximumLines);
}

QSize MenuText::sizeHint() const {
    // The width of the menu's column, in points. As many characters are enough to fill it.
    constexpr int kColumn = 288;
    const QString start = m_text.left(kColumn);
    const int width = std::min(kColumn, qCeil(QFontMetricsF(font()).horizontalAdvance(start)));
    // Of one line only: heightForWidth() gives the height. A scroll area asks for this hint
    // whenever lines are added, and wrapping all of them for another width would take too long.
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
        drawLine(painter, text, span.isRightToLeft, QPointF(0, i * height), width(),
                 layoutDirection() == Qt::RightToLeft ? Qt::AlignRight : Qt::AlignLeft);
    }
}

} // namespace brimlet
