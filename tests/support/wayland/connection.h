#pragma once

#include <cstdint>
#include <string>
#include <vector>

struct wl_display;
struct wl_interface;
struct wl_registry;

/// What tests do in a private Wayland desktop, which script/desktop-session starts.
namespace brimlet::desktop {

/// Whether the private desktop is this one: "sway", "kwin", "mutter".
[[nodiscard]] bool is(const char* name);

/// A test's own connection to the compositor that WAYLAND_DISPLAY names. Ends the test program when
/// there is none or the compositor reports an error. Objects of the connection end with it.
class Connection final {
public:
    Connection();
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// The `index`-th global of that interface, at most at its version; null when there is none.
    template <typename Object>
    [[nodiscard]] Object* bind(const wl_interface& interface, std::uint32_t version,
                               std::size_t index = 0) const {
        return static_cast<Object*>(bound(interface, version, index));
    }
    /// Waits until the compositor has handled all requests and this side all events.
    void roundtrip() const;

private:
    struct Global final {
        std::uint32_t name = 0;
        std::string interface;
        std::uint32_t version = 0;
    };
    [[nodiscard]] void* bound(const wl_interface& interface, std::uint32_t version,
                              std::size_t index) const;
    static void added(void* self, wl_registry* registry, std::uint32_t name, const char* interface,
                      std::uint32_t version);
    static void removed(void* self, wl_registry* registry, std::uint32_t name);

    wl_display* m_display;
    wl_registry* m_registry = nullptr;
    std::vector<Global> m_globals;
};

} // namespace brimlet::desktop
