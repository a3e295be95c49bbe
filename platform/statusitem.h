#pragma once

#include "platform/instancerequest.h"
#include "platform/observertoken.h"
#include "platform/rect.h"

#include <QString>

#include <functional>
#include <optional>

namespace brimlet {

/// The program's icon in the desktop's tray or menu bar. It shows no text. Main thread only.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// Whether there is a tray or menu bar that shows it, which may change at any time.
    [[nodiscard]] virtual bool isShown() const = 0;

    /// Its place in global points; absent where that is unknown.
    [[nodiscard]] virtual std::optional<Rect> place() const = 0;

    /// Calls `changed` when `place` has become known or may have changed.
    virtual ObserverToken observePlace(std::function<void()> changed) = 0;

    /// Sets the tooltip, plain text.
    virtual void setToolTip(const QString& text) = 0;

    /// Calls `pressed` on each click with the place of the item or the click, in global points, if
    /// that is known.
    virtual ObserverToken observePresses(std::function<void(std::optional<Rect>)> pressed) = 0;

    /// Calls `chosen` when the user chooses an entry of the item's menu, if it has one.
    virtual ObserverToken observeMenu(std::function<void(InstanceRequest)> chosen) = 0;
};

} // namespace brimlet
