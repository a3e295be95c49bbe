#pragma once

#include "tests/platform/linux/writefile.h"

#include <QTemporaryDir>

namespace brimlet {

/// A temporary stand-in for /sys/class/drm, the kernel's list of display connectors.
class PanelFolder final {
public:
    [[nodiscard]] QString path() const { return m_folder.path(); }

    /// Sets a connector's attribute. False when it could not be written.
    [[nodiscard]] bool set(const QString& connector, const QString& name, const QByteArray& value) {
        return writeFile(m_folder.filePath(connector + u'/' + name), value + '\n');
    }

private:
    QTemporaryDir m_folder;
};

} // namespace brimlet
