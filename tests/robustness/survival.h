#pragma once

#include "tests/robustness/watchedprogram.h"

#include <QTest>

namespace brimlet {

/// The effect of a fault at every endpoint.
enum class Outcome {
    TransferFailed, ///< The text for a failed transfer; the content stays.
    Rejected,       ///< The text for any other status; the content stays.
    Applied,        ///< The reply counts.
    Nothing,        ///< No request and no new text; the content stays.
};

[[nodiscard]] QString statusOf(Outcome outcome);

/// One row of a table of faults: the service follows the script, or requests go to another root.
/// `survive` checks the outcome, and that the program is afterwards as before. Called from a test
/// function.
struct Fault final {
    QJsonObject script;
    Outcome outcome = Outcome::TransferFailed;
    QString root{}; ///< Null for the service's own.
};
void survive(WatchedProgram& watched, const Fault& fault);

/// Waits until the program shows the good placement, and records its resource use.
void begin(WatchedProgram& watched);

} // namespace brimlet

Q_DECLARE_METATYPE(brimlet::Fault)
