#pragma once

#include "platform/observertoken.h"
#include "platform/rect.h"

#include <functional>
#include <optional>

namespace brimlet {

/// The native window around the menu-bar panel: free-standing, without a frame, above other
/// windows, as large as its content and never larger than the screen. It goes away when the user
/// turns to something else or presses Escape. It is created hidden. Main thread only.
class MenuWindow {
public:
    virtual ~MenuWindow() = default;

    /// Shows it beside the status item's place (global points), in a corner of the screen when that
    /// is absent, and gives it the keyboard. One that is shown comes to the front.
    virtual void present(const std::optional<Rect>& item) = 0;

    virtual void dismiss() = 0;

    [[nodiscard]] virtual bool isPresented() const = 0;

    /// Calls `dismissed` each time it went away, whoever sent it.
    virtual ObserverToken observeDismissals(std::function<void()> dismissed) = 0;
};

} // namespace brimlet
