#include "creative/creativeimagecache.h"

#include "host/linkrule.h"
#include "platform/deferred.h"
#include "platform/picturelimits.h"
#include "platform/sharedports.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QMessageAuthenticationCode>
#include <QRandomGenerator>
#include <QTemporaryFile>
#include <QtEndian>

#include <cstdio>
#include <map>
#include <vector>

namespace brimlet {
namespace {

/// A keyed hash of the text, truncated to 64 bits.
std::int64_t seededHash(const QString& text, std::uint64_t seed) {
    const QByteArray key(reinterpret_cast<const char*>(&seed), sizeof seed);
    const QByteArray digest =
        QMessageAuthenticationCode::hash(text.toUtf8(), key, QCryptographicHash::Blake2s_256);
    return qFromLittleEndian<std::int64_t>(digest.constData());
}

std::uint64_t magnitude(std::int64_t value) {
    const auto bits = static_cast<std::uint64_t>(value);
    return value < 0 ? std::uint64_t{0} - bits : bits; // defined for the smallest number, too
}

/// Empty when there is no such file.
QByteArray contentsOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(kPictureBytesLimit + 1) : QByteArray();
}

QCoro::Task<std::optional<QImage>> decoded(PictureDecoder& decoder, QByteArray bytes) {
    std::optional<QImage> image;
    if (!bytes.isEmpty() && bytes.size() <= kPictureBytesLimit) {
        if (const auto picture = co_await decoder.decode(std::move(bytes))) {
            // Copied, because the image would only refer to the bytes.
            image = QImage(reinterpret_cast<const uchar*>(picture->pixels.constData()),
                           picture->width, picture->height, QImage::Format_ARGB32_Premultiplied)
                        .copy();
        }
    }
    co_return image;
}

/// Writes the whole file or none; a failure is ignored. Unlike QSaveFile it does not wait for the
/// disk, since the files need not survive a crash.
void writeAtomically(const QString& path, const QByteArray& bytes) {
    QTemporaryFile file(path + QStringLiteral(".XXXXXX"));
    if (file.open() && file.write(bytes) == bytes.size() && file.flush() &&
        std::rename(QFile::encodeName(file.fileName()).constData(),
                    QFile::encodeName(path).constData()) == 0) {
        file.setAutoRemove(false);
    }
}

/// The key of an address in the maps: a hash, since an untrusted address may be longer than its
/// picture.
QByteArray keyOf(const Url& url) {
    return QCryptographicHash::hash(url.absoluteString().toLatin1(), QCryptographicHash::Sha256);
}

HttpRequest requestFor(const Url& url) {
    HttpRequest request{url};
    request.mayFollow = [](const Url& /*from*/, const Url& to) { return isAllowedLink(to); };
    request.lastStatusWithBody = 299;
    request.bodyLimit = kPictureBytesLimit;
    return request;
}

} // namespace

/// Both maps are keyed by `keyOf` the address.
struct CreativeImageCache::State final {
    ImagePorts ports;
    std::uint64_t seed;
    std::map<QByteArray, QImage> memory; ///< Never evicted; its pictures are small.
    /// Loads in progress, each with the results of the other calls that wait for it.
    std::map<QByteArray, std::vector<Deferred<std::optional<QImage>>>> inflight;
};

CreativeImageCache::CreativeImageCache(const ImagePorts& ports, std::uint64_t seed)
    : m_state(std::make_shared<State>(State{ports, seed, {}, {}})) {}

CreativeImageCache& CreativeImageCache::shared() {
    static auto* const cache = new CreativeImageCache(SharedPorts<ImagePorts>::get());
    return *cache;
}

std::uint64_t CreativeImageCache::seedOfThisRun() {
    static const std::uint64_t seed = QRandomGenerator::system()->generate64();
    return seed;
}

QCoro::Task<std::optional<QImage>> CreativeImageCache::image(std::optional<Url> url) {
    const auto state = m_state;
    std::optional<QImage> image;
    if (url && isAllowedLink(*url)) {
        image = co_await find(state, *url);
    }
    co_return image;
}

QCoro::Task<std::optional<QImage>> CreativeImageCache::find(std::shared_ptr<State> state, Url url) {
    const QByteArray key = keyOf(url);
    if (const auto known = state->memory.find(key); known != state->memory.end()) {
        // Copied first, because `co_return` may move from its operand.
        std::optional<QImage> kept = known->second;
        co_return kept;
    }
    if (const auto running = state->inflight.find(key); running != state->inflight.end()) {
        const Deferred<std::optional<QImage>> result;
        running->second.push_back(result);
        std::optional<QImage> shared = co_await result;
        co_return shared;
    }
    state->inflight.emplace(key, std::vector<Deferred<std::optional<QImage>>>());
    std::optional<QImage> loaded = co_await load(state, url);
    const auto waiters = state->inflight.extract(key).mapped();
    if (loaded) {
        state->memory.emplace(key, *loaded);
    }
    for (const auto& waiter : waiters) {
        waiter.resolve(loaded);
    }
    co_return loaded;
}

QCoro::Task<std::optional<QImage>> CreativeImageCache::load(std::shared_ptr<State> state, Url url) {
    if (auto kept = co_await decoded(state->ports.decoder, contentsOf(diskURL(*state, url)))) {
        co_return kept;
    }
    HttpRequest request = requestFor(url);
    const HttpResult result = co_await state->ports.http.send(std::move(request));
    const auto* const reply = std::get_if<HttpReply>(&result);
    if (reply == nullptr || reply->status < 200 || reply->status > 299) {
        co_return std::nullopt;
    }
    auto image = co_await decoded(state->ports.decoder, reply->body);
    if (image) {
        writeAtomically(diskURL(*state, url), reply->body);
    }
    co_return image;
}

QString CreativeImageCache::diskURL(const State& state, const Url& url) {
    const auto caches = state.ports.cachesFolder.path();
    if (!caches) {
        qFatal("There is no caches folder.");
    }
    const QDir folder(*caches + QStringLiteral("/Brimlet/creatives"));
    folder.mkpath(QStringLiteral("."));
    return folder.filePath(
        QString::number(magnitude(seededHash(url.absoluteString(), state.seed))));
}

} // namespace brimlet
