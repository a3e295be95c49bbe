#pragma once

#include "tests/platform/linux/writefile.h"

#include <QTemporaryDir>
#include <QtEndian>

namespace brimlet {

/// A temporary root folder with the kernel's files that describe an Apple laptop. Setters return
/// false when the file could not be written.
class KernelFolder final {
public:
    [[nodiscard]] QString path() const { return m_folder.path(); }

    /// Sets the device tree's "compatible" names, each ended by a zero byte.
    [[nodiscard]] bool setCompatible(const QByteArray& names) {
        return writeFile(m_folder.filePath(QStringLiteral("proc/device-tree/compatible")), names);
    }
    /// Sets the device tree's name of the model.
    [[nodiscard]] bool setModel(const QByteArray& name) {
        return writeFile(m_folder.filePath(QStringLiteral("proc/device-tree/model")), name + '\0');
    }
    /// Sets the device tree's panel: its size in millimetres, and the band's height in pixels.
    [[nodiscard]] bool setPanel(qint32 width, qint32 height, qint32 band) {
        const auto tree = m_folder.filePath(QStringLiteral("proc/device-tree"));
        const auto node = tree + QStringLiteral("/soc/dcp@38bc00000");
        return writeFile(tree + QStringLiteral("/aliases/dcp"),
                         QByteArray("/soc/dcp@38bc00000").append('\0')) &&
               writeFile(node + QStringLiteral("/panel/width-mm"), cell(width)) &&
               writeFile(node + QStringLiteral("/panel/height-mm"), cell(height)) &&
               writeFile(node + QStringLiteral("/apple,notch-height"), cell(band));
    }
    /// Sets the display driver's parameter.
    [[nodiscard]] bool setShowNotch(const QByteArray& value,
                                    const QString& driver = QStringLiteral("appledrm")) {
        const auto name = QStringLiteral("sys/module/%1/parameters/show_notch").arg(driver);
        return writeFile(m_folder.filePath(name), value);
    }

private:
    [[nodiscard]] static QByteArray cell(qint32 number) {
        QByteArray bytes(sizeof number, '\0');
        qToBigEndian(number, bytes.data());
        return bytes;
    }

    QTemporaryDir m_folder;
};

} // namespace brimlet
