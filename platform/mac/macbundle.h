#pragma once

#include "platform/bundle.h"

namespace brimlet {

/// The main bundle. For a bare executable its path is the executable's folder.
class MacBundle final : public Bundle {
public:
    [[nodiscard]] QString path() const override;
    /// A string, a number as a double, or an empty QVariantMap for a value of any other type.
    /// Invalid when the key is missing.
    [[nodiscard]] QVariant infoDictionaryValue(const QString& key) const override;
    [[nodiscard]] QString identifier() const override;
};

} // namespace brimlet
