#pragma once

#include "app/menubarextra.h"
#include "creative/creativeenvironment.h"
#include "overlay/overlaypanel.h"
#include "platform/bundle.h"
#include "platform/cachesfolder.h"
#include "platform/instancerequest.h"

#include <QString>

namespace brimlet {

class BrimletApp;
class InstanceLock;

/// The file by which copies of the program find each other, wherever they are installed: among the
/// user's caches, by the program's identifier.
[[nodiscard]] QString lockFile(const Bundle& bundle, const CachesFolder& cachesFolder);

/// What the program does before the application object: has Qt leave the program in the background
/// and use the plainest widget style.
void prepareMacApplication();

/// What it does right after it.
void configureMacApplication();

/// The whole of a program that only tests itself: prints what the panel and the screens are like
/// here, shows nothing, and asks nobody; 0 if all is as it has to be, else 1.
[[nodiscard]] int runSelfTest();

/// Makes the overlay's panel with its views inside.
[[nodiscard]] OverlayWindowFactory overlayWindowFactory(const CreativeEnvironment& environment);

/// Makes the menu-bar panel's window with the menu inside, whose "Quit" ends the main loop.
[[nodiscard]] MenuWindowFactory menuWindowFactory(const CreativeEnvironment& environment);

/// Has the application do what other starts of the program ask of it, and what the system does,
/// which starts no other where it knows of one.
void obeyRequests(const InstanceLock& instance, BrimletApp& app);

} // namespace brimlet
