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
    ObserverToken add(std::function<void()> block) {
        m_blocks.push_back(std::move(block));
        return ObserverToken{m_blocks.size()};
    }

    void notify() const {
        // A copy, because a block may add another one, which can reallocate the vector.
        const auto blocks = m_blocks;
        for (const auto& block : blocks) {
            block();
        }
    }

private:
    std::vector<std::function<void()>> m_blocks;
};

} // namespace brimlet
