#pragma once

#include <chrono>
#include <functional>

namespace brimlet {

/// Asked in the course of some work: true from the moment on when it has to be given up.
using WorkBudget = std::function<bool()>;

/// Spent once the calling thread has worked this long from now on. Time it waits or is kept from
/// the processor does not count.
[[nodiscard]] WorkBudget threadTime(std::chrono::milliseconds limit);

} // namespace brimlet
