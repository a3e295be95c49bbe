#pragma once

#include "overlay/notchgeometry.h"
#include "overlay/overlayruntime.h"
#include "platform/overlaywindow.h"

#include <functional>
#include <memory>
#include <optional>

namespace brimlet {

class HostStore;

/// Makes the native window with the views of the runtime, which outlives the window.
using OverlayWindowFactory = std::function<std::unique_ptr<OverlayWindow>(OverlayRuntime&)>;

/// The ports of the overlay. They outlive the panel.
struct OverlayPorts final {
    const Screens& screens;
    Workspace& workspace;
    OverlayWindowFactory makeWindow;
};

/// The overlay's panel, at the top edge of the built-in screen and centred on the notch. Shown and
/// hidden by the store's state. Main thread only.
class OverlayPanel final {
public:
    /// Placed at the notch, ordered out and ignoring the mouse.
    explicit OverlayPanel(const OverlayPorts& ports);

    /// Updates the panel and its runtime from the store. Measures the notch and places the window
    /// each time, so this handles changes of screens, too.
    void render(const HostStore& store);

    [[nodiscard]] const OverlayRuntime& runtime() const { return *m_runtime; }
    /// The window's frame in global points; absent until a built-in screen was found.
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
