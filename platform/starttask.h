#pragma once

#include <QCoroTask>

namespace brimlet {

/// Detaches a task: it runs on, and nobody waits for it. Tasks start eagerly, so it has already run
/// to its first suspension; what it uses after that it must own. Main thread only.
inline void startTask(QCoro::Task<>&& task) {
    [[maybe_unused]] const auto running = std::move(task);
}

} // namespace brimlet
