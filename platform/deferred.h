#pragma once

#include <QCoroTask>

#include <memory>
#include <optional>
#include <utility>

namespace brimlet {

/// A value that becomes available later: one side resolves it once, the other awaits it once.
/// Copies share the value. `resolve()` runs the waiting coroutine before it returns. The value must
/// eventually be resolved, or the waiting coroutine leaks. One thread only.
template <typename T>
class Deferred final {
public:
    /// Resolving a second time does nothing.
    void resolve(T value) const {
        const auto state = m_state; // the resumed coroutine may drop the last other reference
        if (state->value) {
            return;
        }
        state->value.emplace(std::move(value));
        if (const auto waiting = std::exchange(state->waiting, nullptr)) {
            waiting.resume();
        }
    }

    [[nodiscard]] bool isResolved() const { return m_state->value.has_value(); }

    [[nodiscard]] bool await_ready() const noexcept { return isResolved(); }
    void await_suspend(std::coroutine_handle<> waiting) const noexcept {
        m_state->waiting = waiting;
    }
    T await_resume() const { return std::move(*m_state->value); }

private:
    struct State {
        std::optional<T> value;
        std::coroutine_handle<> waiting;
    };
    std::shared_ptr<State> m_state = std::make_shared<State>();
};

} // namespace brimlet
