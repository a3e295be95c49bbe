#pragma once

#include "platform/instancerequest.h"

#include <QObject>
#include <QString>

#include <optional>

namespace brimlet {

/// Lets one process of the program run at a time: the one that holds a file locked. The kernel
/// releases the lock when that process ends, in any way, and gives other processes its process ID.
/// They send their requests as signals: SIGUSR1 opens the panel, SIGUSR2 pauses, SIGTERM ends it.
class InstanceLock : public QObject {
    Q_OBJECT

public:
    /// The file is created by `claim`; its folder must exist.
    explicit InstanceLock(QString file);

    /// Makes this process the one that runs, if none does. Otherwise asks that one to open its
    /// panel, unless the session started this one, and returns the answer. Where the file cannot be
    /// locked, every process runs. Called once, after the application object was created; requests
    /// that arrive from then on are emitted by the main loop.
    [[nodiscard]] virtual std::optional<InstanceAnswer>
    claim(StartReason reason = StartReason::ByHand);

    /// Asks the process that runs. A signal counts as done once it is sent.
    [[nodiscard]] virtual InstanceAnswer ask(InstanceRequest request) const;

Q_SIGNALS:
    void requested(brimlet::InstanceRequest request);

private:
    [[nodiscard]] bool lock();

    QString m_file;
    int m_descriptor = -1; ///< Open until the process ends.
};

} // namespace brimlet
