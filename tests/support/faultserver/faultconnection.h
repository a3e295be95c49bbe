#pragma once

#include "tests/support/faultserver/faultserver.h"

#include <QTcpSocket>
#include <QTimer>

#include <deque>

namespace brimlet {

/// Executes the steps on one accepted connection. A child of the socket; both are deleted when the
/// connection has ended.
class FaultConnection final : public QObject {
public:
    FaultConnection(FaultServer& server, QTcpSocket& socket);

private:
    void read();
    /// Continues with the remaining steps until one has to wait.
    void go();
    void drip();
    void reset();

    FaultServer& m_server;
    QTcpSocket& m_socket;
    QByteArray m_unread;
    std::deque<FaultStep> m_steps;
    qsizetype m_nextDrop = 0;
    QTimer m_timer;
};

} // namespace brimlet
