#pragma once

#include "platform/url.h"

#include <QHostAddress>
#include <QList>
#include <QMap>
#include <QSslConfiguration>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace brimlet {

/// A request as it came in, byte for byte.
struct RawRequest final {
    QByteArray head; ///< Up to and with the empty line.
    QByteArray body;

    /// The head's lines, the request line first, without line breaks.
    [[nodiscard]] QList<QByteArray> lines() const;
    [[nodiscard]] QByteArray method() const { return head.left(head.indexOf(' ')); }
    [[nodiscard]] QByteArray target() const;
    /// The value of a header, letter case of its name aside; null when it is missing.
    [[nodiscard]] QByteArray header(const QByteArray& name) const;

    /// Takes the first whole request off the front; absent while there is none yet.
    [[nodiscard]] static std::optional<RawRequest> take(QByteArray& bytes);
};

/// One accepted connection, at the mercy of whoever answers on it.
class RawConnection final {
public:
    explicit RawConnection(QTcpSocket& socket)
        : m_socket(socket) {}
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;

    void send(const QByteArray& bytes);
    void sendAfter(std::chrono::milliseconds delay, const QByteArray& bytes);
    /// Closes once all that was sent is out.
    void cut() { m_socket.disconnectFromHost(); }
    /// Ends with a reset instead of a close.
    void reset();
    /// Sends the bytes again and again as fast as they are taken.
    void flood(const QByteArray& bytes);
    /// Sends the bytes one at a time, then from the start again if `forEver`.
    void drip(const QByteArray& bytes, std::chrono::milliseconds every, bool forEver = false);
    [[nodiscard]] bool isOpen() const { return m_socket.state() == QTcpSocket::ConnectedState; }

private:
    friend class RawServer;

    QTcpSocket& m_socket;
    QByteArray m_unread;
    QByteArray m_flood;
    QByteArray m_drops;
    qsizetype m_nextDrop = 0;
    QTimer m_dripping;
};

/// What a test's server does with a request: anything, or nothing.
using RawAnswer = std::function<void(RawConnection&, const RawRequest&)>;

/// A server on a port of 127.0.0.1 that says what it is told, HTTP or not, and remembers every
/// byte that reached it.
class RawServer final {
public:
    /// With a configuration, behind TLS.
    explicit RawServer(const std::optional<QSslConfiguration>& tls = std::nullopt);
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    [[nodiscard]] quint16 port() const { return m_server->serverPort(); }
    /// "http://127.0.0.1:port" and the path, or https.
    [[nodiscard]] Url url(const QString& path) const;

    /// Called when a connection was accepted, before anything was read.
    void onConnect(std::function<void(RawConnection&)> greet) { m_greet = std::move(greet); }
    /// Requests to exactly this target from now on; an empty target stands for all others.
    void answer(const QByteArray& target, RawAnswer answer);
    /// The same with fixed bytes; the connection stays open.
    void answer(const QByteArray& target, const QByteArray& bytes);
    /// Fixed bytes, then the end of the connection.
    void answerAndCut(const QByteArray& target, const QByteArray& bytes);

    /// Accepted so far, and of those still open.
    [[nodiscard]] int connections() const { return static_cast<int>(m_connections.size()); }
    [[nodiscard]] int openConnections() const;
    [[nodiscard]] RawConnection& connection(int index) { return *m_connections.at(toIndex(index)); }
    [[nodiscard]] const std::vector<RawRequest>& requests() const { return m_requests; }
    /// Every byte of every connection, in the order of arrival.
    [[nodiscard]] const QByteArray& received() const { return m_received; }

private:
    static std::size_t toIndex(int index) { return static_cast<std::size_t>(index); }
    void accept();
    void read(RawConnection& connection);

    bool m_isSecure;
    std::function<void(RawConnection&)> m_greet;
    QMap<QByteArray, RawAnswer> m_answers;
    std::vector<RawRequest> m_requests;
    QByteArray m_received;
    std::unique_ptr<QTcpServer> m_server;
    std::vector<std::unique_ptr<RawConnection>> m_connections;
};

/// A whole reply with its Content-Length; `headers` are further lines, each with its line break.
[[nodiscard]] QByteArray rawReply(int status, const QByteArray& body,
                                  const QByteArray& headers = {});

} // namespace brimlet
