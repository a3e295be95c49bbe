#pragma once

#include "platform/mac/rules/panelfacts.h"
#include "platform/screens.h"

#include <QString>

namespace brimlet {

struct SelfTest final {
    QString report; ///< Lines of plain text.
    bool isPassed = false;
};

/// Reports on the overlay panel and the screens. Passed when all panel properties have the wanted
/// values and there is a screen; a Mac without a notch passes.
[[nodiscard]] SelfTest selfTest(const PanelFacts& panel, const Screens& screens);

} // namespace brimlet
