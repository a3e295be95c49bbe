#include "app/menubarextra.h"

#include "platform/starttask.h"

#include <utility>

namespace brimlet {
namespace {

/// A click on the status item may first take the keyboard from the panel, which then goes away, and
/// be told of after that. It meant to close the panel and must not open it again.
constexpr std::chrono::milliseconds kSameClick{200};

/// How long the desktop's bar may take to show the status item before the panel opens by itself, so
/// that the program can be reached where there is no bar.
constexpr std::chrono::seconds kWaitForBar{3};

} // namespace

MenuBarExtra::MenuBarExtra(std::shared_ptr<HostStore> store, MenuPorts ports)
    : m_store(std::move(store))
    , m_ports(std::move(ports)) {
    m_ports.statusItem.observePresses([this](const std::optional<Rect>& place) { pressed(place); });
    connect(m_store.get(), &HostStore::objectWillChange, this, &MenuBarExtra::storeWillChange);
    storeWillChange();
    startTask(openUnlessShown(m_end.get_token()));
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

void MenuBarExtra::openAt(const std::optional<Rect>& place) {
    if (!m_window) {
        m_window = m_ports.makeWindow(m_store);
        m_window->observeDismissals([this] { m_dismissedAt = m_ports.clock.uptime(); });
    }
    m_window->present(place);
}

void MenuBarExtra::storeWillChange() {
    if (std::exchange(m_isToolTipDue, true)) {
        return;
    }
    QMetaObject::invokeMethod(
        this,
        [this] {
            m_isToolTipDue = false;
            if (m_toolTip != m_store->statusLine()) {
                m_toolTip = m_store->statusLine();
                m_ports.statusItem.setToolTip(m_toolTip);
            }
        },
        Qt::QueuedConnection);
}

QCoro::Task<> MenuBarExtra::openUnlessShown(std::stop_token end) {
    co_await m_ports.clock.sleep(kWaitForBar, end);
    // Whoever asked for the end is on the way out: nothing of it is touched any more.
    if (!end.stop_requested() && !m_ports.statusItem.isShown() && !m_window) {
        open();
    }
}

} // namespace brimlet
