#pragma once

#include "platform/observers.h"
#include "platform/reducemotion.h"

#include <QScopeGuard>

#include <functional>
#include <utility>

namespace brimlet {

/// "Reduce motion" in macOS's accessibility settings. Observers are also called when another
/// display setting for accessibility changes.
class MacReduceMotion final : public ReduceMotion {
public:
    MacReduceMotion();

    [[nodiscard]] bool isOn() const override;
    ObserverToken observeChanges(std::function<void()> changed) override {
        return m_observers.add(std::move(changed));
    }

private:
    Observers m_observers;
    QScopeGuard<std::function<void()>> m_registration;
};

} // namespace brimlet
