#pragma once

#include "platform/observertoken.h"
#include "platform/rect.h"

#include <QString>

#include <functional>
#include <optional>

namespace brimlet {

/// The program's picture in the desktop's bar for such items. It has no title. Main thread only.
class StatusItem {
public:
    virtual ~StatusItem() = default;

    /// Whether there is a bar that shows it. That may change at any time.
    [[nodiscard]] virtual bool isShown() const = 0;

    /// Where it is, in global points; absent where the bar does not tell.
    [[nodiscard]] virtual std::optional<Rect> place() const = 0;

    /// What hovering shows, as plain text.
    virtual void setToolTip(const QString& text) = 0;

    /// Calls `pressed` on each click with the place where the click was, if that is known.
    virtual ObserverToken observePresses(std::function<void(std::optional<Rect>)> pressed) = 0;
};

} // namespace brimlet
