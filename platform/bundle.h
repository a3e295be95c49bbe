#pragma once

#include <QString>
#include <QVariant>

namespace brimlet {

/// The installed program. Main thread only.
class Bundle {
public:
    virtual ~Bundle() = default;

    /// The path the program runs from, e.g. "/Applications/Brimlet.app". Read again on each call.
    [[nodiscard]] virtual QString path() const = 0;

    /// The value of a key in the info dictionary (Info.plist on macOS, share/brimlet/info.json on
    /// Linux), with its own type; an invalid QVariant if the key is missing. Read again on each
    /// call.
    [[nodiscard]] virtual QVariant infoDictionaryValue(const QString& key) const = 0;

    /// The application identifier in reverse-DNS form.
    [[nodiscard]] virtual QString identifier() const = 0;
};

} // namespace brimlet
