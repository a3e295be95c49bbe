// The token in the secret store, and the actions of the menu.

#include "host/hoststore.h"

#include "host/statusline.h"
#include "host/trimmed.h"
#include "host/utf8.h"
#include "platform/starttask.h"

#include <QPointer>

namespace brimlet {
namespace {

constexpr auto kPause = std::chrono::seconds(86400);

QString tokenAccount() {
    return QStringLiteral("host-token");
}

std::optional<QString> textOf(const SecretResult& result) {
    const auto* const bytes = std::get_if<QByteArray>(&result);
    if (bytes == nullptr) {
        return std::nullopt;
    }
    return textFromUtf8({bytes->constData(), static_cast<std::size_t>(bytes->size())});
}

} // namespace

std::optional<QString> HostStore::readToken() {
    const SecretResult result =
        m_ports.secrets.read(m_ports.bundle.identifier(), tokenAccount(),
                             [self = QPointer<HostStore>(this)](const SecretResult& late) {
                                 if (self) {
                                     self->tokenArrived(late);
                                 }
                             });
    m_isTokenKnown = isAnswer(result);
    return textOf(result);
}

void HostStore::tokenArrived(const SecretResult& result) {
    if (m_isTokenKnown) {
        return; // one was saved meanwhile
    }
    publish(m_token, textOf(result).value_or(QString()));
    m_isTokenKnown = true;
    // Before the start, the first requests will carry it.
    if (!m_token.isEmpty() && m_heartbeatTimer) {
        startTask(refreshDisplayThenHeartbeat());
    }
}

void HostStore::writeToken(const QString& token) {
    const bool isKept = !token.isEmpty() && token.isValidUtf16();
    m_ports.secrets.replace(m_ports.bundle.identifier(), tokenAccount(),
                            isKept ? std::optional(token.toUtf8()) : std::nullopt);
}

void HostStore::saveToken(const QString& raw) {
    publish(m_token, trimmed(raw));
    m_isTokenKnown = true;
    writeToken(m_token);
    startTask(refreshDisplayThenHeartbeat());
}

QCoro::Task<> HostStore::agree() {
    return ping(QStringLiteral("/api/host/agree"), "POST");
}

void HostStore::pause24h() {
    publish(m_pausedUntil, m_ports.clock.now() + kPause);
    publish(m_statusLine, statusline::paused());
    Q_EMIT overlayNeedsRender();
    startTask(heartbeat());
}

} // namespace brimlet
