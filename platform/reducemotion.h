#pragma once

#include "platform/observertoken.h"

#include <functional>

namespace brimlet {

/// The user's wish for less movement on screen. Main thread only.
class ReduceMotion {
public:
    virtual ~ReduceMotion() = default;

    [[nodiscard]] virtual bool isOn() const = 0;

    /// Calls `changed` after the setting was changed.
    virtual ObserverToken observeChanges(std::function<void()> changed) = 0;
};

} // namespace brimlet
