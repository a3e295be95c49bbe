#pragma once

#include "platform/linux/traywatch.h"
#include "platform/observers.h"
#include "platform/statusitem.h"

#include <QMenu>
#include <QPoint>
#include <QSystemTrayIcon>

#include <memory>
#include <vector>

namespace brimlet {

/// The status item in the desktop's tray, with a menu for the right click and for trays that offer
/// only that. It appears once a tray is running, which may be long after construction, and then
/// follows trays of the same kind that end and return.
class TrayStatusItem final : public QObject, public StatusItem {
    Q_OBJECT

public:
    TrayStatusItem();

    [[nodiscard]] bool isShown() const override { return m_icon != nullptr; }
    /// With an XEmbed tray it is known as soon as the tray has taken the icon. StatusNotifier trays
    /// do not report it: it is that of the last click, as long as a bar is there.
    [[nodiscard]] std::optional<Rect> place() const override;
    ObserverToken observePlace(std::function<void()> changed) override {
        return m_placeObservers.add(std::move(changed));
    }
    void setToolTip(const QString& text) override;
    ObserverToken observePresses(std::function<void(std::optional<Rect>)> pressed) override;
    ObserverToken observeMenu(std::function<void(InstanceRequest)> chosen) override;

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void showIcon();
    void fillMenu();
    void pressed(QSystemTrayIcon::ActivationReason reason);

    TrayWatch m_watch;
    Observers m_placeObservers; ///< Used while the icon ends, so it is declared before that.
    std::unique_ptr<QMenu> m_menu;
    std::unique_ptr<QSystemTrayIcon> m_icon;
    QString m_toolTip;
    std::optional<QPoint> m_lastClick; ///< In Qt's space.
    std::vector<std::function<void(std::optional<Rect>)>> m_observers;
    std::vector<std::function<void(InstanceRequest)>> m_menuObservers;
};

} // namespace brimlet
