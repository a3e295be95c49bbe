#pragma once

#include "tests/support/faultserverprocess.h"
#include "tests/support/processes.h"
#include "tests/support/xserver.h"

#include <QStringList>

namespace brimlet {

/// The whole program on a hurried machine, between a service that misbehaves as it is told and a
/// stranger's server that nobody should tell a secret; and what must hold whatever happened.
class WatchedProgram final {
public:
    /// Polls are a tenth of a second apart, and a request has two seconds.
    static constexpr int kSpeed = 30;
    static constexpr int kPollMilliseconds = 3000 / kSpeed;

    /// The service behaves, and the token is being tried.
    WatchedProgram();

    [[nodiscard]] FaultServerProcess& service() { return m_service; }
    [[nodiscard]] FaultServerProcess& stranger() { return m_stranger; }
    [[nodiscard]] SimulatorProcess& program() { return m_program; }

    /// The token; found anywhere but where it belongs, it has leaked.
    [[nodiscard]] static QByteArray token();
    /// A good body of any endpoint, with pictures at the service's own address, and what the status
    /// line says of it.
    [[nodiscard]] QByteArray goodBody() const;
    [[nodiscard]] static QString goodStatus();
    /// Another one, which tells whether it was applied.
    [[nodiscard]] QByteArray otherBody() const;
    [[nodiscard]] static QString otherStatus();

    /// A script with which every endpoint's requests meet these steps. The pictures stay good.
    [[nodiscard]] static QJsonObject everywhere(const QJsonArray& steps);
    void follow(const QJsonObject& script);
    /// From now on requests go to this root.
    void moveTo(const QString& root);
    /// From now on every endpoint gives good replies, and requests go to the service.
    void behave();

    /// Has the program ask for the display and then send a heartbeat, beside its polls.
    void askAll();
    /// Waits until the status line says this. Looks once each time: while a display reply and one
    /// to the host follow each other, it says now this, now that.
    [[nodiscard]] bool comesToSay(const QString& status);
    /// Requests to the service since it began to follow the script that it follows now.
    [[nodiscard]] qsizetype requests() const;

    /// The figures, the slots and the panel's place, in words that differ when they do.
    [[nodiscard]] QString content();

    /// What does not hold although the service behaves again: alive, no window besides the usual
    /// ones, one of the system's status texts, memory, threads and descriptors as before, nothing
    /// printed, the token only where it belongs. Empty when all holds.
    [[nodiscard]] QString complaint();
    /// Takes what the program uses now as the measure for `complaint`.
    void takeMeasure();
    /// What was in use at the worst moment counts from now on.
    void forgetPeakMemory();
    /// Open connections more than when the measure was taken, local ones included.
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
    FaultServerProcess m_stranger;
    SimulatorProcess m_program;
    XServer m_x;
    Use m_before;
    QStringList m_windows;
    qsizetype m_requestsBefore = 0;
};

} // namespace brimlet
