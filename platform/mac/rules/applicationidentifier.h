#pragma once

#include <QString>

namespace brimlet {

/// The program's identifier: what its bundle says; without one, as a bare executable, what the
/// bundle would say, so that it finds the same keychain item.
[[nodiscard]] QString applicationIdentifier(const QString& ofBundle);

} // namespace brimlet
