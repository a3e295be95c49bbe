#pragma once

#include "platform/mac/rules/panelfacts.h"
#include "platform/screens.h"

#include <QString>

namespace brimlet {

struct SelfTest final {
    QString report; ///< Lines of plain text.
    bool isPassed = false;
};

/// What the program finds of its overlay panel and of the screens. Passed when the panel is as it
/// has to be and there is a screen; a Mac without a notch passes.
[[nodiscard]] SelfTest selfTest(const PanelFacts& panel, const Screens& screens);

} // namespace brimlet
