#include "tools/placement/pictures.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QPainter>
#include <QPainterPath>

namespace brimlet::placement {

namespace {

constexpr int side = 256;

QPen stroke(const QColor& colour, qreal width) {
    return {colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin};
}

void drawBicycle(QPainter& painter) {
    painter.fillRect(0, 0, side, side, QColor(0x1f, 0x6f, 0x5c));
    painter.setPen(stroke(QColor(0xf4, 0xef, 0xe3), 14));
    painter.drawEllipse(QPointF(70, 164), 46, 46);
    painter.drawEllipse(QPointF(186, 164), 46, 46);
    const QPointF frame[] = {{70, 164}, {102, 98}, {164, 98}, {124, 164}, {70, 164}};
    painter.drawPolyline(frame, 5);
    painter.drawLine(102, 98, 124, 164);
    const QPointF fork[] = {{186, 164}, {156, 66}, {184, 66}};
    painter.drawPolyline(fork, 3);
    painter.drawLine(84, 78, 116, 78);
    painter.drawLine(95, 80, 102, 98);
}

void drawTea(QPainter& painter) {
    painter.fillRect(0, 0, side, side, QColor(0xd8, 0x5a, 0x3a));
    const QColor cream(0xff, 0xf3, 0xdd);
    painter.setPen(stroke(cream, 14));
    painter.drawEllipse(QPointF(176, 146), 26, 24);
    QPainterPath cup(QPointF(62, 112));
    cup.lineTo(176, 112);
    cup.cubicTo(176, 186, 148, 196, 119, 196);
    cup.cubicTo(90, 196, 62, 186, 62, 112);
    painter.fillPath(cup, cream);
    painter.drawLine(58, 220, 180, 220);
    for (const qreal x : {94.0, 142.0}) {
        QPainterPath steam(QPointF(x, 88));
        steam.cubicTo(x - 20, 72, x + 20, 58, x, 40);
        painter.drawPath(steam);
    }
}

std::string png(void (*draw)(QPainter&)) {
    QImage image(side, side, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    draw(painter);
    painter.end();
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, "PNG");
    return bytes.toStdString();
}

} // namespace

std::map<std::string, std::string, std::less<>> drawPictures() {
    return {{"quiet-bicycle", png(drawBicycle)}, {"palindrome-tea", png(drawTea)}};
}

} // namespace brimlet::placement
