#pragma once

#include "platform/linux/appledisplay.h"
#include "platform/observers.h"
#include "platform/onceperturn.h"
#include "platform/screens.h"

#include <QObject>
#include <QString>

#include <optional>

class QScreen;

namespace brimlet {

/// Whether a connector of that name (such as "eDP-1") drives a laptop's built-in panel.
[[nodiscard]] bool isInternalConnector(const QString& name);

/// Qt's screens, the primary one first. A screen's number is its 1-based position in that list, and
/// changes when screens come and go. Only the panel of an Apple laptop that shows the band beside
/// its notch has auxiliary areas.
class QtScreens final : public QObject, public Screens {
    Q_OBJECT

public:
    /// Needs the application object. `root` is the folder that contains "proc" and "sys". The
    /// device tree is read once, here; the display driver's setting at each `list()`, but only on a
    /// laptop with a notch.
    explicit QtScreens(QString root = QStringLiteral("/"));

    [[nodiscard]] std::vector<Screen> list() const override;
    [[nodiscard]] bool isBuiltIn(std::uint32_t displayNumber) const override;
    ObserverToken observeChanges(std::function<void()> changed) override;

private:
    void watch(QScreen* screen);

    QString m_root;
    std::optional<NotchedPanel> m_panel;
    Observers m_observers;
    /// One change of the desktop arrives as several signals, and during some of them the list of
    /// screens is not up to date yet.
    OncePerTurn m_announce{[this] { m_observers.notify(); }};
};

} // namespace brimlet
