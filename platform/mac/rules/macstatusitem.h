#pragma once

#include "platform/statusitem.h"

#include <QSystemTrayIcon>

#include <functional>
#include <optional>
#include <vector>

namespace brimlet {

/// The status item in the menu bar. It has no menu, because a menu would open at each press too.
class MacStatusItem final : public StatusItem {
public:
    MacStatusItem();

    /// Always true, because macOS does not report when the notch hides the item.
    [[nodiscard]] bool isShown() const override { return true; }
    [[nodiscard]] std::optional<Rect> place() const override;
    /// Never calls it: the menu bar has the item from the start.
    ObserverToken observePlace(std::function<void()> /*changed*/) override { return {}; }
    void setToolTip(const QString& text) override { m_icon.setToolTip(text); }
    ObserverToken observePresses(std::function<void(std::optional<Rect>)> pressed) override;
    /// Never calls it: there is no menu.
    ObserverToken observeMenu(std::function<void(InstanceRequest)> /*chosen*/) override {
        return {};
    }

private:
    QSystemTrayIcon m_icon;
    std::vector<std::function<void(std::optional<Rect>)>> m_observers;
};

} // namespace brimlet
