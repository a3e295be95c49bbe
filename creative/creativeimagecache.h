#pragma once

#include "platform/cachesfolder.h"
#include "platform/httpclient.h"
#include "platform/picturedecoder.h"

#include <QImage>

#include <cstdint>
#include <memory>
#include <optional>

namespace brimlet {

/// The cache's access to the system. The references outlive the cache and every load.
struct ImagePorts final {
    HttpClient& http;
    PictureDecoder& decoder;
    const CachesFolder& cachesFolder;
};

/// The pictures of creatives: from memory, else from this run's files, else from the network. A
/// failure yields no image. Only a missing caches folder aborts the program (`qFatal`). Main thread
/// only.
class CreativeImageCache final {
public:
    /// File names depend on `seed`, which is random for each run of the program, so files of
    /// earlier runs are not found again.
    explicit CreativeImageCache(const ImagePorts& ports, std::uint64_t seed = seedOfThisRun());

    /// The process's cache, created on first use with `SharedPorts` and kept until the process
    /// ends.
    [[nodiscard]] static CreativeImageCache& shared();

    /// The picture at the address, at most 128 pixels a side. Absent when the address is absent or
    /// not allowed by the link rule, or when the picture cannot be loaded; the next call then tries
    /// again. Concurrent calls for one address share one download.
    [[nodiscard]] QCoro::Task<std::optional<QImage>> image(std::optional<Url> url);

private:
    struct State;

    [[nodiscard]] static std::uint64_t seedOfThisRun();
    /// The path of the file for the bytes at `url`; creates its folder.
    [[nodiscard]] static QString diskURL(const State& state, const Url& url);
    [[nodiscard]] static QCoro::Task<std::optional<QImage>> find(std::shared_ptr<State> state,
                                                                 Url url);
    [[nodiscard]] static QCoro::Task<std::optional<QImage>> load(std::shared_ptr<State> state,
                                                                 Url url);

    std::shared_ptr<State> m_state; ///< Shared with every load, which may outlive the cache.
};

} // namespace brimlet
