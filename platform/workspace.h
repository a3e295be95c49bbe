#pragma once

#include "platform/observertoken.h"
#include "platform/url.h"

#include <functional>
#include <memory>

namespace brimlet {

/// The user's desktop environment: whether its screens sleep, and its default browser. Main thread
/// only; callbacks are called there too.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Calls `callback` each time the screens have gone to sleep, possibly twice in a row.
    virtual ObserverToken observeScreensDidSleep(std::function<void()> callback) = 0;
    /// Calls `callback` each time the screens have woken, possibly twice in a row.
    virtual ObserverToken observeScreensDidWake(std::function<void()> callback) = 0;

    /// Delays the machine's suspend, of which the screens' sleep may be the beginning, while the
    /// returned object exists, but for two seconds at most. Call it in the callback. Null where
    /// that is not possible.
    [[nodiscard]] virtual std::shared_ptr<void> delaySuspend() = 0;

    /// Opens the address in the default browser. Returns at once; a failure is ignored.
    virtual void open(const Url& url) = 0;
};

} // namespace brimlet
