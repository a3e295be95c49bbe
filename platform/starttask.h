#pragma once

#include <QCoroTask>

namespace brimlet {

/// Starts a main-thread task and lets it run on by itself: it begins at once, up to its first
/// wait, and its caller goes on. A task holds what it touches, so nothing has to wait for it.
inline void startTask(QCoro::Task<>&& task) {
    [[maybe_unused]] const auto running = std::move(task);
}

} // namespace brimlet
