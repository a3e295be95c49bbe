#include "tests/support/faultserver/faultconnection.h"

#include "tests/support/rawserver.h"

#include <sys/socket.h>

namespace brimlet {
namespace {

/// The most bytes written to a socket before they are sent.
constexpr qint64 kAhead = 256 * 1024;

} // namespace

FaultConnection::FaultConnection(FaultServer& server, QTcpSocket& socket)
    : QObject(&socket)
    , m_server(server)
    , m_socket(socket) {
    // Each write is sent at once.
    socket.setSocketOption(QAbstractSocket::LowDelayOption, 1);
    m_timer.setSingleShot(true);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &FaultConnection::go);
    // Queued, since the signal is emitted during a write.
    connect(
        &socket, &QTcpSocket::bytesWritten, this,
        [this] {
            if (!m_timer.isActive()) {
                go();
            }
        },
        Qt::QueuedConnection);
    connect(&socket, &QTcpSocket::readyRead, this, &FaultConnection::read);
    connect(&socket, &QTcpSocket::disconnected, &socket, &QObject::deleteLater);
    const FaultSteps& greeting = server.m_script.greeting;
    m_steps.assign(greeting.cbegin(), greeting.cend());
    go();
    read();
}

void FaultConnection::read() {
    if (!m_socket.isOpen()) {
        return; // the greeting has ended it
    }
    const QByteArray bytes = m_socket.readAll();
    m_server.m_log.write(bytes);
    m_unread += bytes;
    while (const auto request = RawRequest::take(m_unread)) {
        const FaultSteps steps = m_server.stepsFor(request->target());
        m_steps.insert(m_steps.end(), steps.cbegin(), steps.cend());
    }
    if (!m_timer.isActive()) {
        go();
    }
}

void FaultConnection::go() {
    while (!m_steps.empty() && m_socket.state() == QTcpSocket::ConnectedState) {
        const FaultStep& step = m_steps.front();
        switch (step.kind) {
        case FaultStep::Kind::Send:
            m_socket.write(step.bytes);
            break;
        case FaultStep::Kind::Drip:
            drip();
            return;
        case FaultStep::Kind::Flood:
            while (m_socket.bytesToWrite() < kAhead) {
                m_socket.write(step.bytes);
            }
            return;
        case FaultStep::Kind::Wait:
            m_timer.start(step.time);
            m_steps.pop_front();
            return;
        case FaultStep::Kind::Cut:
            m_socket.disconnectFromHost();
            break;
        case FaultStep::Kind::Reset:
            reset();
            return;
        }
        m_steps.pop_front();
    }
}

void FaultConnection::drip() {
    const FaultStep& step = m_steps.front();
    m_socket.write(step.bytes.sliced(m_nextDrop, step.bytes.isEmpty() ? 0 : 1));
    m_socket.flush();
    const auto pause = step.time;
    if (++m_nextDrop >= step.bytes.size()) {
        m_nextDrop = 0;
        if (!step.isForEver) {
            m_steps.pop_front();
        }
    }
    m_timer.start(pause);
}

void FaultConnection::reset() {
    const linger now{.l_onoff = 1, .l_linger = 0};
    ::setsockopt(static_cast<int>(m_socket.socketDescriptor()), SOL_SOCKET, SO_LINGER, &now,
                 sizeof now);
    m_socket.flush();
    m_socket.abort();
}

} // namespace brimlet
