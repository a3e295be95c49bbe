#include "creative/textline.h"

#include "creative/marqueetext.h"

#include <QPainter>
#include <QTextOption>

namespace brimlet {

TextLine::TextLine(const QString& text, const QFont& font)
    : m_layout(singleLine(text), font) {
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::NoWrap);
    m_layout.setTextOption(option);
    m_layout.beginLayout();
    if (QTextLine line = m_layout.createLine(); line.isValid()) {
        constexpr double kUnbounded = 1'000'000; // points; a layout needs some width
        line.setLineWidth(kUnbounded);
        m_width = line.naturalTextWidth();
        m_left = line.naturalTextRect().x();
        m_ascent = line.ascent();
        m_height = line.height();
    }
    m_layout.endLayout();
}

QImage TextLine::picture(const QColor& color, const QColor& background, double devicePixelRatio,
                         int from, QSize size) const {
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(background);
    QPainter painter(&picture);
    painter.scale(devicePixelRatio, devicePixelRatio);
    painter.setPen(color);
    // The baseline is on a whole pixel, so that letters are equally sharp at every offset.
    const double heightInPoints = size.height() / devicePixelRatio;
    const double baseline =
        qRound(((heightInPoints - m_height) / 2 + m_ascent) * devicePixelRatio) / devicePixelRatio;
    m_layout.draw(&painter, {-from / devicePixelRatio - m_left, baseline - m_ascent});
    return picture;
}

} // namespace brimlet
