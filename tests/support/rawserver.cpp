#include "tests/support/rawserver.h"

#include <QSslServer>

#include <sys/socket.h>

#include <algorithm>

namespace brimlet {

using namespace Qt::StringLiterals;

QList<QByteArray> RawRequest::lines() const {
    QList<QByteArray> lines;
    for (const QByteArray& line : head.split('\n')) {
        if (const QByteArray text = line.endsWith('\r') ? line.chopped(1) : line; !text.isEmpty()) {
            lines << text;
        }
    }
    return lines;
}

QByteArray RawRequest::target() const {
    return head.left(head.indexOf('\r')).split(' ').value(1);
}

QByteArray RawRequest::header(const QByteArray& name) const {
    for (const QByteArray& line : lines().mid(1)) {
        const qsizetype colon = line.indexOf(':');
        if (line.left(colon).compare(name, Qt::CaseInsensitive) == 0) {
            return line.mid(colon + 1).trimmed();
        }
    }
    return {};
}

std::optional<RawRequest> RawRequest::take(QByteArray& bytes) {
    const qsizetype end = bytes.indexOf("\r\n\r\n");
    if (end < 0) {
        return std::nullopt;
    }
    RawRequest request{.head = bytes.left(end + 4), .body = {}};
    const qsizetype length = request.header("Content-Length").toLongLong();
    if (bytes.size() < request.head.size() + length) {
        return std::nullopt;
    }
    request.body = bytes.mid(request.head.size(), length);
    bytes.remove(0, request.head.size() + length);
    return request;
}

void RawConnection::send(const QByteArray& bytes) {
    m_socket.write(bytes);
    m_socket.flush();
}

void RawConnection::sendAfter(std::chrono::milliseconds delay, const QByteArray& bytes) {
    QTimer::singleShot(delay, &m_dripping, [this, bytes] {
        if (isOpen()) {
            send(bytes);
        }
    });
}

void RawConnection::reset() {
    const linger now{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(static_cast<int>(m_socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &now,
                 sizeof now);
    m_socket.abort();
}

void RawConnection::flood(const QByteArray& bytes) {
    m_flood = bytes;
    QObject::connect(&m_socket, &QTcpSocket::bytesWritten, &m_socket, [this] {
        if (m_socket.bytesToWrite() == 0) {
            m_socket.write(m_flood);
        }
    });
    m_socket.write(m_flood);
}

void RawConnection::drip(const QByteArray& bytes, std::chrono::milliseconds every, bool forEver) {
    m_drops = bytes;
    m_nextDrop = 0;
    QObject::connect(&m_dripping, &QTimer::timeout, &m_socket, [this, forEver] {
        if (!isOpen() || (m_nextDrop == m_drops.size() && !forEver)) {
            m_dripping.stop();
            return;
        }
        m_nextDrop %= m_drops.size();
        send(m_drops.mid(m_nextDrop, 1));
        ++m_nextDrop;
    });
    m_dripping.start(every);
}

RawServer::RawServer(const std::optional<QSslConfiguration>& tls)
    : m_isSecure(tls.has_value()) {
    if (tls) {
        auto server = std::make_unique<QSslServer>();
        server->setSslConfiguration(*tls);
        m_server = std::move(server);
    } else {
        m_server = std::make_unique<QTcpServer>();
    }
    QObject::connect(m_server.get(), &QTcpServer::pendingConnectionAvailable, m_server.get(),
                     [this] { accept(); });
    if (!m_server->listen(QHostAddress::LocalHost)) {
        qFatal("No port to listen on");
    }
}

RawServer::~RawServer() {
    for (const auto& connection : m_connections) {
        connection->m_socket.disconnect();
    }
}

Url RawServer::url(const QString& path) const {
    const QString scheme = m_isSecure ? u"https"_s : u"http"_s;
    return Url::fromString(u"%1://127.0.0.1:%2%3"_s.arg(scheme).arg(port()).arg(path)).value();
}

void RawServer::answer(const QByteArray& target, RawAnswer answer) {
    m_answers[target] = std::move(answer);
}

void RawServer::answer(const QByteArray& target, const QByteArray& bytes) {
    answer(target,
           [bytes](RawConnection& connection, const RawRequest&) { connection.send(bytes); });
}

void RawServer::answerAndCut(const QByteArray& target, const QByteArray& bytes) {
    answer(target, [bytes](RawConnection& connection, const RawRequest&) {
        connection.send(bytes);
        connection.cut();
    });
}

int RawServer::openConnections() const {
    return static_cast<int>(std::count_if(m_connections.cbegin(), m_connections.cend(),
                                          [](const auto& one) { return one->isOpen(); }));
}

void RawServer::accept() {
    while (QTcpSocket* const socket = m_server->nextPendingConnection()) {
        auto& connection = *m_connections.emplace_back(std::make_unique<RawConnection>(*socket));
        QObject::connect(socket, &QTcpSocket::readyRead, m_server.get(),
                         [this, &connection] { read(connection); });
        if (m_greet) {
            m_greet(connection);
        }
        read(connection);
    }
}

void RawServer::read(RawConnection& connection) {
    if (!connection.m_socket.isOpen()) {
        return;
    }
    const QByteArray bytes = connection.m_socket.readAll();
    m_received += bytes;
    connection.m_unread += bytes;
    while (const auto request = RawRequest::take(connection.m_unread)) {
        m_requests.push_back(*request);
        const RawAnswer answer = m_answers.value(request->target(), m_answers.value({}));
        if (answer) {
            answer(connection, *request);
        }
    }
}

QByteArray rawReply(int status, const QByteArray& body, const QByteArray& headers) {
    return "HTTP/1.1 " + QByteArray::number(status) +
           " Some Reason\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n" + headers +
           "\r\n" + body;
}

} // namespace brimlet
