#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>
#include <optional>

namespace brimlet::fleet {

struct Options final {
    int hosts = 0;
    /// The placement service's root, without a slash at its end.
    QString root;
    /// The starts are spread evenly over it.
    std::chrono::seconds spread{3};
    /// How long is measured after all have started.
    std::chrono::seconds measured{30};
    /// Every host's token or, with `isTokenPrefix`, the text before the host's number; empty for
    /// none.
    QString token;
    bool isTokenPrefix = false;
    /// Empty for none.
    QString jsonFile;
    bool help = false;
    bool version = false;

    [[nodiscard]] bool hasToken() const { return !token.isEmpty(); }
    [[nodiscard]] QByteArray tokenOf(int host) const;
};

/// Reads the arguments after the program's name; absent when one is wrong, with `error` naming it.
[[nodiscard]] std::optional<Options> parseOptions(const QStringList& arguments, QString& error);

/// The text of --help, ending in a line break.
[[nodiscard]] QByteArray helpText();

} // namespace brimlet::fleet
