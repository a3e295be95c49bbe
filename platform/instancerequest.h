#pragma once

namespace brimlet {

/// What the desktop and other processes of the program can ask the running one to do.
enum class InstanceRequest {
    Open,  ///< Open the panel.
    Pause, ///< Pause ads for 24 hours.
    Quit,
};

/// How the running program answered a request.
enum class InstanceAnswer {
    Done,
    NotRunning, ///< No other process runs.
    NoAnswer,   ///< One runs, but it did not answer or cannot be reached.
};

} // namespace brimlet
