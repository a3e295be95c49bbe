#pragma once

#include <QString>
#include <QVariant>

namespace brimlet {

/// The program as it is installed. Main thread only.
class Bundle {
public:
    virtual ~Bundle() = default;

    /// Where the program runs from, e.g. "/Applications/Brimlet.app". Asked afresh each time.
    [[nodiscard]] virtual QString path() const = 0;

    /// The value of a key of the info dictionary, of whatever type it has there; invalid when the
    /// key is missing. Read anew at each question.
    [[nodiscard]] virtual QVariant infoDictionaryValue(const QString& key) const = 0;

    /// The application identifier in reverse-DNS form.
    [[nodiscard]] virtual QString identifier() const = 0;
};

} // namespace brimlet
