#pragma once

#include "platform/qt/instancelock.h"

namespace brimlet {

/// The instance lock of a Linux session. Where there is a session bus, the process that runs also
/// owns a name there and is asked over the bus, by the desktop too. Needs the application object.
class SingleInstance final : public InstanceLock {
    Q_OBJECT

public:
    /// `name` is the bus name, in reverse-DNS form; the lock file is named after it.
    explicit SingleInstance(const QString& name);

    [[nodiscard]] std::optional<InstanceAnswer>
    claim(StartReason reason = StartReason::ByHand) override;

    /// Over the bus if the name has an owner there, which has 3 s to answer; else by a signal.
    [[nodiscard]] InstanceAnswer ask(InstanceRequest request) const override;

private:
    void ownName();
    [[nodiscard]] InstanceAnswer askOverBus(InstanceRequest request) const;
    [[nodiscard]] QString objectPath() const;

    QString m_name;
};

} // namespace brimlet
