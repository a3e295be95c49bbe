#pragma once

#include "host/hoststore.h"
#include "platform/menuwindow.h"
#include "platform/statusitem.h"

#include <QObject>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace brimlet {

/// Makes the panel's window with the menu inside.
using MenuWindowFactory =
    std::function<std::unique_ptr<MenuWindow>(const std::shared_ptr<HostStore>&)>;

/// What the menu-bar extra needs of the system. The ports outlive it.
struct MenuPorts final {
    StatusItem& statusItem;
    Clock& clock;
    MenuWindowFactory makeWindow;
};

/// The program's one place on the desktop besides the overlay: a status item, and the panel that a
/// click on it opens and closes. The panel is made when it is first opened. Main thread only.
class MenuBarExtra final : public QObject {
    Q_OBJECT

public:
    MenuBarExtra(std::shared_ptr<HostStore> store, MenuPorts ports);
    ~MenuBarExtra() override;
    Q_DISABLE_COPY_MOVE(MenuBarExtra)

    /// Opens the panel at the status item, or brings it to the front.
    void open();

    [[nodiscard]] bool isOpen() const { return m_window && m_window->isPresented(); }

private:
    void pressed(const std::optional<Rect>& place);
    void openAt(const std::optional<Rect>& place);
    void storeWillChange();
    [[nodiscard]] QCoro::Task<> openUnlessShown(std::stop_token end);

    std::shared_ptr<HostStore> m_store;
    MenuPorts m_ports;
    std::unique_ptr<MenuWindow> m_window;
    /// Uptime at which the panel last went away.
    std::optional<std::chrono::nanoseconds> m_dismissedAt;
    QString m_toolTip;
    bool m_isToolTipDue = false;
    std::stop_source m_end;
};

} // namespace brimlet
