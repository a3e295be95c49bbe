#pragma once

#include "overlay/notchgeometry.h"
#include "overlay/overlayruntime.h"
#include "platform/overlaywindow.h"

#include <functional>
#include <memory>
#include <optional>

namespace brimlet {

class HostStore;

/// Makes the native window and, inside it, the views over the runtime, which outlives the window.
using OverlayWindowFactory = std::function<std::unique_ptr<OverlayWindow>(OverlayRuntime&)>;

/// What the overlay needs of the system. The references outlive the panel.
struct OverlayPorts final {
    const Screens& screens;
    Workspace& workspace;
    OverlayWindowFactory makeWindow;
};

/// The one panel of the overlay: stands at the top edge of the built-in screen, centred on the
/// notch, and shows or hides itself by the store's state. Main thread only.
class OverlayPanel final {
public:
    /// Placed at the notch, ordered out, letting clicks through.
    explicit OverlayPanel(const OverlayPorts& ports);

    /// Brings the panel and its runtime in line with the store. Measures and places afresh each
    /// time, so a change of screens is picked up here.
    void render(const HostStore& store);

    [[nodiscard]] const OverlayRuntime& runtime() const { return *m_runtime; }
    /// Global points; what the window was last told, absent before a built-in screen was found.
    [[nodiscard]] const std::optional<Rect>& frame() const { return m_frame; }
    [[nodiscard]] bool isShown() const { return m_isShown; }

private:
    void positionAtNotch();

    const Screens& m_screens;
    std::unique_ptr<OverlayRuntime> m_runtime;
    std::unique_ptr<OverlayWindow> m_window;
    std::optional<Rect> m_frame;
    bool m_isShown = false;
};

} // namespace brimlet
