#pragma once

#include <Qt>

namespace brimlet {

/// Whether a control that gets the focus for this reason shows a ring: when the keyboard has
/// brought it there, not the mouse. When the focus comes back to it from a menu or another window,
/// it is as `before`.
[[nodiscard]] constexpr bool isFocusMarked(Qt::FocusReason reason, bool before) {
    switch (reason) {
    case Qt::MouseFocusReason:
        return false;
    case Qt::ActiveWindowFocusReason:
    case Qt::PopupFocusReason:
    case Qt::MenuBarFocusReason:
        return before;
    default:
        return true;
    }
}

} // namespace brimlet
