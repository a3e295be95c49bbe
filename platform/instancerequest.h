#pragma once

namespace brimlet {

/// What the status item's menu, the desktop and other processes of the program can ask the running
/// one to do.
enum class InstanceRequest {
    Open,  ///< Open the panel.
    Pause, ///< Pause ads for 24 hours.
    Quit,
};

/// Why a process of the program was started, which decides whether the panel opens.
enum class StartReason {
    ByHand,  ///< It opens if the desktop shows no status item, and if the program runs already.
    Open,    ///< By hand, to open it.
    Session, ///< By the desktop, at the start of a session: it stays closed.
};

/// How the running program answered a request.
enum class InstanceAnswer {
    Done,
    NotRunning, ///< No other process runs.
    NoAnswer,   ///< One runs, but it did not answer or cannot be reached.
};

} // namespace brimlet
