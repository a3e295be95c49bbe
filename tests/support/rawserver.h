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

/// A request, byte for byte as it was received.
struct RawRequest final {
    QByteArray head; ///< Including the empty line at its end.
    QByteArray body;

    /// The head's lines, the request line first, without line breaks.
    [[nodiscard]] QList<QByteArray> lines() const;
    [[nodiscard]] QByteArray method() const { return head.left(head.indexOf(' ')); }
    [[nodiscard]] QByteArray target() const;
    /// The value of a header, whose name is compared without case; null when it is missing.
    [[nodiscard]] QByteArray header(const QByteArray& name) const;

    /// Removes the first request from `bytes`; absent until it is complete.
    [[nodiscard]] static std::optional<RawRequest> take(QByteArray& bytes);
};

/// One accepted connection, on which an answer may send anything.
class RawConnection final {
public:
    explicit RawConnection(QTcpSocket& socket)
        : m_socket(socket) {}
    RawConnection(const RawConnection&) = delete;
    RawConnection& operator=(const RawConnection&) = delete;

    void send(const QByteArray& bytes);
    void sendAfter(std::chrono::milliseconds delay, const QByteArray& bytes);
    /// Closes the connection after everything was sent.
    void cut() { m_socket.disconnectFromHost(); }
    /// Resets the connection.
    void reset();
    /// Sends the bytes repeatedly, as fast as they are received.
    void flood(const QByteArray& bytes);
    /// Sends the bytes one at a time, and if `forEver` again from the start.
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

/// Handles a request; may also leave it unanswered.
using RawAnswer = std::function<void(RawConnection&, const RawRequest&)>;

/// A server on a free port of 127.0.0.1 that sends any bytes, HTTP or not, and records every byte
/// it receives.
class RawServer final {
public:
    /// Uses TLS if there is a configuration.
    explicit RawServer(const std::optional<QSslConfiguration>& tls = std::nullopt);
    ~RawServer();
    RawServer(const RawServer&) = delete;
    RawServer& operator=(const RawServer&) = delete;

    [[nodiscard]] quint16 port() const { return m_server->serverPort(); }
    /// "http://127.0.0.1:port" and the path, or https.
    [[nodiscard]] Url url(const QString& path) const;

    /// Sets what is called for each accepted connection, before anything is read.
    void onConnect(std::function<void(RawConnection&)> greet) { m_greet = std::move(greet); }
    /// Sets the answer to requests with exactly this target; the empty target stands for all
    /// others.
    void answer(const QByteArray& target, RawAnswer answer);
    /// The same with fixed bytes; the connection stays open.
    void answer(const QByteArray& target, const QByteArray& bytes);
    /// The same with fixed bytes, after which the connection is closed.
    void answerAndCut(const QByteArray& target, const QByteArray& bytes);

    /// How many were accepted so far, and how many of those are open.
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
