#include "platform/linux/qtscreens.h"

#include "platform/qt/desktopgeometry.h"
#include "platform/qt/desktopscreens.h"

#include <QGuiApplication>
#include <QScreen>

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

QtScreens::QtScreens(QString root)
    : m_root(std::move(root))
    , m_panel(notchedPanel(readCompatible(m_root))) {
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
        watch(screen);
        m_announce.schedule();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, &m_announce, &OncePerTurn::schedule);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, &m_announce, &OncePerTurn::schedule);
    for (QScreen* screen : QGuiApplication::screens()) {
        watch(screen);
    }
}

void QtScreens::watch(QScreen* screen) {
    // These two cover moving, resizing and rescaling. A new scale is signalled before the new
    // geometry, and alone when rounding leaves the geometry unchanged.
    connect(screen, &QScreen::geometryChanged, &m_announce, &OncePerTurn::schedule);
    connect(screen, &QScreen::logicalDotsPerInchChanged, &m_announce, &OncePerTurn::schedule);
}

std::vector<Screen> QtScreens::list() const {
    const QRectF primary = primaryGeometry();
    // The driver's setting can change at any time.
    const std::optional<bool> showNotch = m_panel ? readShowNotch(m_root) : std::nullopt;
    std::vector<Screen> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        Screen facts;
        facts.number = static_cast<std::uint32_t>(screens.size() + 1);
        facts.frame = fromQt(screen->geometry(), primary);
        const auto strips =
            m_panel ? notchStrips(*m_panel, showNotch, screen->name(), facts.frame) : std::nullopt;
        if (strips) {
            facts.auxiliaryTopLeftArea = strips->left;
            facts.auxiliaryTopRightArea = strips->right;
        }
        screens.push_back(facts);
    }
    return screens;
}

bool QtScreens::isBuiltIn(std::uint32_t displayNumber) const {
    const auto screens = QGuiApplication::screens();
    if (displayNumber < 1 || displayNumber > static_cast<std::uint32_t>(screens.size())) {
        return false;
    }
    const QScreen* const screen = screens.at(static_cast<qsizetype>(displayNumber) - 1);
    return isInternalConnector(screen->name()) ||
           (m_panel && showsBand(*m_panel, screen->name(), fromQt(screen->geometry(), {})));
}

ObserverToken QtScreens::observeChanges(std::function<void()> changed) {
    return m_observers.add(std::move(changed));
}

} // namespace brimlet
