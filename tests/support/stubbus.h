#pragma once

#include <QString>
#include <QTemporaryDir>

#include <atomic>
#include <thread>

namespace brimlet {

/// A server in place of a message bus that does not behave as one.
class StubBus final {
public:
    enum class Kind {
        Nobody,       ///< The socket exists, but no process listens on it.
        Full,         ///< The queue of waiting connections is full.
        Silent,       ///< Accepts connections and sends nothing.
        Mute,         ///< Sends nothing after the authentication.
        ClosesAtOnce, ///< Closes the connection at the first byte.
        ClosesLater,  ///< Closes the connection after the authentication.
    };

    explicit StubBus(Kind kind);
    ~StubBus();
    StubBus(const StubBus&) = delete;
    StubBus& operator=(const StubBus&) = delete;

    [[nodiscard]] QString address() const;

private:
    void serve() const;
    /// False when the connection must be closed.
    [[nodiscard]] bool reply(int connection) const;

    Kind m_kind;
    QTemporaryDir m_folder;
    int m_listener = -1;
    int m_waiting = -1;
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

} // namespace brimlet
