#pragma once

#include "tests/support/faultserver/faultserver.h"

#include <QTcpSocket>
#include <QTimer>

#include <deque>

namespace brimlet {

/// One accepted connection on its way through the steps. The socket's child; both go together when
/// the connection has ended.
class FaultConnection final : public QObject {
public:
    FaultConnection(FaultServer& server, QTcpSocket& socket);

private:
    void read();
    /// Does what is left to do, as far as it can be done now.
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
