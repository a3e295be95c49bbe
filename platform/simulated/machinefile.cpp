#include "platform/simulated/machinefile.h"

#include <QFile>
#include <QFileInfo>

#include <utility>

namespace brimlet {

MachineFile::MachineFile(QString path)
    : m_path(std::move(path)) {
    connect(&m_watcher, &QFileSystemWatcher::fileChanged, this, &MachineFile::fileTouched);
    connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, &MachineFile::fileTouched);
}

MachineResult MachineFile::readFile(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        return file.errorString();
    }
    constexpr qint64 kMaxBytes = qint64{1024} * 1024;
    const QByteArray text = file.read(kMaxBytes + 1);
    if (text.size() > kMaxBytes) {
        return QStringLiteral("larger than a mebibyte");
    }
    return readMachine(text);
}

QString MachineFile::errorIn(const QString& path) {
    const MachineResult result = readFile(path);
    const auto* const error = std::get_if<QString>(&result);
    return error == nullptr ? QString() : QStringLiteral("%1: %2").arg(path, *error);
}

QString MachineFile::load() {
    watch(); // before reading, so that no edit is missed in between
    MachineResult result = readFile(m_path);
    if (const auto* const error = std::get_if<QString>(&result)) {
        return QStringLiteral("%1: %2").arg(m_path, *error);
    }
    m_machine = std::get<Machine>(std::move(result));
    return {};
}

void MachineFile::watch() {
    // Many editors write a new file and rename it into place, which ends the watch on the old one.
    // The watch on the folder notices that.
    const QFileInfo file(m_path);
    m_watcher.addPath(file.absolutePath());
    if (file.exists()) {
        m_watcher.addPath(m_path);
    }
}

void MachineFile::fileTouched() {
    watch();
    MachineResult result = readFile(m_path);
    if (const auto* const error = std::get_if<QString>(&result)) {
        // The watcher may report one edit several times.
        if (std::exchange(m_lastError, *error) != *error) {
            Q_EMIT failed(
                QStringLiteral("%1: %2; the machine stays as it was").arg(m_path, *error));
        }
        return;
    }
    m_lastError.clear();
    const Machine before = std::exchange(m_machine, std::get<Machine>(std::move(result)));
    if (before != m_machine) {
        Q_EMIT changed(before);
    }
}

} // namespace brimlet
