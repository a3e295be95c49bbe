#pragma once

#include "platform/wayland/waylandproxies.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <functional>
#include <vector>

namespace brimlet {

class WaylandConnection;
class WaylandSeat;

/// Asks the compositor for tokens with which another program may come to the front. Main thread
/// only.
class WaylandActivation final : public QObject {
    Q_OBJECT

public:
    /// Both outlive it.
    WaylandActivation(WaylandConnection& connection, const WaylandSeat& seat);
    ~WaylandActivation() override;

    /// Calls `use` with a token for what the host has just clicked or touched: later, or at once
    /// with an empty one where none is to be had. It is called exactly once, after a second at the
    /// latest.
    void requestToken(std::function<void(const QString& token)> use);

private:
    void answer(const QString& token);

    WaylandConnection& m_connection;
    const WaylandSeat& m_seat;
    Proxy<xdg_activation_token_v1> m_request;
    std::vector<std::function<void(const QString&)>> m_waiting;
    QTimer m_limit;
};

} // namespace brimlet
