#pragma once

#include "platform/observertoken.h"
#include "platform/rect.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace brimlet {

/// A snapshot of one screen; it is not updated when the screens change. Rectangles are in global
/// points.
struct Screen final {
    /// The system's number of the display; absent where the system gives none or an invalid one.
    std::optional<std::uint32_t> number;
    Rect frame;
    /// The usable strips left and right of a camera notch; absent on a screen without a notch.
    std::optional<Rect> auxiliaryTopLeftArea;
    std::optional<Rect> auxiliaryTopRightArea;

    bool operator==(const Screen&) const = default;
};

/// The screens of the machine. Main thread only.
class Screens {
public:
    virtual ~Screens() = default;

    /// All screens in the system's own order; the first is the primary one.
    [[nodiscard]] virtual std::vector<Screen> list() const = 0;

    /// Whether the display of that number is built into the machine. Any number is allowed; 0
    /// stands for a screen without one.
    [[nodiscard]] virtual bool isBuiltIn(std::uint32_t displayNumber) const = 0;

    /// Calls `changed` after screens were added, removed, moved or resized.
    virtual ObserverToken observeChanges(std::function<void()> changed) = 0;
};

} // namespace brimlet
