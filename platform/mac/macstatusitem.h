#pragma once

#include "platform/observers.h"
#include "platform/statusitem.h"

#include <functional>
#include <memory>
#include <optional>

namespace brimlet {

/// An NSStatusItem without a menu. It is pressed when a mouse button goes down on it, as a menu
/// opens, or by an accessibility press. The current event is not looked at: it may be of any kind.
class MacStatusItem final : public StatusItem {
public:
    MacStatusItem();
    ~MacStatusItem() override;
    MacStatusItem(const MacStatusItem&) = delete;
    MacStatusItem& operator=(const MacStatusItem&) = delete;

    /// Always true, because macOS does not report when the notch hides the item.
    [[nodiscard]] bool isShown() const override { return true; }
    [[nodiscard]] std::optional<Rect> place() const override;
    /// Never calls it: the menu bar has the item from the start.
    ObserverToken observePlace(std::function<void()> /*changed*/) override { return {}; }
    void setToolTip(const QString& text) override;
    ObserverToken observePresses(std::function<void(std::optional<Rect>)> pressed) override {
        return m_presses.add([this, pressed = std::move(pressed)] { pressed(place()); });
    }
    /// Never calls it: there is no menu.
    ObserverToken observeMenu(std::function<void(InstanceRequest)> /*chosen*/) override {
        return {};
    }

private:
    struct Native;

    Observers m_presses;
    std::unique_ptr<Native> m_native;
};

} // namespace brimlet
