#pragma once

#include "platform/observertoken.h"

#include <functional>

namespace brimlet {

/// The desktop's setting for reduced motion. Main thread only.
class ReduceMotion {
public:
    virtual ~ReduceMotion() = default;

    [[nodiscard]] virtual bool isOn() const = 0;

    /// Calls `changed` after each change of the setting.
    virtual ObserverToken observeChanges(std::function<void()> changed) = 0;
};

} // namespace brimlet
