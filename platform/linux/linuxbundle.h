#pragma once

#include "platform/bundle.h"

namespace brimlet {

/// "/Applications/Brimlet.app" when the executable lies where a package manager installs programs
/// (below /usr or /opt), else the folder the program is installed in.
[[nodiscard]] QString bundlePath(const QString& resolvedExecutable);

/// The program in its installation folder: the executable in "bin", the info dictionary as a JSON
/// object in "share/brimlet/info.json".
class LinuxBundle final : public Bundle {
public:
    /// Symbolic links in the path are followed once, here.
    explicit LinuxBundle(const QString& executable);

    [[nodiscard]] QString path() const override;
    [[nodiscard]] QVariant infoDictionaryValue(const QString& key) const override;
    [[nodiscard]] QString identifier() const override;

private:
    QString m_executable;
};

} // namespace brimlet
