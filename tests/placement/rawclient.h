#pragma once

#include <QByteArray>
#include <QTcpSocket>

namespace brimlet::placementtest {

/// What came back for one request.
struct RawReply {
    /// 0 when nothing that looks like a reply came.
    int status = 0;
    QByteArray head;
    QByteArray body;
    /// The connection ended before the promised length was reached.
    bool cut = false;

    /// The value of a header, blanks trimmed; empty when there is none.
    [[nodiscard]] QByteArray header(const QByteArray& name) const;
};

/// One connection to the service on which requests are written byte by byte as given.
class RawClient final {
public:
    /// How long a reply may take before it counts as none.
    static constexpr int patienceMs = 5000;

    explicit RawClient(quint16 port, const QString& address = QStringLiteral("127.0.0.1"));

    [[nodiscard]] bool isOpen() const;
    void send(const QByteArray& bytes);
    /// Reads one reply: up to its Content-Length, or to the end of the connection. The reply to
    /// HEAD has a length but no body.
    [[nodiscard]] RawReply receive(bool hasBody = true);
    /// Whether any byte or the end of the connection comes within the time.
    [[nodiscard]] bool hearsWithin(int milliseconds);
    /// Whether the service ends the connection.
    [[nodiscard]] bool isClosedByService();

    /// One request with its usual headers; a body also brings Content-Length and a JSON type.
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
