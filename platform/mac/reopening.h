#pragma once

#include <functional>

namespace brimlet {

/// From now on, until the process ends, calls `block` whenever the running program is opened once
/// more from the Finder, Spotlight or the Dock: those start no second process. Called once, with
/// the application object there.
void onReopened(std::function<void()> block);

} // namespace brimlet
