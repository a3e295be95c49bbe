#pragma once

#include "platform/mac/rules/panelfacts.h"
#include "platform/rect.h"
#include "platform/screens.h"

#include <QPointF>
#include <QString>

#include <functional>
#include <optional>
#include <vector>

namespace brimlet {

class MacOverlayWindow;
class SecretStore;

/// Where a click goes: to the overlay, or to what is beneath it.
struct ClickFact final {
    QString place; ///< In words.
    bool isWanted; ///< Whether the overlay should take it.
    bool isFound;  ///< Whether it does.

    bool operator==(const ClickFact&) const = default;
};

/// What the self-test looks at. The defaults are those of an overlay without capsules.
struct SelfTestFacts final {
    PanelFacts panel;                    ///< Of the panel for the content.
    std::vector<PanelFacts> clickPanels; ///< Of those over the capsules.
    std::vector<ClickFact> clicks;
    std::optional<Rect> statusItem; ///< Its place in global points.
    bool keepsSecrets = false;      ///< Whether the secret store returned what was written.
};

struct SelfTest final {
    QString report; ///< Lines of plain text.
    bool isPassed = false;
};

/// Shows two capsules at the top centre of the built-in screen, or the first one, then hides them,
/// and asks each time where clicks there go. `settle` waits until the system has drawn. The content
/// may be empty. Returns nothing without a screen.
[[nodiscard]] std::vector<ClickFact> tryClicks(MacOverlayWindow& overlay, const Screens& screens,
                                               const std::function<void()>& settle);

/// Writes, reads and removes an item of the program's own that holds no token, and returns whether
/// each step had its effect. Blocks for six seconds at most.
[[nodiscard]] bool keepsSecrets(SecretStore& secrets);

/// Reports on the overlay, the screens, the status item and the secret store. Passed when
/// everything is as wanted and there is a screen; a Mac without a notch passes.
[[nodiscard]] SelfTest selfTest(const SelfTestFacts& facts, const Screens& screens);

} // namespace brimlet
