#pragma once

#include "platform/cachesfolder.h"
#include "platform/httpclient.h"

#include <QImage>

#include <cstdint>
#include <memory>
#include <optional>

namespace brimlet {

/// What the image cache needs of the system. The references outlive the program's tasks.
struct ImagePorts final {
    HttpClient& http;
    const CachesFolder& cachesFolder;
};

/// The pictures of creatives: from memory, else from this run's files, else from the network.
/// Every failure is "no image", but that a system without a caches folder ends the program. Main
/// thread only.
class CreativeImageCache final {
public:
    /// The seed decides the files' names. It differs from run to run, so that files of earlier runs
    /// are not found again.
    explicit CreativeImageCache(const ImagePorts& ports, std::uint64_t seed = seedOfThisRun());

    /// The process's cache, created on first use with `SharedPorts` and kept until the process
    /// ends.
    [[nodiscard]] static CreativeImageCache& shared();

    /// The picture at the address, at most 128 pixels a side; absent when the address is absent or
    /// refused, or its picture cannot be had, and then the next call tries again. However many ask
    /// for one address at a time, it is fetched once.
    [[nodiscard]] QCoro::Task<std::optional<QImage>> image(std::optional<Url> url);

private:
    struct State;

    [[nodiscard]] static std::uint64_t seedOfThisRun();
    [[nodiscard]] static bool isAllowed(const Url& url);
    /// Where the address's bytes lie: the path of the file, whose folder is made on the way.
    [[nodiscard]] static QString diskURL(const State& state, const Url& url);
    [[nodiscard]] static QCoro::Task<std::optional<QImage>> find(std::shared_ptr<State> state,
                                                                 Url url);
    [[nodiscard]] static QCoro::Task<std::optional<QImage>> load(std::shared_ptr<State> state,
                                                                 Url url);

    std::shared_ptr<State> m_state; ///< Held by every load, which may outlive the cache.
};

} // namespace brimlet
