#pragma once

#include "platform/observertoken.h"
#include "platform/rect.h"

#include <functional>
#include <optional>

namespace brimlet {

/// The native window around the menu-bar panel: frameless, above other windows, as large as its
/// content but not larger than the screen. It is dismissed when it loses the keyboard focus or the
/// user presses Escape. It is created hidden. Main thread only.
class MenuWindow {
public:
    virtual ~MenuWindow() = default;

    /// Shows it next to `item`, the status item's place in global points, or, if that is absent, in
    /// the corner of the screen where trays usually are. Gives it the keyboard focus. Raises it if
    /// it is already shown.
    virtual void present(const std::optional<Rect>& item) = 0;

    /// Moves it next to the status item's new place, if it is shown.
    virtual void follow(const Rect& item) = 0;

    /// Closes it: when this returns, it is not presented any more, and the observers have been
    /// called if it was. It may still fade out.
    virtual void dismiss() = 0;

    [[nodiscard]] virtual bool isPresented() const = 0;

    /// Calls `dismissed` after each dismissal, by `dismiss()` or by the user.
    virtual ObserverToken observeDismissals(std::function<void()> dismissed) = 0;
};

} // namespace brimlet
