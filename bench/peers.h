#pragma once

#include "bench/report.h"
#include "bench/stage.h"

#include <chrono>

namespace brimlet {

/// Measures and prints other people's programs, each alone with its processes: first a text bar
/// that asks the stage's service by way of curl, then tray programs that idle. One that is not
/// installed, or ends by itself, has a remark in place of figures.
void measurePeers(const Places& places, const Stage& stage, std::chrono::seconds time);

/// A program that polls the stage's service with libcurl and does nothing else.
[[nodiscard]] Row measureCurlFloor(const Places& places, const Stage& stage,
                                   std::chrono::seconds time);

} // namespace brimlet
