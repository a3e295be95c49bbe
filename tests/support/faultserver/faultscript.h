#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <chrono>
#include <variant>
#include <vector>

namespace brimlet {

/// One step on a connection.
struct FaultStep final {
    enum class Kind {
        Send,  ///< The bytes at once.
        Drip,  ///< The bytes one at a time, each after `time`, repeatedly if `isForEver`.
        Flood, ///< The bytes repeatedly, as fast as possible, until the client disconnects.
        Wait,  ///< Nothing for `time`.
        Cut,   ///< Closes the connection after all bytes are sent.
        Reset, ///< Resets the connection, as a crash would.
    };

    Kind kind = Kind::Send;
    QByteArray bytes{};
    std::chrono::milliseconds time{};
    bool isForEver = false;
};

/// Steps that do not end with Cut or Reset leave the connection open: after whole replies the next
/// request is read, without one the client waits.
using FaultSteps = std::vector<FaultStep>;

/// A fault server's behaviour, as one JSON object:
///
///     {"isAccepting": true, "greeting": [...], "answers": {"/path": [...], "": [...]},
///      "random": {"seed": 7, "share": 0.5}}
///
/// with lists of steps:
///
///     {"send": "text"} {"base64": "..."} {"file": "/path"} {"drip": "text", "everyMs": 5,
///     "isForEver": true} {"flood": "text"} {"waitMs": 100} {"end": "cut"} {"end": "reset"}
struct FaultScript final {
    /// While false, connections stay in the kernel's short queue, and once that is full, a
    /// connection's packets are dropped.
    bool isAccepting = true;
    /// The steps before a request is read.
    FaultSteps greeting{};
    /// The steps for a request to exactly this target; the empty target stands for all others.
    QMap<QByteArray, FaultSteps> answers{};
    /// The share of requests, from 0 to 1, that get a random fault in place of their answer.
    double randomShare = 0;
    quint32 randomSeed = 0;
};

/// The script, or one line about the mistake in the text.
[[nodiscard]] std::variant<FaultScript, QString> readFaultScript(const QByteArray& json);

} // namespace brimlet
