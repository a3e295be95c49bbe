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
    Memory, ///< Gone with the process.
};

/// What a machine file says. What it leaves open is absent and taken from the real machine.
struct Machine final {
    std::optional<std::vector<MachineDisplay>> displays;
    std::optional<QString> bundlePath;
    std::optional<QVariantMap> infoDictionary;
    std::optional<QString> cachesFolder;
    std::optional<MachineSecretStore> secretStore;
    std::optional<bool> reduceMotion;
    std::optional<bool> screensAsleep;
    /// How many times as fast as on the real machine time passes, from 1 to 1000.
    double speed = 1;
    /// Paints the notch itself, so that a picture of the desktop looks like the machine.
    bool drawNotch = false;

    bool operator==(const Machine&) const = default;
};

/// A machine, or one line that says what is wrong and where.
using MachineResult = std::variant<Machine, QString>;

/// Reads a machine file's text: a JSON object. Every key is optional; unknown keys and wrong types
/// are errors.
[[nodiscard]] MachineResult readMachine(const QByteArray& text);

} // namespace brimlet
