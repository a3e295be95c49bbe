// The token in the secret store, and the actions of the menu.

#include "host/hoststore.h"

#include "host/statusline.h"
#include "host/trimmed.h"
#include "host/utf8.h"
#include "platform/starttask.h"

namespace brimlet {
namespace {

constexpr auto kPause = std::chrono::seconds(86400);

QString tokenAccount() {
    return QStringLiteral("host-token");
}

} // namespace

std::optional<QString> HostStore::readToken() const {
    const SecretResult result = m_ports.secrets.read(m_ports.bundle.identifier(), tokenAccount());
    const auto* const bytes = std::get_if<QByteArray>(&result);
    if (bytes == nullptr) {
        return std::nullopt;
    }
    return textFromUtf8({bytes->constData(), static_cast<std::size_t>(bytes->size())});
}

void HostStore::writeToken(const QString& token) {
    const QString service = m_ports.bundle.identifier();
    m_ports.secrets.remove(service, tokenAccount());
    if (token.isEmpty() || !token.isValidUtf16()) {
        return;
    }
    m_ports.secrets.add(service, tokenAccount(), token.toUtf8());
}

void HostStore::saveToken(const QString& raw) {
    publish(m_token, trimmed(raw));
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
