#include "app/menubarextra.h"

#include "platform/starttask.h"

#include <utility>

namespace brimlet {
namespace {

/// A click on the status item may first take the focus from the open panel, which closes it, and
/// only then be reported as a press. A press this soon after a close therefore does not reopen the
/// panel.
constexpr std::chrono::milliseconds kSameClick{200};

/// After a start by hand the panel opens if the desktop shows no status item within this time.
/// Without a status item the panel is the only way to reach the program.
constexpr std::chrono::seconds kWaitForBar{3};

} // namespace

MenuBarExtra::MenuBarExtra(std::shared_ptr<HostStore> store, MenuPorts ports, StartReason reason)
    : m_store(std::move(store))
    , m_ports(std::move(ports)) {
    m_ports.statusItem.observePresses([this](const std::optional<Rect>& place) { pressed(place); });
    m_ports.statusItem.observePlace([this] { placeChanged(); });
    connect(m_store.get(), &HostStore::objectWillChange, &m_update, &OncePerTurn::schedule);
    m_update.schedule();
    if (reason != StartReason::Session) {
        startTask(openAfterStart(reason, m_end.get_token()));
    }
}

MenuBarExtra::~MenuBarExtra() {
    m_end.request_stop();
}

void MenuBarExtra::open() {
    openAt(m_ports.statusItem.place());
}

void MenuBarExtra::pressed(const std::optional<Rect>& place) {
    if (isOpen()) {
        m_window->dismiss();
    } else if (!m_dismissedAt || m_ports.clock.uptime() - *m_dismissedAt >= kSameClick) {
        openAt(place);
    }
}

void MenuBarExtra::placeChanged() {
    if (const auto place = isOpen() ? m_ports.statusItem.place() : std::nullopt) {
        m_place = place;
        m_window->follow(*place);
    }
}

void MenuBarExtra::openAt(const std::optional<Rect>& place) {
    if (!m_window) {
        m_window = m_ports.makeWindow(m_store);
        m_window->observeDismissals([this] { m_dismissedAt = m_ports.clock.uptime(); });
    }
    m_place = place;
    m_window->present(place);
}

void MenuBarExtra::storeChanged() {
    // An XEmbed tray that moves as a whole moves the item without an event.
    if (isOpen() && m_ports.statusItem.place() != m_place) {
        placeChanged();
    }
    if (m_toolTip != m_store->statusLine()) {
        m_toolTip = m_store->statusLine();
        m_ports.statusItem.setToolTip(m_toolTip);
    }
}

QCoro::Task<> MenuBarExtra::openAfterStart(StartReason reason, std::stop_token end) {
    const bool isWanted = reason == StartReason::Open;
    const auto wait = isWanted ? std::chrono::seconds(0) : kWaitForBar;
    co_await m_ports.clock.sleep(wait, end);
    // After a stop request `this` may be destroyed.
    if (!end.stop_requested() && !m_window && (isWanted || !m_ports.statusItem.isShown())) {
        open();
    }
}

} // namespace brimlet
