#pragma once

#include "platform/simulated/machine.h"

#include <QFileSystemWatcher>
#include <QObject>

namespace brimlet {

/// Reads a machine file and follows its edits. When the file becomes invalid or is removed, the
/// last valid machine stays in effect and an error is emitted. Main thread only.
class MachineFile final : public QObject {
    Q_OBJECT

public:
    /// Call `load()` before anything else.
    explicit MachineFile(QString path);

    /// Reads the file and starts watching it. Returns an empty text on success, otherwise one line
    /// that names the file and the error.
    [[nodiscard]] QString load();

    /// The error that `load()` would return. Watches nothing and needs no application object.
    [[nodiscard]] static QString errorIn(const QString& path);

    [[nodiscard]] const Machine& machine() const { return m_machine; }

Q_SIGNALS:
    /// After an edit that changed the machine. `before` is the previous machine.
    void changed(const Machine& before);
    /// After an edit that made the file invalid: one line that names the file and the error.
    void failed(const QString& error);

private:
    [[nodiscard]] static MachineResult readFile(const QString& path);
    void fileTouched();
    void watch();

    QString m_path;
    QString m_lastError;
    Machine m_machine;
    QFileSystemWatcher m_watcher;
};

} // namespace brimlet
