#pragma once

#include <QString>

namespace brimlet {

/// The bundle's identifier, or "app.brimlet.host" for a bare executable, which has none, so that
/// both use the same keychain item.
[[nodiscard]] QString applicationIdentifier(const QString& bundleIdentifier);

} // namespace brimlet
