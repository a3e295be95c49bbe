#pragma once

#include "tests/platform/linux/writefile.h"

#include <QTemporaryDir>

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
    /// Sets the display driver's parameter.
    [[nodiscard]] bool setShowNotch(const QByteArray& value,
                                    const QString& driver = QStringLiteral("appledrm")) {
        const auto name = QStringLiteral("sys/module/%1/parameters/show_notch").arg(driver);
        return writeFile(m_folder.filePath(name), value);
    }

private:
    QTemporaryDir m_folder;
};

} // namespace brimlet
