#include "platform/wayland/waylandactivation.h"

#include "platform/wayland/waylandconnection.h"
#include "platform/wayland/waylandprotocols.h"
#include "platform/wayland/waylandseat.h"

#include <chrono>
#include <utility>

namespace brimlet {

WaylandActivation::WaylandActivation(WaylandConnection& connection, const WaylandSeat& seat)
    : m_connection(connection)
    , m_seat(seat) {
    constexpr std::chrono::seconds kLimit{1};
    m_limit.setSingleShot(true);
    m_limit.setInterval(kLimit);
    connect(&m_limit, &QTimer::timeout, this, [this] { answer({}); });
    connect(&connection, &WaylandConnection::lost, this, [this] { answer({}); });
}

WaylandActivation::~WaylandActivation() = default;

void WaylandActivation::requestToken(std::function<void(const QString& token)> use) {
    const WaylandGlobals& globals = m_connection.globals();
    const auto press = m_seat.lastPress();
    if (!globals.activation || !globals.seat || !press) {
        use({});
        return;
    }
    m_waiting.push_back(std::move(use));
    if (m_request) {
        return;
    }
    m_request.reset(xdg_activation_v1_get_activation_token(globals.activation.get()));
    static constexpr xdg_activation_token_v1_listener kToken{
        .done = [](void* data, xdg_activation_token_v1*, const char* token) {
            static_cast<WaylandActivation*>(data)->answer(QString::fromUtf8(token));
        }};
    xdg_activation_token_v1_add_listener(m_request.get(), &kToken, this);
    xdg_activation_token_v1_set_serial(m_request.get(), *press, globals.seat.get());
    xdg_activation_token_v1_commit(m_request.get());
    m_connection.readOnArrival();
    m_limit.start();
}

void WaylandActivation::answer(const QString& token) {
    m_limit.stop();
    m_request.reset();
    for (const auto& use : std::exchange(m_waiting, {})) {
        use(token);
    }
}

} // namespace brimlet
