#pragma once

#include "platform/observertoken.h"
#include "platform/rect.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

namespace brimlet {

/// What the system tells of one screen at one moment. A value: never keep it across a change of
/// screens, ask again.
struct Screen final {
    /// The system's number of the display; absent where the system gives none or something odd.
    std::optional<std::uint32_t> number;
    Rect frame;
    /// The usable strips left and right of a camera notch; absent on a screen without one.
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

    /// Whether the display of that number is part of the machine. The system answers for any
    /// number, 0 included, which stands for a screen that has none.
    [[nodiscard]] virtual bool isBuiltIn(std::uint32_t displayNumber) const = 0;

    /// Calls `changed` after screens came, went, moved or changed size.
    virtual ObserverToken observeChanges(std::function<void()> changed) = 0;
};

} // namespace brimlet
