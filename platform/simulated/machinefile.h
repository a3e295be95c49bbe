#pragma once

#include "platform/simulated/machine.h"

#include <QFileSystemWatcher>
#include <QObject>

namespace brimlet {

/// The machine a file describes, followed through its edits. A file that turns bad or goes away
/// leaves the machine as it was and a complaint. Main thread only.
class MachineFile final : public QObject {
    Q_OBJECT

public:
    /// Needs `load()` before anything else.
    explicit MachineFile(QString path);

    /// Reads the file for the first time. Empty on success, else one line that names the file.
    [[nodiscard]] QString load();

    /// The same without keeping anything; needs no application object.
    [[nodiscard]] static QString complaintAbout(const QString& path);

    [[nodiscard]] const Machine& machine() const { return m_machine; }

Q_SIGNALS:
    /// After an edit that says something else. `before` is the machine up to now.
    void changed(const Machine& before);
    /// After an edit that cannot be followed: one line that names the file.
    void complained(const QString& complaint);

private:
    [[nodiscard]] static MachineResult readFile(const QString& path);
    void fileTouched();
    void watch();

    QString m_path;
    QString m_lastComplaint;
    Machine m_machine;
    QFileSystemWatcher m_watcher;
};

} // namespace brimlet
