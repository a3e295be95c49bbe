#pragma once

#include "app/brimletappdelegate.h"
#include "app/menubarextra.h"
#include "host/hoststore.h"
#include "overlay/overlaycontroller.h"
#include "platform/instancerequest.h"

#include <memory>

namespace brimlet {

/// The application: the shared store, the shared overlay, the menu-bar extra, and the connections
/// between them. At most one per process.
class BrimletApp final {
public:
    /// The ports outlive the process's main loop.
    BrimletApp(const HostPorts& host, const OverlayPorts& overlay, const MenuPorts& menu,
               StartReason reason = StartReason::ByHand);

    /// Starts the store and the overlay, and runs the main loop until the program quits; returns
    /// the exit code.
    [[nodiscard]] int run();

    /// Does what another process or the status item's menu asked of this one.
    void handle(InstanceRequest request);

    [[nodiscard]] const std::shared_ptr<HostStore>& store() const { return m_store; }
    [[nodiscard]] MenuBarExtra& menuBarExtra() { return m_menuBarExtra; }

private:
    BrimletAppDelegate m_appDelegate;
    std::shared_ptr<HostStore> m_store;
    MenuBarExtra m_menuBarExtra;
};

} // namespace brimlet
