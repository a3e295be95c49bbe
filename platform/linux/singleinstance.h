#pragma once

#include "platform/qt/instancelock.h"

#include <QObject>
#include <QString>

namespace brimlet {

/// Sees to it that a user runs the program once in a session. The one that runs owns a name on the
/// session bus, under which it can be asked for its panel. Without a session bus it holds a lock
/// file and is asked by the signals of InstanceLock, which it heeds in any case. Needs the
/// application object.
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

    /// Called once. Requests that come in from then on wait for the main loop.
    [[nodiscard]] InstanceClaim claim();

    /// Hands the request to the one that runs. A signal counts as done once it is sent.
    [[nodiscard]] Answer ask(InstanceRequest request) const;

Q_SIGNALS:
    void requested(brimlet::InstanceRequest request);

private:
    [[nodiscard]] InstanceClaim claimOverBus();
    [[nodiscard]] bool ownName();
    [[nodiscard]] Answer askOverBus(InstanceRequest request) const;
    [[nodiscard]] QString objectPath() const;

    QString m_name;
    InstanceLock m_lock;
};

} // namespace brimlet
