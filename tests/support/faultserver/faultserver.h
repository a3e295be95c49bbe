#pragma once

#include "tests/support/faultserver/faultscript.h"

#include <QFile>
#include <QRandomGenerator>
#include <QSslConfiguration>
#include <QTcpServer>

#include <memory>
#include <optional>

namespace brimlet {

/// A server on a port of 127.0.0.1 that does to each connection what its script says. It keeps
/// nothing of connections that have ended, so it can run for days.
class FaultServer final {
public:
    struct Settings {
        quint16 port = 0;                       ///< 0 for any free one.
        std::optional<QSslConfiguration> tls{}; ///< Behind TLS.
        QString log{};                          ///< Takes every byte received; empty for none.
    };

    explicit FaultServer(const Settings& settings);
    ~FaultServer();
    FaultServer(const FaultServer&) = delete;
    FaultServer& operator=(const FaultServer&) = delete;

    /// What went wrong at the start; empty when it is listening.
    [[nodiscard]] QString complaint() const { return m_complaint; }
    [[nodiscard]] QString root() const;

    /// In force at once for whatever comes next; what is under way goes on.
    void follow(FaultScript script);

private:
    friend class FaultConnection;

    void accept();
    [[nodiscard]] FaultSteps stepsFor(const QByteArray& target);

    FaultScript m_script;
    QRandomGenerator m_random;
    QFile m_log;
    QString m_complaint;
    bool m_isSecure;
    std::unique_ptr<QTcpServer> m_server;
};

} // namespace brimlet
