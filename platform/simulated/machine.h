#pragma once

#include "platform/screens.h"

#include <QByteArray>
#include <QString>
#include <QVariantMap>

#include <optional>
#include <variant>
#include <vector>

namespace brimlet {

/// One display of a described machine.
struct MachineDisplay final {
    Screen screen;
    bool builtIn = false;

    bool operator==(const MachineDisplay&) const = default;
};

enum class MachineSecretStore {
    System, ///< The user's own store.
    Memory, ///< Kept in memory, lost when the process ends.
};

/// The contents of a machine file; docs/machines/README.md describes the keys. Absent values are
/// taken from the real machine.
struct Machine final {
    std::optional<std::vector<MachineDisplay>> displays;
    std::optional<QString> bundlePath;
    std::optional<QVariantMap> infoDictionary;
    std::optional<QString> cachesFolder;
    std::optional<MachineSecretStore> secretStore;
    std::optional<bool> reduceMotion;
    std::optional<bool> screensAsleep;
    /// The factor by which time runs faster than on the real machine, from 1 to 1000.
    double speed = 1;
    /// Whether to paint a black notch on the screen, for screenshots.
    bool drawNotch = false;

    bool operator==(const Machine&) const = default;
};

/// A machine, or one line that describes the error and its place.
using MachineResult = std::variant<Machine, QString>;

/// Parses a machine file, a JSON object in UTF-8. All keys are optional; unknown keys and wrong
/// types are errors.
[[nodiscard]] MachineResult readMachine(const QByteArray& text);

} // namespace brimlet
