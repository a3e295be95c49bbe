#pragma once

#include "creative/creativeimagecache.h"
#include "overlay/overlayview.h"
#include "tests/support/hostfixture.h"
#include "tests/support/pngbytes.h"

#include <QPainter>
#include <QTemporaryDir>

namespace brimlet {

/// A real overlay view beside a notch of 184 by 32 points, fed by fakes, and what it paints.
class PaintedView final {
public:
    /// In points.
    static constexpr QSize size = {428, 40};

    /// The service answers with `creatives`, a list in JSON, and with the picture for
    /// "https://brand.test/picture.png".
    PaintedView(const QByteArray& creatives, const QImage& picture) {
        m_caches.folder = m_folder.path();
        m_host.http.answer(QStringLiteral("/picture.png"), 200, pngOf(picture));
        m_host.http.answer(QStringLiteral("/none.png"), 404, {});
        m_host.http.answer(QStringLiteral("/api/display"), 200,
                           R"({"weekStatus":"live","creatives":)" + creatives + '}');
        m_view.resize(size);
        m_view.show();
        startTask(m_store->refreshDisplay());
        m_runtime.apply(*m_store, 184, 32);
        QCoreApplication::sendPostedEvents();
    }

    /// What it paints now on a screen with so many pixels to a point; elsewhere transparent.
    [[nodiscard]] QImage picture(double devicePixelRatio) {
        QImage picture(size * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
        picture.setDevicePixelRatio(devicePixelRatio);
        picture.fill(Qt::transparent);
        m_view.render(&picture, {}, {}, QWidget::DrawChildren);
        return picture;
    }
    /// The same as it looks on a ground of one colour.
    [[nodiscard]] QImage pictureOver(const QColor& ground, double devicePixelRatio) {
        const QImage top = picture(devicePixelRatio);
        QImage whole(top.size(), QImage::Format_RGB32);
        whole.setDevicePixelRatio(devicePixelRatio);
        whole.fill(ground);
        QPainter(&whole).drawImage(0, 0, top);
        return whole;
    }

    void advance(std::chrono::nanoseconds time) { m_host.clock.advance(time); }

private:
    QTemporaryDir m_folder;
    FakeCachesFolder m_caches;
    FakeReduceMotion m_reduceMotion;
    HostFixture m_host;
    CreativeImageCache m_images{{m_host.http, m_caches}, 1};
    std::shared_ptr<HostStore> m_store = m_host.makeStore();
    OverlayRuntime m_runtime{m_host.workspace};
    OverlayView m_view{m_runtime, {m_images, m_host.clock, m_reduceMotion}};
};

} // namespace brimlet
