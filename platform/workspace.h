#pragma once

#include "platform/observertoken.h"
#include "platform/url.h"

#include <functional>

namespace brimlet {

/// The user's desktop environment: whether its screens sleep, and its default browser. Main thread
/// only; blocks are called there too.
class Workspace {
public:
    virtual ~Workspace() = default;

    /// Calls `block` each time the screens went to sleep, perhaps twice without a wake in between.
    virtual ObserverToken observeScreensDidSleep(std::function<void()> block) = 0;
    /// Calls `block` each time the screens woke, perhaps twice without a sleep in between.
    virtual ObserverToken observeScreensDidWake(std::function<void()> block) = 0;

    /// Opens the address in the default browser. Returns at once; a failure is ignored.
    virtual void open(const Url& url) = 0;
};

} // namespace brimlet
