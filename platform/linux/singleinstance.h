#pragma once

#include "platform/linux/freedesktopapplication.h"

#include <QObject>
#include <QString>

namespace brimlet {

/// Sees to it that a user runs the program once in a session. The one that runs owns a name on the
/// session bus, under which it can be asked for its panel. Without a session bus it holds a lock
/// file and is asked by signals, which it heeds in any case: SIGUSR1 for the panel, SIGUSR2 for a
/// pause; SIGTERM ends it as usual. Needs the application object.
class SingleInstance final : public QObject {
    Q_OBJECT

public:
    /// `name` is the bus name, in reverse-DNS form. The lock file bears it too.
    explicit SingleInstance(QString name);

    enum class Answer {
        Done,
        Nobody, ///< None runs.
        None,   ///< One runs, but it does not answer.
    };
    enum class Claim {
        First,    ///< This process is the one from now on.
        Second,   ///< Another one runs and has been asked for its panel.
        NoAnswer, ///< Another one runs, but it did not answer.
    };

    /// Called once. Requests that come in from then on wait for the main loop.
    [[nodiscard]] Claim claim();

    /// Hands the request to the one that runs. A signal counts as done once it is sent.
    [[nodiscard]] Answer ask(InstanceRequest request) const;

Q_SIGNALS:
    void requested(brimlet::InstanceRequest request);

private:
    [[nodiscard]] bool ownName();
    [[nodiscard]] bool lock();
    void catchSignals();
    [[nodiscard]] Answer askOverBus(InstanceRequest request) const;
    [[nodiscard]] Answer askBySignal(InstanceRequest request) const;
    [[nodiscard]] QString objectPath() const;
    [[nodiscard]] QString lockFile() const;

    QString m_name;
    int m_lock = -1; ///< Held until the process ends.
};

} // namespace brimlet
