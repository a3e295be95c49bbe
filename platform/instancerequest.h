#pragma once

namespace brimlet {

/// What the desktop, or another start of the program, can request of the running instance.
enum class InstanceRequest {
    Open,  ///< Open the panel.
    Pause, ///< Pause ads for 24 hours.
    Quit,
};

/// The result of a start's claim to be the only instance.
enum class InstanceClaim {
    First,    ///< This process is now the running instance.
    Second,   ///< Another instance runs and has been asked to open its panel.
    NoAnswer, ///< Another instance runs, but it did not answer or cannot be asked.
};

} // namespace brimlet
