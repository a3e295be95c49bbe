#include "tests/support/wayland/connection.h"

#include <QByteArray>

#include <algorithm>

#include <wayland-client.h>

/// What the leak sanitizer is to ignore in the test itself: this connection's objects, which end
/// with it, and those of Qt's Wayland platform. The programs that tests start do not have this
/// function.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier)
    return "leak:libwayland-client.so\nleak:libQt6WaylandClient.so\n";
}

namespace brimlet::desktop {

bool is(const char* name) {
    return qgetenv("BRIMLET_SESSION_DISPLAY") == name;
}

Connection::Connection()
    : m_display(qEnvironmentVariableIsEmpty("WAYLAND_DISPLAY") ? nullptr
                                                               : wl_display_connect(nullptr)) {
    if (m_display == nullptr) {
        qFatal("this test needs script/desktop-session with BRIMLET_SESSION_DISPLAY");
    }
    static constexpr wl_registry_listener kListener{&added, &removed};
    m_registry = wl_display_get_registry(m_display);
    wl_registry_add_listener(m_registry, &kListener, this);
    roundtrip();
}

Connection::~Connection() {
    wl_registry_destroy(m_registry);
    wl_display_disconnect(m_display);
}

void Connection::roundtrip() const {
    if (wl_display_roundtrip(m_display) < 0) {
        qFatal("the compositor has closed a test's connection, error %d",
               wl_display_get_error(m_display));
    }
}

void* Connection::bound(const wl_interface& interface, std::uint32_t version,
                        std::size_t index) const {
    for (const Global& global : m_globals) {
        if (global.interface == interface.name && index-- == 0) {
            return wl_registry_bind(m_registry, global.name, &interface,
                                    std::min(version, global.version));
        }
    }
    return nullptr;
}

void Connection::added(void* self, wl_registry* /*registry*/, std::uint32_t name,
                       const char* interface, std::uint32_t version) {
    static_cast<Connection*>(self)->m_globals.push_back({name, interface, version});
}

void Connection::removed(void* self, wl_registry* /*registry*/, std::uint32_t name) {
    std::erase_if(static_cast<Connection*>(self)->m_globals,
                  [name](const Global& global) { return global.name == name; });
}

} // namespace brimlet::desktop
