#pragma once

#include "platform/observertoken.h"
#include "platform/url.h"

#include <functional>

namespace brimlet {

/// The user's working environment: whether its screens sleep, and its default browser.
/// Main thread only.
class Workspace {
public:
    virtual ~Workspace() = default;

    virtual ObserverToken observeScreensDidSleep(std::function<void()> block) = 0;
    virtual ObserverToken observeScreensDidWake(std::function<void()> block) = 0;

    /// Hands the address to the default browser. Returns at once; a failure is ignored.
    virtual void open(const Url& url) = 0;
};

} // namespace brimlet
