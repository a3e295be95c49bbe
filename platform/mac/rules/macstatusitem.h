#pragma once

#include "platform/statusitem.h"

#include <QSystemTrayIcon>

#include <functional>
#include <optional>
#include <vector>

namespace brimlet {

/// The status item in the menu bar. It has no menu, which would open besides what a press does.
class MacStatusItem final : public StatusItem {
public:
    MacStatusItem();

    /// The menu bar is always there; whether the notch hides the item, nobody tells.
    [[nodiscard]] bool isShown() const override { return true; }
    [[nodiscard]] std::optional<Rect> place() const override;
    void setToolTip(const QString& text) override { m_icon.setToolTip(text); }
    ObserverToken observePresses(std::function<void(std::optional<Rect>)> pressed) override;

private:
    QSystemTrayIcon m_icon;
    std::vector<std::function<void(std::optional<Rect>)>> m_observers;
};

} // namespace brimlet
