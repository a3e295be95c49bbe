#pragma once

#include "app/brimletapp.h"
#include "platform/cachesfolder.h"
#include "platform/reducemotion.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace brimlet {

class InstanceLock;

/// Makes the native window around its content, which it takes ownership of.
using NativeOverlayWindow =
    std::function<std::unique_ptr<OverlayWindow>(std::unique_ptr<QWidget> content)>;
using NativeMenuWindow =
    std::function<std::unique_ptr<MenuWindow>(std::unique_ptr<QWidget> content)>;

/// Every port of the program. The references outlive the main loop.
struct SystemPorts final {
    Screens& screens;
    Workspace& workspace;
    SecretStore& secrets;
    HttpClient& http;
    Bundle& bundle;
    Clock& clock;
    const CachesFolder& cachesFolder;
    ReduceMotion& reduceMotion;
    StatusItem& statusItem;
    NativeOverlayWindow makeOverlayWindow;
    NativeMenuWindow makeMenuWindow;
};

/// What every program does right after it created the application object.
void configureApplication();

/// The application on those ports, with the program's views in its windows. Called once.
[[nodiscard]] BrimletApp makeApp(const SystemPorts& system);

/// Connects the requests of other processes to the application. Both outlive the main loop.
void obeyRequests(const InstanceLock& instance, BrimletApp& app);

} // namespace brimlet
