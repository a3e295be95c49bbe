#pragma once

#include "tests/support/faultserverprocess.h"
#include "tests/support/processes.h"
#include "tests/support/xserver.h"

#include <QStringList>

namespace brimlet {

/// The whole program at `kSpeed` times its speed, between a service that follows a script of faults
/// and a second server that must never receive the token; checks what holds after any fault.
class WatchedProgram final {
public:
    /// Polls are a tenth of a second apart, and a request times out after two seconds.
    static constexpr int kSpeed = 30;
    static constexpr int kPollMilliseconds = 3000 / kSpeed;

    /// The service gives good replies, and the program sends a heartbeat with the token.
    WatchedProgram();

    [[nodiscard]] FaultServerProcess& service() { return m_service; }
    [[nodiscard]] FaultServerProcess& otherServer() { return m_otherServer; }
    [[nodiscard]] SimulatorProcess& program() { return m_program; }

    /// The token, a text that occurs nowhere else.
    [[nodiscard]] static QByteArray token();
    /// A good body for any endpoint, with pictures at the service's own address, and the status
    /// line that it leads to.
    [[nodiscard]] QByteArray goodBody() const;
    [[nodiscard]] static QString goodStatus();
    /// Another one, to see whether it was applied.
    [[nodiscard]] QByteArray otherBody() const;
    [[nodiscard]] static QString otherStatus();

    /// A script with these steps for every endpoint. Pictures are answered as usual.
    [[nodiscard]] static QJsonObject everywhere(const QJsonArray& steps);
    void follow(const QJsonObject& script);
    /// Changes the service root in the machine file.
    void moveTo(const QString& root);
    /// Good replies from every endpoint, and the service's own root, from now on.
    void behave();

    /// Makes the program request the display and then send a heartbeat, besides its polls.
    void askAll();
    /// Waits for this status line. Reads it only once per check, since it alternates while replies
    /// of different endpoints arrive in turn.
    [[nodiscard]] bool reaches(const QString& status);
    /// Requests to the service since the last `follow`.
    [[nodiscard]] qsizetype requests() const;

    /// The figures, the slots and the panel's place, as a text to compare.
    [[nodiscard]] QString content();

    /// The first violation of: the program answers, has no further window, shows one of its status
    /// texts, has printed nothing, uses memory, threads and descriptors as before, and has sent the
    /// token only in its header and stored it nowhere. Empty when all of this holds.
    [[nodiscard]] QString complaint();
    /// Records the present resource use, which `complaint` compares with.
    void recordUse();
    /// Restarts the measurement of the peak memory.
    void forgetPeakMemory();
    /// Open connections more than at `recordUse`, local ones included.
    [[nodiscard]] qsizetype connections() const;

private:
    struct Use {
        qint64 memory = 0;
        int threads = 0;
        QStringList descriptors;
    };
    [[nodiscard]] Use use() const;
    [[nodiscard]] QStringList windows() const;
    [[nodiscard]] QByteArray bodyWith(const QString& brand, int cents) const;
    [[nodiscard]] QString leak() const;

    FaultServerProcess m_service;
    FaultServerProcess m_otherServer;
    SimulatorProcess m_program;
    XServer m_x;
    Use m_before;
    QStringList m_windows;
    qsizetype m_requestsBefore = 0;
};

} // namespace brimlet
