#include "platform/qt/contentpainting.h"

#include <QBackingStore>
#include <QPainter>
#include <QWidget>

namespace brimlet {

void paintIntoBackingStore(QWidget& content, const QRegion& points,
                           const std::function<void(QPainter&)>& paint) {
    QBackingStore* const store = content.backingStore();
    const QWidget* const window = content.window();
    if (!content.isVisible() || store == nullptr || store->size() != window->size()) {
        return;
    }
    store->beginPaint(points);
    {
        QPainter painter(store->paintDevice());
        paint(painter);
    }
    store->endPaint();
    store->flush(points, window->windowHandle());
}

} // namespace brimlet
