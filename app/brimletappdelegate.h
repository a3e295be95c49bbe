#pragma once

#include <QObject>

namespace brimlet {

/// Starts the store and the overlay once the application has finished launching.
class BrimletAppDelegate final : public QObject {
    Q_OBJECT

public:
    /// Queues the start for the next turn of the main loop. Further calls have no effect.
    void applicationDidFinishLaunching();
};

} // namespace brimlet
