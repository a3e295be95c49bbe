#pragma once

#include "platform/bundle.h"

namespace brimlet {

/// The application bundle. Outside one, as a bare executable, its path is the executable's folder.
class MacBundle final : public Bundle {
public:
    [[nodiscard]] QString path() const override;
    /// A text, a number as a double, or for anything else a value that is neither.
    [[nodiscard]] QVariant infoDictionaryValue(const QString& key) const override;
    [[nodiscard]] QString identifier() const override;
};

} // namespace brimlet
