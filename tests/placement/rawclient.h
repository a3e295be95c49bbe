#pragma once

#include <QByteArray>
#include <QTcpSocket>

namespace brimlet::placementtest {

/// The reply to one request.
struct RawReply {
    /// 0 when no status line arrived.
    int status = 0;
    QByteArray head;
    QByteArray body;
    /// The connection ended before Content-Length bytes of body.
    bool cut = false;

    /// The value of a header, blanks trimmed; empty when there is none.
    [[nodiscard]] QByteArray header(const QByteArray& name) const;
};

/// One connection to the service, which sends requests exactly as given.
class RawClient final {
public:
    /// The longest wait for a reply.
    static constexpr int patienceMs = 5000;

    explicit RawClient(quint16 port, const QString& address = QStringLiteral("127.0.0.1"));

    [[nodiscard]] bool isOpen() const;
    void send(const QByteArray& bytes);
    /// Reads one reply: up to its Content-Length, or to the end of the connection. The reply to
    /// HEAD has a length but no body.
    [[nodiscard]] RawReply receive(bool hasBody = true);
    /// Whether any byte, or the end of the connection, arrives within the time.
    [[nodiscard]] bool receivesWithin(int milliseconds);
    /// Whether the service closes the connection.
    [[nodiscard]] bool isClosedByService();

    /// Sends a request with the usual headers; with a body also Content-Length and a JSON type.
    [[nodiscard]] RawReply ask(const QByteArray& method, const QByteArray& path,
                               const QByteArray& token = {}, const QByteArray& body = {});
    [[nodiscard]] static QByteArray request(const QByteArray& method, const QByteArray& path,
                                            const QByteArray& token = {},
                                            const QByteArray& body = {});

private:
    bool readMore();

    QTcpSocket m_socket;
    QByteArray m_received;
};

} // namespace brimlet::placementtest
