#pragma once

#include "platform/linux/appledisplay.h"
#include "platform/observers.h"
#include "platform/onceperturn.h"
#include "platform/screens.h"

#include <QRectF>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace brimlet {

/// Whether a connector of that name (such as "eDP-1") drives a laptop's built-in panel.
[[nodiscard]] bool isInternalConnector(const QString& name);

/// A screen as the display server counts it.
struct DesktopOutput final {
    QString connector; ///< Such as "eDP-1".
    QRectF geometry;   ///< Points, y down.
};

/// The display server's screens. A screen's number is its 1-based position in their list, and
/// changes when screens come and go. Only the panel of an Apple laptop that shows the band beside
/// its notch has auxiliary areas.
class LinuxScreens : public Screens {
public:
    /// `outputs` returns the present screens, the primary one first. `root` is the folder that
    /// contains "proc" and "sys". The device tree is read once, here; the display driver's setting
    /// at each `list()`, but only on a laptop with a notch.
    explicit LinuxScreens(std::function<std::vector<DesktopOutput>()> outputs,
                          QString root = QStringLiteral("/"));

    [[nodiscard]] std::vector<Screen> list() const override;
    [[nodiscard]] bool isBuiltIn(std::uint32_t displayNumber) const override;
    ObserverToken observeChanges(std::function<void()> changed) override;

    /// Calls the observers in a later turn of the event loop: one change of the desktop arrives as
    /// several signals, and during some of them the list of screens is not up to date yet.
    void announceChange() { m_announce.schedule(); }

private:
    std::function<std::vector<DesktopOutput>()> m_outputs;
    QString m_root;
    std::optional<NotchedPanel> m_panel;
    Observers m_observers;
    OncePerTurn m_announce{[this] { m_observers.notify(); }};
};

} // namespace brimlet
