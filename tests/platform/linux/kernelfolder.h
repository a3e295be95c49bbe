#pragma once

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryDir>

namespace brimlet {

/// A stand-in for what the kernel tells of an Apple laptop below "/".
class KernelFolder final {
public:
    [[nodiscard]] QString path() const { return m_folder.path(); }

    /// The names of the machine's kind, each ended by a zero byte. False when they could not be
    /// written.
    [[nodiscard]] bool setCompatible(const QByteArray& names) {
        return write(QStringLiteral("proc/device-tree/compatible"), names);
    }
    [[nodiscard]] bool setShowNotch(const QByteArray& value,
                                    const QString& driver = QStringLiteral("appledrm")) {
        return write(QStringLiteral("sys/module/%1/parameters/show_notch").arg(driver), value);
    }

private:
    [[nodiscard]] bool write(const QString& name, const QByteArray& content) {
        const QString path = m_folder.filePath(name);
        QFile file(path);
        return QDir().mkpath(QFileInfo(path).path()) && file.open(QIODevice::WriteOnly) &&
               file.write(content) == content.size();
    }

    QTemporaryDir m_folder;
};

} // namespace brimlet
