#pragma once

#include <QCoroTask>

namespace brimlet {

/// Lets a task run without waiting for it. A task has run up to its first wait when it is passed
/// here, and must hold what it uses afterwards. Main thread only.
inline void startTask(QCoro::Task<>&& task) {
    [[maybe_unused]] const auto running = std::move(task);
}

} // namespace brimlet
