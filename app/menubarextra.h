#pragma once

#include "host/hoststore.h"
#include "platform/instancerequest.h"
#include "platform/menuwindow.h"
#include "platform/onceperturn.h"
#include "platform/statusitem.h"

#include <QObject>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <stop_token>

namespace brimlet {

/// Makes the panel's window with the menu as its content.
using MenuWindowFactory =
    std::function<std::unique_ptr<MenuWindow>(const std::shared_ptr<HostStore>&)>;

/// The ports of the menu-bar extra, which they outlive.
struct MenuPorts final {
    StatusItem& statusItem;
    Clock& clock;
    MenuWindowFactory makeWindow;
};

/// The tray icon (status item), and the panel that a click on it opens and closes. The panel is
/// created when it is first opened. Main thread only.
class MenuBarExtra final : public QObject {
    Q_OBJECT

public:
    MenuBarExtra(std::shared_ptr<HostStore> store, MenuPorts ports,
                 StartReason reason = StartReason::ByHand);
    ~MenuBarExtra() override;
    Q_DISABLE_COPY_MOVE(MenuBarExtra)

    /// Opens the panel at the status item, or brings it to the front. If the item gets its place
    /// later, the panel moves there.
    void open();

    [[nodiscard]] bool isOpen() const { return m_window && m_window->isPresented(); }

private:
    void pressed(const std::optional<Rect>& place);
    void placeChanged();
    void openAt(const std::optional<Rect>& place);
    /// Updates the tooltip and the panel's place. The store changes with every poll.
    void storeChanged();
    /// Opens the panel after a start by hand: at once, or where no status item is shown in time.
    [[nodiscard]] QCoro::Task<> openAfterStart(StartReason reason, std::stop_token end);

    std::shared_ptr<HostStore> m_store;
    MenuPorts m_ports;
    std::unique_ptr<MenuWindow> m_window;
    /// When the panel last closed, in the clock's uptime.
    std::optional<std::chrono::nanoseconds> m_dismissedAt;
    std::optional<Rect> m_place; ///< Where the item was when the panel was last placed.
    QString m_toolTip;
    OncePerTurn m_update{[this] { storeChanged(); }};
    std::stop_source m_end;
};

} // namespace brimlet
