#pragma once

#include "app/wiring.h"
#include "platform/bundle.h"

#include <QString>

namespace brimlet {

/// The lock file by which all copies of the program find each other, wherever they are installed:
/// in the user's caches folder, named by the program's identifier.
[[nodiscard]] QString lockFile(const Bundle& bundle, const CachesFolder& cachesFolder);

/// Call before the application object is created. Keeps the program in the background and sets the
/// Fusion style.
void prepareMacApplication();

/// Tries the overlay, which is empty for that, the status item and the keychain, with an item of
/// its own, for about a second, and prints what it found. Contacts neither the running program nor
/// the network. Returns the exit code: 0 if everything is as required, else 1.
[[nodiscard]] int runSelfTest();

[[nodiscard]] std::unique_ptr<OverlayWindow> makeMacOverlayWindow(std::unique_ptr<QWidget> content);

/// The system animates it, unless motion is reduced.
[[nodiscard]] std::unique_ptr<MenuWindow> makeMacMenuWindow(std::unique_ptr<QWidget> content,
                                                            const ReduceMotion& reduceMotion);

/// Opens the panel when the system reopens the running program, as it does for a second start of
/// the same copy.
void openWhenReopened(BrimletApp& app);

} // namespace brimlet
