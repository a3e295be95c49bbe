#include "tests/placement/rawclient.h"

#include <QList>

namespace brimlet::placementtest {

QByteArray RawReply::header(const QByteArray& name) const {
    for (const QByteArray& line : head.split('\n')) {
        const auto colon = line.indexOf(':');
        if (colon > 0 && line.left(colon).compare(name, Qt::CaseInsensitive) == 0) {
            return line.mid(colon + 1).trimmed();
        }
    }
    return {};
}

RawClient::RawClient(quint16 port, const QString& address) {
    m_socket.connectToHost(address, port);
    m_socket.waitForConnected(patienceMs);
}

bool RawClient::isOpen() const {
    return m_socket.state() == QAbstractSocket::ConnectedState;
}

void RawClient::send(const QByteArray& bytes) {
    m_socket.write(bytes);
    while (m_socket.bytesToWrite() > 0 && m_socket.waitForBytesWritten(patienceMs)) {
    }
}

RawReply RawClient::receive(bool hasBody) {
    while (!m_received.contains("\r\n\r\n") && readMore()) {
    }
    RawReply reply;
    const auto end = m_received.indexOf("\r\n\r\n");
    if (end < 0) {
        return reply;
    }
    reply.head = m_received.left(end);
    m_received.remove(0, end + 4);
    reply.status = reply.head.mid(reply.head.indexOf(' ') + 1, 3).toInt();
    const auto length = hasBody ? reply.header("Content-Length").toLongLong() : 0;
    while (m_received.size() < length && readMore()) {
    }
    reply.cut = m_received.size() < length;
    reply.body = m_received.left(length);
    m_received.remove(0, reply.body.size());
    return reply;
}

bool RawClient::receivesWithin(int milliseconds) {
    return !m_received.isEmpty() || !isOpen() || m_socket.waitForReadyRead(milliseconds) ||
           !isOpen();
}

bool RawClient::isClosedByService() {
    while (readMore()) {
    }
    return !isOpen();
}

RawReply RawClient::ask(const QByteArray& method, const QByteArray& path, const QByteArray& token,
                        const QByteArray& body) {
    send(request(method, path, token, body));
    return receive(method != "HEAD");
}

QByteArray RawClient::request(const QByteArray& method, const QByteArray& path,
                              const QByteArray& token, const QByteArray& body) {
    QByteArray bytes =
        method + ' ' + path + " HTTP/1.1\r\nHost: 127.0.0.1\r\nUser-Agent: test/1\r\n";
    if (!token.isEmpty()) {
        bytes += "Authorization: Bearer " + token + "\r\n";
    }
    if (!body.isEmpty()) {
        bytes +=
            "Content-Type: application/json\r\nContent-Length: " + QByteArray::number(body.size()) +
            "\r\n";
    }
    return bytes + "\r\n" + body;
}

bool RawClient::readMore() {
    if (m_socket.bytesAvailable() == 0 && !m_socket.waitForReadyRead(patienceMs)) {
        return false;
    }
    m_received += m_socket.readAll();
    return true;
}

} // namespace brimlet::placementtest
