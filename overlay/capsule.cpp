#include "overlay/capsule.h"

#include "creative/continuouspaths.h"

#include <QPainter>

namespace brimlet {

QImage capsulePicture(QSize size, double devicePixelRatio) {
    QImage picture(size, QImage::Format_ARGB32_Premultiplied);
    picture.fill(kCapsuleBackground);
    QPainter painter(&picture);
    painter.setRenderHint(QPainter::Antialiasing);
    const QPainterPath capsule = capsulePath(QRectF(picture.rect()));
    painter.strokePath(capsule, QPen(QColor::fromRgbF(1, 1, 1, 0.14F), 0.5 * devicePixelRatio));
    // Clipped last, so that the outer half of the rim is cut off as well.
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    QImage mask(size, QImage::Format_ARGB32_Premultiplied);
    mask.fill(Qt::transparent);
    QPainter maskPainter(&mask);
    maskPainter.setRenderHint(QPainter::Antialiasing);
    maskPainter.fillPath(capsule, Qt::black);
    maskPainter.end();
    painter.drawImage(0, 0, mask);
    return picture;
}

} // namespace brimlet
