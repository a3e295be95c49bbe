#pragma once

#include "creative/creativeimagecache.h"
#include "tests/support/fakehttpclient.h"
#include "tests/support/fakes.h"
#include "tests/support/pngbytes.h"
#include "tests/support/readingdecoder.h"

#include <QTemporaryDir>

namespace brimlet {

/// An image cache over a fake server, with a caches folder of its own.
struct ImageFixture {
    ImageFixture() { caches.folder = folder.path(); }

    /// The address of a picture on the server.
    [[nodiscard]] static std::optional<Url> url(const char* name) {
        return Url::fromString(QStringLiteral("https://images.test/") + QString::fromLatin1(name));
    }
    /// Serves a picture of one colour under this name.
    void serve(const char* name, const QColor& color, std::chrono::milliseconds lag = {}) {
        http.answer(QString::fromLatin1(name), HttpReply{200, pngOf(color)}, lag);
    }

    QTemporaryDir folder;
    FakeCachesFolder caches;
    FakeClock clock;
    FakeHttpClient http{clock};
    ReadingDecoder decoder;
    CreativeImageCache images{{http, decoder, caches}, 1};
};

} // namespace brimlet
