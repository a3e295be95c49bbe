#pragma once

#include <QDir>
#include <QFile>
#include <QTemporaryDir>

namespace brimlet {

/// A stand-in for the kernel's list of connectors.
class PanelFolder final {
public:
    [[nodiscard]] QString path() const { return m_folder.path(); }

    /// False when the attribute could not be written.
    [[nodiscard]] bool set(const QString& connector, const QString& name, const QByteArray& value) {
        const QDir folder(m_folder.filePath(connector));
        QFile file(folder.filePath(name));
        return folder.mkpath(QStringLiteral(".")) && file.open(QIODevice::WriteOnly) &&
               file.write(value + '\n') > 0;
    }

private:
    QTemporaryDir m_folder;
};

} // namespace brimlet
