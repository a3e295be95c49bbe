#pragma once

#include <QString>

namespace brimlet {

/// A file or folder of the project, by its path below the project's folder.
[[nodiscard]] QString sourcePath(QStringView path);
/// A program that was built, by its name.
[[nodiscard]] QString programPath(QStringView name);
/// A file or folder of the hostile samples, which need not be there. Empty for their own folder.
[[nodiscard]] QString samplePath(QStringView path);

} // namespace brimlet
