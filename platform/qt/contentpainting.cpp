#include "platform/qt/contentpainting.h"

#include <QBackingStore>
#include <QPainter>
#include <QWidget>

namespace brimlet {

void updatePoints(QWidget& content, const QRegion& points) {
    content.update(points);
    for (QWidget* const child :
         content.findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly)) {
        child->update(points.translated(-child->pos()));
    }
}

void paintIntoBackingStore(QWidget& content, const QRegion& points,
                           const std::function<void(QPainter&)>& paint) {
    QBackingStore* const store = content.backingStore();
    const QWidget* const window = content.window();
    if (!content.isVisible() || store == nullptr || store->size() != window->size()) {
        return;
    }
    const QPoint origin = content.mapTo(window, QPoint());
    const QRegion changed = points.translated(origin);
    store->beginPaint(changed);
    {
        QPainter painter(store->paintDevice());
        if (!origin.isNull()) {
            painter.setViewport({origin, content.size()});
            painter.setWindow(content.rect());
        }
        paint(painter);
    }
    store->endPaint();
    store->flush(changed, window->windowHandle());
}

} // namespace brimlet
