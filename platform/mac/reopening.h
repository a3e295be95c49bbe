#pragma once

#include <functional>

namespace brimlet {

/// From now on calls `block` on the main thread whenever the user opens the running program again
/// from the Finder, Spotlight or the Dock, which start no second process. Call this once, after the
/// application object was made.
void onReopened(std::function<void()> block);

} // namespace brimlet
