#pragma once

#include "platform/bundle.h"

namespace brimlet {

/// "/Applications/Brimlet.app" for an executable below /usr or /opt, where package managers install
/// programs; otherwise the folder that contains the executable's "bin" folder. The path must be
/// absolute and free of symbolic links.
[[nodiscard]] QString bundlePath(const QString& resolvedExecutable);

/// The program in its installation folder: the executable is in "bin", the info dictionary is a
/// JSON object in "share/brimlet/info.json", read at each call.
class LinuxBundle final : public Bundle {
public:
    /// Resolves symbolic links in the path.
    explicit LinuxBundle(const QString& executable);

    [[nodiscard]] QString path() const override { return m_path; }
    [[nodiscard]] QVariant infoDictionaryValue(const QString& key) const override;
    [[nodiscard]] QString identifier() const override;

private:
    QString m_path;
    QString m_infoFile;
};

} // namespace brimlet
