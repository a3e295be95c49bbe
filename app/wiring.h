#pragma once

#include "app/brimletapp.h"
#include "platform/cachesfolder.h"
#include "platform/picturedecoder.h"
#include "platform/reducemotion.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace brimlet {

class InstanceLock;

/// Create the native window around `content` and give it the ownership of that. `reduceMotion`
/// outlives it.
using NativeOverlayWindowFactory =
    std::function<std::unique_ptr<OverlayWindow>(std::unique_ptr<QWidget> content)>;
using NativeMenuWindowFactory = std::function<std::unique_ptr<MenuWindow>(
    std::unique_ptr<QWidget> content, const ReduceMotion& reduceMotion)>;

/// Every port of the program. The references outlive the main loop.
struct SystemPorts final {
    Screens& screens;
    Workspace& workspace;
    SecretStore& secrets;
    HttpClient& http;
    PictureDecoder& pictures;
    Bundle& bundle;
    Clock& clock;
    const CachesFolder& cachesFolder;
    ReduceMotion& reduceMotion;
    StatusItem& statusItem;
    NativeOverlayWindowFactory makeOverlayWindow;
    NativeMenuWindowFactory makeMenuWindow;
};

/// Call right after the application object is created. Sets its name and version, and makes
/// termination signals quit the main loop.
void configureApplication();

/// Creates the application on these ports, with the program's views in its windows. Call once.
[[nodiscard]] BrimletApp makeApp(const SystemPorts& system,
                                 StartReason reason = StartReason::ByHand);

/// Connects the requests of other processes to the application. Both outlive the main loop.
void handleRequests(const InstanceLock& instance, BrimletApp& app);

} // namespace brimlet
