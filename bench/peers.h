#pragma once

#include "bench/results.h"
#include "bench/stage.h"

namespace brimlet {

/// Measures programs without capsules, each alone with its processes, so many times in a row: a
/// bare poll, other people's text bars that ask the stage's service by way of curl, and tray
/// programs that idle. One that is not installed, or ends by itself, has a remark in place of runs.
void measurePeers(Results& results, const Stage& stage, int times);

} // namespace brimlet
