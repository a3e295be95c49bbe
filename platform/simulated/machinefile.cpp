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
    constexpr qint64 kMostBytes = qint64{1024} * 1024;
    const QByteArray text = file.read(kMostBytes + 1);
    if (text.size() > kMostBytes) {
        return QStringLiteral("larger than a mebibyte");
    }
    return readMachine(text);
}

QString MachineFile::complaintAbout(const QString& path) {
    const MachineResult result = readFile(path);
    const auto* const complaint = std::get_if<QString>(&result);
    return complaint == nullptr ? QString() : QStringLiteral("%1: %2").arg(path, *complaint);
}

QString MachineFile::load() {
    watch(); // first, so that no edit falls between
    MachineResult result = readFile(m_path);
    if (const auto* const complaint = std::get_if<QString>(&result)) {
        return QStringLiteral("%1: %2").arg(m_path, *complaint);
    }
    m_machine = std::get<Machine>(std::move(result));
    return {};
}

void MachineFile::watch() {
    // An editor may write a new file and rename it into place, which ends the watch on the old
    // one; the folder tells of that.
    const QFileInfo file(m_path);
    m_watcher.addPath(file.absolutePath());
    if (file.exists()) {
        m_watcher.addPath(m_path);
    }
}

void MachineFile::fileTouched() {
    watch();
    MachineResult result = readFile(m_path);
    if (const auto* const complaint = std::get_if<QString>(&result)) {
        // One edit may be reported several times.
        if (std::exchange(m_lastComplaint, *complaint) != *complaint) {
            Q_EMIT complained(
                QStringLiteral("%1: %2; the machine stays as it was").arg(m_path, *complaint));
        }
        return;
    }
    m_lastComplaint.clear();
    const Machine before = std::exchange(m_machine, std::get<Machine>(std::move(result)));
    if (before != m_machine) {
        Q_EMIT changed(before);
    }
}

} // namespace brimlet
