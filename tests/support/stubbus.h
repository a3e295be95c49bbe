#pragma once

#include <QString>
#include <QTemporaryDir>

#include <atomic>
#include <thread>

namespace brimlet {

/// Something that listens where a message bus should, and is none.
class StubBus final {
public:
    enum class Kind {
        Nobody,       ///< Its socket is there, and nobody listens on it.
        Full,         ///< As many wait to be let in as ever may.
        Silent,       ///< Lets everybody in and says nothing.
        Mute,         ///< Says nothing any more once it knows who is there.
        ClosesAtOnce, ///< Ends the connection as soon as somebody says something.
        ClosesLater,  ///< Ends it once it knows who is there.
    };

    explicit StubBus(Kind kind);
    ~StubBus();
    StubBus(const StubBus&) = delete;
    StubBus& operator=(const StubBus&) = delete;

    [[nodiscard]] QString address() const;

private:
    void serve() const;
    /// False when the connection should end.
    [[nodiscard]] bool reply(int connection) const;

    Kind m_kind;
    QTemporaryDir m_folder;
    int m_listener = -1;
    int m_waiting = -1;
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

} // namespace brimlet
