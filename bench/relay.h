#pragma once

#include "bench/figures.h"

#include <chrono>
#include <cstdint>
#include <list>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>

namespace brimlet {

/// A socket or the like, closed with this object.
class Descriptor final {
public:
    explicit Descriptor(int number = -1)
        : m_number(number) {}
    ~Descriptor();
    Descriptor(Descriptor&& other) noexcept;
    Descriptor& operator=(Descriptor&& other) noexcept;

    [[nodiscard]] int number() const { return m_number; }

private:
    int m_number;
};

/// Stands between programs and the placement service on this machine, passes on every byte as it
/// comes, and counts. Works on a thread of its own.
class Relay final {
public:
    using Clock = std::chrono::steady_clock;

    explicit Relay(std::uint16_t servicePort);
    ~Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    /// The address to give to programs.
    [[nodiscard]] const std::string& root() const { return m_root; }
    [[nodiscard]] Traffic traffic() const;
    /// When the last bytes of the latest reply to a poll were about to be passed on.
    [[nodiscard]] std::optional<Clock::time_point> lastPollReply() const;
    /// Ends all connections and refuses new ones from now on.
    void shut();

private:
    struct Connection final {
        Descriptor client;
        Descriptor service;
        bool isPoll = false; ///< The request under way.
        bool hasPolled = false;
    };

    void work();
    void accept();
    /// False when the connection is over.
    [[nodiscard]] bool passOn(Connection& connection, bool isReply);
    void countRequest(Connection& connection, std::string_view bytes);
    void countReply(const Connection& connection, std::size_t bytes);

    std::uint16_t m_servicePort;
    std::string m_root;
    Descriptor m_listener;
    Descriptor m_end; ///< Readable when the thread shall end.
    std::list<Connection> m_connections;
    mutable std::mutex m_mutex; ///< Guards the two below.
    Traffic m_traffic;
    std::optional<Clock::time_point> m_lastPollReply;
    std::thread m_thread;
};

} // namespace brimlet
