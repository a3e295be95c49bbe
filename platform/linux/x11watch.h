#pragma once

#include <cstdint>
#include <memory>

#include <xcb/xcb.h>

namespace brimlet {

/// What other programs did on the X screen since the last look. It listens on a connection of its
/// own that nobody waits for: what arrives there lies until somebody looks, so that windows which
/// are moved about wake nobody here. Without such a connection nothing is ever taken for unchanged.
class X11Watch final {
public:
    /// The one of the process, listening from the first use on.
    [[nodiscard]] static X11Watch& shared();

    X11Watch(const X11Watch&) = delete;
    X11Watch& operator=(const X11Watch&) = delete;

    /// Reads what lies there. To be called every few seconds, since the X server keeps what nobody
    /// reads. Costs it nothing.
    void look();

    /// A number that is another one once a window of another program was shown, moved or put into
    /// another order, or one of this program's was sent to the back.
    [[nodiscard]] std::uint64_t othersArrangement();
    /// The same of all windows.
    [[nodiscard]] std::uint64_t arrangement();
    /// Whether somebody blends transparent windows with what is behind them.
    [[nodiscard]] bool hasCompositor();

private:
    X11Watch();
    void note(const xcb_generic_event_t& event);

    struct Disconnect {
        void operator()(xcb_connection_t* connection) const { xcb_disconnect(connection); }
    };
    std::unique_ptr<xcb_connection_t, Disconnect> m_connection;
    std::uint32_t m_ownWindows = 0;     ///< What the numbers of this program's windows begin with.
    std::uint32_t m_ownWindowsMask = 0; ///< The bits that say so.
    std::uint8_t m_firstFixesEvent = 0;
    std::uint64_t m_arrangement = 0;
    std::uint64_t m_othersArrangement = 0;
    bool m_hasCompositor = true;
};

} // namespace brimlet
