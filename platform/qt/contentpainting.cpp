#include "platform/qt/contentpainting.h"

#include "platform/pixelspace.h"
#include "platform/textstrip.h"

#include <QBackingStore>
#include <QPainter>
#include <QWidget>

#include <cmath>

namespace brimlet {

void updatePoints(QWidget& content, const QRegion& points) {
    content.update(points);
    for (QWidget* const child :
         content.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        child->update(points.translated(-child->pos()));
    }
}

QRegion pointsOf(std::span<const TextStrip> texts, double devicePixelRatio) {
    const auto toPoints = QTransform::fromScale(1 / devicePixelRatio, 1 / devicePixelRatio);
    QRegion points;
    for (const TextStrip& text : texts) {
        points += toPoints.mapRect(QRectF(text.box)).toAlignedRect();
    }
    return points;
}

void paintTexts(QWidget& content, std::span<const TextStrip> texts) {
    QWidget& window = *content.window();
    QBackingStore* const store = window.backingStore();
    if (!window.isVisible() || store == nullptr || store->size() != window.size()) {
        return;
    }
    const double ratio = window.devicePixelRatioF();
    const QRegion changed = pointsOf(texts, ratio);
    if (ratio != std::round(ratio)) {
        updatePoints(content, changed.translated(content.mapFrom(&window, QPoint())));
        return;
    }
    store->beginPaint(changed);
    {
        QPainter painter(store->paintDevice());
        painter.setCompositionMode(QPainter::CompositionMode_Source);
        for (const QRect& part : changed) { // whole points are cleared, more than the boxes
            painter.fillRect(part, texts.front().background);
        }
        const PixelSpace pixels(painter);
        for (const TextStrip& text : texts) {
            painter.drawImage(text.box.topLeft(), text.picture,
                              QRect(QPoint(text.from, 0), text.box.size()));
        }
    }
    store->endPaint();
    store->flush(changed, window.windowHandle());
}

} // namespace brimlet
