#pragma once

#include <QByteArray>
#include <QMap>
#include <QString>

#include <chrono>
#include <variant>
#include <vector>

namespace brimlet {

/// One thing that happens on a connection, after the ones before it.
struct FaultStep final {
    enum class Kind {
        Send,  ///< The bytes at once.
        Drip,  ///< The bytes one at a time, each after `time`, over and over if `isForEver`.
        Flood, ///< The bytes over and over, as fast as they are taken, until the other side goes.
        Wait,  ///< Nothing for `time`.
        Cut,   ///< The end of the connection, once all that was sent is out.
        Reset, ///< The end of the connection at once, as by a crash.
    };

    Kind kind = Kind::Send;
    QByteArray bytes{};
    std::chrono::milliseconds time{};
    bool isForEver = false;
};

/// A list that ends without Cut or Reset leaves the connection open: after whole replies the next
/// request is read, without any the client hangs.
using FaultSteps = std::vector<FaultStep>;

/// How a server behaves, as one JSON object:
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
    /// What happens to a connection before a request is read.
    FaultSteps greeting{};
    /// What a request to exactly this target meets; the empty target stands for all others.
    QMap<QByteArray, FaultSteps> answers{};
    /// This share of the requests, from 0 to 1, meets a random fault in place of its answer.
    double randomShare = 0;
    quint32 randomSeed = 0;
};

/// The script, or what is wrong with the text in one line.
[[nodiscard]] std::variant<FaultScript, QString> readFaultScript(const QByteArray& json);

} // namespace brimlet
