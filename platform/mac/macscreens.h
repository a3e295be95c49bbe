#pragma once

#include "platform/observers.h"
#include "platform/screens.h"

#include <QScopeGuard>

#include <cstdint>
#include <functional>
#include <utility>
#include <vector>

namespace brimlet {

/// The list of NSScreen, read at each call.
class MacScreens final : public Screens {
public:
    MacScreens();

    [[nodiscard]] std::vector<Screen> list() const override;
    [[nodiscard]] bool isBuiltIn(std::uint32_t displayNumber) const override;
    ObserverToken observeChanges(std::function<void()> changed) override {
        return m_observers.add(std::move(changed));
    }

private:
    Observers m_observers;
    QScopeGuard<std::function<void()>> m_registration;
};

} // namespace brimlet
