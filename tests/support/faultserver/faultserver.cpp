#include "tests/support/faultserver/faultserver.h"

#include "tests/support/faultserver/faultconnection.h"
#include "tests/support/faultserver/randomfaults.h"

#include <QSslServer>

#include <utility>

namespace brimlet {
namespace {

/// Short, so that packets are soon dropped when nothing is accepted.
constexpr int kBacklog = 8;

QByteArray bytesOf(const FaultSteps& steps) {
    QByteArray bytes;
    for (const FaultStep& step : steps) {
        bytes += step.bytes;
    }
    return bytes;
}

} // namespace

FaultServer::FaultServer(const Settings& settings)
    : m_isSecure(settings.tls.has_value()) {
    if (settings.tls) {
        auto server = std::make_unique<QSslServer>();
        server->setSslConfiguration(*settings.tls);
        m_server = std::move(server);
    } else {
        m_server = std::make_unique<QTcpServer>();
    }
    QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(),
                     [this] { accept(); });
    m_server->setListenBacklogSize(kBacklog);
    if (!m_server->listen(QHostAddress::LocalHost, settings.port)) {
        m_complaint = QStringLiteral("port %1: %2").arg(settings.port).arg(m_server->errorString());
    }
    if (!settings.log.isEmpty()) {
        m_log.setFileName(settings.log);
        if (!m_log.open(QIODevice::WriteOnly | QIODevice::Append | QIODevice::Unbuffered)) {
            m_complaint = settings.log + QStringLiteral(": ") + m_log.errorString();
        }
    }
}

FaultServer::~FaultServer() = default;

QString FaultServer::root() const {
    const QString scheme = m_isSecure ? QStringLiteral("https") : QStringLiteral("http");
    return QStringLiteral("%1://127.0.0.1:%2").arg(scheme).arg(m_server->serverPort());
}

void FaultServer::follow(FaultScript script) {
    m_script = std::move(script);
    m_random.seed(m_script.randomSeed);
    m_script.isAccepting ? m_server->resumeAccepting() : m_server->pauseAccepting();
}

void FaultServer::accept() {
    while (QTcpSocket* const socket = m_server->nextPendingConnection()) {
        new FaultConnection(*this, *socket); // a child of its socket
    }
}

FaultSteps FaultServer::stepsFor(const QByteArray& target) {
    const FaultSteps steps = m_script.answers.value(target, m_script.answers.value({}));
    const bool isUnlucky =
        m_script.randomShare > 0 && m_random.generateDouble() < m_script.randomShare;
    return isUnlucky ? randomFault(m_random, bytesOf(steps)) : steps;
}

} // namespace brimlet
