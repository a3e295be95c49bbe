#pragma once

#include "platform/observertoken.h"

#include <functional>
#include <utility>
#include <vector>

namespace brimlet {

/// The list of blocks behind a port's notification. Blocks run in the order of registration, on the
/// main thread; one that is added while the list is being called waits for the next call.
class Observers final {
public:
    ObserverToken add(std::function<void()> block) {
        m_blocks.push_back(std::move(block));
        return ObserverToken{m_blocks.size()};
    }

    void notify() const {
        // A copy, because a block may register another one and so move the list.
        const auto blocks = m_blocks;
        for (const auto& block : blocks) {
            block();
        }
    }

private:
    std::vector<std::function<void()>> m_blocks;
};

} // namespace brimlet
