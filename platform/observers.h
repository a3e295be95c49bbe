#pragma once

#include "platform/observertoken.h"

#include <functional>
#include <utility>
#include <vector>

namespace brimlet {

/// The callbacks of a port's notification, called in the order of registration, on the main thread.
/// One that is added during a notification is first called at the next one.
class Observers final {
public:
    ObserverToken add(std::function<void()> callback) {
        m_callbacks.push_back(std::move(callback));
        return ObserverToken{m_callbacks.size()};
    }

    void notify() const {
        // A copy, because a callback may add another one, which can reallocate the vector.
        const auto callbacks = m_callbacks;
        for (const auto& callback : callbacks) {
            callback();
        }
    }

private:
    std::vector<std::function<void()>> m_callbacks;
};

} // namespace brimlet
