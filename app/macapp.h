#pragma once

#include "app/wiring.h"
#include "platform/bundle.h"

#include <QString>

namespace brimlet {

/// The lock file by which all copies of the program find each other, wherever they are installed:
/// in the user's caches folder, named by the program's identifier.
[[nodiscard]] QString lockFile(const Bundle& bundle, const CachesFolder& cachesFolder);

/// Before the application object is created: keeps the program in the background and sets the
/// plainest widget style.
void prepareMacApplication();

/// The whole of a process that only tests itself: prints the properties of the panel and the
/// screens, shows nothing and contacts no other process. Returns 0 if all are as required, else 1.
[[nodiscard]] int runSelfTest();

/// Makes the overlay's panel.
[[nodiscard]] std::unique_ptr<OverlayWindow> makeMacOverlayWindow(std::unique_ptr<QWidget> content);

/// Makes the menu-bar panel's window.
[[nodiscard]] std::unique_ptr<MenuWindow> makeMacMenuWindow(std::unique_ptr<QWidget> content);

/// Opens the panel when the system reopens the running program, as it does for a second start of
/// the same copy.
void openWhenReopened(BrimletApp& app);

} // namespace brimlet
