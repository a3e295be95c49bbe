#pragma once

#include <QObject>

namespace brimlet {

/// Starts the runtime of the host, once, after the application has finished launching.
class BrimletAppDelegate final : public QObject {
    Q_OBJECT

public:
    /// Queues the start for the next turn of the main loop and does nothing else. A second call
    /// starts nothing a second time.
    void applicationDidFinishLaunching();
};

} // namespace brimlet
