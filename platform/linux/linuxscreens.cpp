#include "platform/linux/linuxscreens.h"

#include "platform/qt/desktopgeometry.h"

#include <algorithm>
#include <array>
#include <utility>

namespace brimlet {

bool isInternalConnector(const QString& name) {
    constexpr std::array kPrefixes{QLatin1StringView("eDP"), QLatin1StringView("LVDS"),
                                   QLatin1StringView("DSI")};
    return std::any_of(kPrefixes.begin(), kPrefixes.end(),
                       [&](QLatin1StringView prefix) { return name.startsWith(prefix); });
}

LinuxScreens::LinuxScreens(std::function<std::vector<DesktopOutput>()> outputs, QString root)
    : m_outputs(std::move(outputs))
    , m_root(std::move(root))
    , m_panel(notchedPanel(readCompatible(m_root))) {}

std::vector<Screen> LinuxScreens::list() const {
    const std::vector<DesktopOutput> outputs = m_outputs();
    const QRectF primary = outputs.empty() ? QRectF() : outputs.front().geometry;
    // The driver's setting can change at any time.
    const std::optional<bool> showNotch = m_panel ? readShowNotch(m_root) : std::nullopt;
    std::vector<Screen> screens;
    for (const DesktopOutput& output : outputs) {
        Screen facts;
        facts.number = static_cast<std::uint32_t>(screens.size() + 1);
        facts.frame = fromQt(output.geometry, primary);
        const auto strips = m_panel
                                ? notchStrips(*m_panel, showNotch, output.connector, facts.frame)
                                : std::nullopt;
        if (strips) {
            facts.auxiliaryTopLeftArea = strips->left;
            facts.auxiliaryTopRightArea = strips->right;
        }
        screens.push_back(facts);
    }
    return screens;
}

bool LinuxScreens::isBuiltIn(std::uint32_t displayNumber) const {
    const std::vector<DesktopOutput> outputs = m_outputs();
    if (displayNumber < 1 || displayNumber > outputs.size()) {
        return false;
    }
    const DesktopOutput& output = outputs.at(displayNumber - 1);
    return isInternalConnector(output.connector) ||
           (m_panel && showsBand(*m_panel, output.connector, fromQt(output.geometry, {})));
}

ObserverToken LinuxScreens::observeChanges(std::function<void()> changed) {
    return m_observers.add(std::move(changed));
}

} // namespace brimlet
