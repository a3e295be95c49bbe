#pragma once

#include "app/brimletappdelegate.h"
#include "host/hoststore.h"
#include "overlay/overlaycontroller.h"

#include <memory>

namespace brimlet {

/// The application: the one store, the one overlay, and what joins them. At most one per process.
class BrimletApp final {
public:
    /// The ports outlive the process's main loop.
    BrimletApp(const HostPorts& host, const OverlayPorts& overlay);

    /// Launches and runs the main loop until the program is asked to quit; returns its exit code.
    [[nodiscard]] int run();

    [[nodiscard]] const std::shared_ptr<HostStore>& store() const { return m_store; }

private:
    BrimletAppDelegate m_appDelegate;
    std::shared_ptr<HostStore> m_store;
};

} // namespace brimlet
