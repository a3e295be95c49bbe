#pragma once

namespace brimlet {

/// What the desktop and other starts of the program can ask of the running one.
enum class InstanceRequest {
    Open,  ///< Open the panel.
    Pause, ///< Pause ads for 24 hours.
    Quit,
};

/// How the running program answered a request.
enum class InstanceAnswer {
    Done,
    NotRunning, ///< No program runs.
    NoAnswer,   ///< One runs, but it did not answer or cannot be reached.
};

} // namespace brimlet
