#pragma once

#include "platform/instancerequest.h"

#include <QObject>
#include <QString>

namespace brimlet {

/// A file that one running program holds locked, by which other starts of it find and ask it. They
/// ask by signals: SIGUSR1 for the panel, SIGUSR2 for a pause; SIGTERM ends it as usual. The lock
/// goes with the process, however that ends.
class InstanceLock final : public QObject {
    Q_OBJECT

public:
    /// The file is made when it is claimed; its folder has to be there.
    explicit InstanceLock(QString file);

    /// Called once, with the application object there. The first, too, where no file can be locked.
    /// Requests that come in from then on wait for the main loop.
    [[nodiscard]] InstanceClaim claim();

    /// Hands the request to the one that runs; false when none does. It counts as done once sent.
    [[nodiscard]] bool ask(InstanceRequest request) const;

    /// What `claim` begins with: the signals are requests from now on.
    void hearRequests();

Q_SIGNALS:
    void requested(brimlet::InstanceRequest request);

private:
    [[nodiscard]] bool lock();

    QString m_file;
    int m_descriptor = -1; ///< Open until the process ends.
};

} // namespace brimlet
