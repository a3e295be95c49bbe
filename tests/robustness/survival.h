#pragma once

#include "tests/robustness/watchedprogram.h"

#include <QTest>

namespace brimlet {

/// What a fault at every endpoint amounts to.
enum class Outcome {
    TransferFailed, ///< The text for a failed transfer; old content stays.
    Rejected,       ///< The text for any other status; old content stays.
    Applied,        ///< No fault at all: the reply counts.
    Nothing,        ///< Nothing is sent and nothing said; old content stays.
};

[[nodiscard]] QString statusOf(Outcome outcome);

/// One row of a table of faults: while the service follows the script, or requests go to another
/// root, the outcome shows; afterwards all is as before. Call from a test function; what is wrong
/// fails the test.
struct Fault final {
    QJsonObject script;
    Outcome outcome = Outcome::TransferFailed;
    QString root{}; ///< The service's own if null.
};
void survive(WatchedProgram& watched, const Fault& fault);

/// Waits until the program shows the good placement, and takes its measure.
void begin(WatchedProgram& watched);

} // namespace brimlet

Q_DECLARE_METATYPE(brimlet::Fault)
