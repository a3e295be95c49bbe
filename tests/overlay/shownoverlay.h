#pragma once

#include "creative/creativeimagecache.h"
#include "overlay/notchpill.h"
#include "overlay/overlayview.h"
#include "platform/qt/contentpainting.h"
#include "tests/support/hostfixture.h"
#include "tests/support/readingdecoder.h"

#include <QTemporaryDir>

namespace brimlet {

/// Paints a view without an overlay window as X11's and the Mac's windows do.
inline void paintChangesOf(OverlayView& view) {
    QObject::connect(&view, &OverlayView::contentChanged, &view,
                     [&view](const QRegion& points) { updatePoints(view, points); });
    QObject::connect(&view, &OverlayView::stepped, &view,
                     [&view](std::span<const TextStrip> texts) { paintTexts(view, texts); });
}

/// A shown overlay view of 428 by 40 points over a store whose ports are fakes.
struct ShownOverlay {
    ShownOverlay() {
        caches.folder = folder.path();
        view.setAttribute(Qt::WA_TranslucentBackground); // as the program's window
        paintChangesOf(view);
        view.resize(428, 40);
        view.show();
    }

    /// Shows what the service answers with this body.
    void show(const QByteArray& body) {
        fetch(body);
        render();
    }
    /// Fetches this body into the store.
    void fetch(const QByteArray& body) {
        host.http.answer(QStringLiteral("/api/display"), 200, body);
        startTask(store->refreshDisplay());
    }
    /// Brings the view in line with the store.
    void render(double notchWidth = 184) {
        runtime.apply(*store, notchWidth, 32);
        QCoreApplication::sendPostedEvents();
    }
    /// The store's assignment, to be changed directly.
    [[nodiscard]] Assignment& week() { return const_cast<Assignment&>(store->assignment()); }
    [[nodiscard]] NotchPill* left() const { return view.findChildren<NotchPill*>().at(0); }
    [[nodiscard]] NotchPill* right() const { return view.findChildren<NotchPill*>().at(1); }
    /// What the view paints at this scale; transparent elsewhere.
    [[nodiscard]] QImage picture(double devicePixelRatio = 1) {
        QImage picture(view.size() * devicePixelRatio, QImage::Format_ARGB32_Premultiplied);
        picture.setDevicePixelRatio(devicePixelRatio);
        picture.fill(Qt::transparent);
        view.render(&picture, {}, {}, QWidget::DrawChildren);
        return picture;
    }

    QTemporaryDir folder;
    FakeCachesFolder caches;
    ReadingDecoder decoder;
    FakeReduceMotion reduceMotion;
    HostFixture host;
    CreativeImageCache images{{host.http, decoder, caches}, 1};
    std::shared_ptr<HostStore> store = host.makeStore();
    OverlayRuntime runtime{host.workspace};
    std::unique_ptr<OverlayView> content = std::make_unique<OverlayView>(
        runtime, CreativeEnvironment{images, host.clock, reduceMotion});
    OverlayView& view = *content; ///< Wherever the content is.
};

} // namespace brimlet
