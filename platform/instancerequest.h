#pragma once

namespace brimlet {

/// What the desktop and other starts of the program may ask of the one that runs.
enum class InstanceRequest {
    Open,  ///< Open the panel.
    Pause, ///< Pause ads for 24 hours.
    Quit,
};

/// What a start of the program finds.
enum class InstanceClaim {
    First,    ///< This process is the one that runs from now on.
    Second,   ///< Another one runs and has been asked for its panel.
    NoAnswer, ///< Another one runs, but it did not answer or cannot be asked.
};

} // namespace brimlet
