#pragma once

namespace brimlet {

/// Whether an item of the default collection can be read from the desktop's Secret Service.
enum class SecretServiceState {
    NoBus,
    Absent,
    NotStarted, ///< The bus starts it when it is needed.
    NoAnswer,
    Failed,
    NoCollection,
    Locked,
    Unlocked,
};

/// Asks a service that is running, which neither prompts nor unlocks anything. Blocks for 1.5 s at
/// most.
[[nodiscard]] SecretServiceState secretServiceState();

} // namespace brimlet
