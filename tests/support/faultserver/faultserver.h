#pragma once

#include "tests/support/faultserver/faultscript.h"

#include <QFile>
#include <QRandomGenerator>
#include <QSslConfiguration>
#include <QTcpServer>

#include <memory>
#include <optional>

namespace brimlet {

/// A server on a port of 127.0.0.1 that executes its script on each connection. It keeps nothing of
/// ended connections, so it can run for days.
class FaultServer final {
public:
    struct Settings {
        quint16 port = 0;                       ///< 0 for any free port.
        std::optional<QSslConfiguration> tls{}; ///< Behind TLS.
        QString log{}; ///< The file for every received byte; empty for none.
    };

    explicit FaultServer(const Settings& settings);
    ~FaultServer();
    FaultServer(const FaultServer&) = delete;
    FaultServer& operator=(const FaultServer&) = delete;

    /// The error at the start; empty when it is listening.
    [[nodiscard]] QString complaint() const { return m_complaint; }
    [[nodiscard]] QString root() const;

    /// Applies to later connections and requests; steps under way continue.
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
