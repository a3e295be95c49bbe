#pragma once

#include "platform/observers.h"
#include "platform/workspace.h"

#include <QScopeGuard>

#include <functional>
#include <memory>
#include <utility>

namespace brimlet {

/// NSWorkspace: sleep and wake of the screens, and the default browser. While it exists, App Nap
/// does not delay the program's timers.
class MacWorkspace final : public Workspace {
public:
    MacWorkspace();

    ObserverToken observeScreensDidSleep(std::function<void()> block) override {
        return m_sleepObservers.add(std::move(block));
    }
    ObserverToken observeScreensDidWake(std::function<void()> block) override {
        return m_wakeObservers.add(std::move(block));
    }
    [[nodiscard]] std::shared_ptr<void> delaySuspend() override { return nullptr; }
    void open(const Url& url) override;

private:
    Observers m_sleepObservers;
    Observers m_wakeObservers;
    QScopeGuard<std::function<void()>> m_sleep;
    QScopeGuard<std::function<void()>> m_wake;
    QScopeGuard<std::function<void()>> m_activity;
};

} // namespace brimlet
