#include "platform/linux/qtscreens.h"

#include "platform/linux/desktopgeometry.h"

#include <QGuiApplication>
#include <QScreen>

#include <array>

namespace brimlet {

bool isInternalConnector(const QString& name) {
    constexpr std::array kPrefixes{QLatin1StringView("eDP"), QLatin1StringView("LVDS"),
                                   QLatin1StringView("DSI")};
    return std::any_of(kPrefixes.begin(), kPrefixes.end(),
                       [&](QLatin1StringView prefix) { return name.startsWith(prefix); });
}

QtScreens::QtScreens() {
    connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
        watch(screen);
        announce();
    });
    connect(qGuiApp, &QGuiApplication::screenRemoved, this, &QtScreens::announce);
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &QtScreens::announce);
    for (QScreen* screen : QGuiApplication::screens()) {
        watch(screen);
    }
}

void QtScreens::watch(QScreen* screen) {
    connect(screen, &QScreen::geometryChanged, this, &QtScreens::announce);
}

void QtScreens::announce() {
    // One change of the desktop arrives as several signals, and inside some of them the list is
    // not yet settled.
    if (!m_isAnnounceDue) {
        m_isAnnounceDue = true;
        QMetaObject::invokeMethod(
            this,
            [this] {
                m_isAnnounceDue = false;
                m_observers.notify();
            },
            Qt::QueuedConnection);
    }
}

std::vector<Screen> QtScreens::list() const {
    const QRectF primary = primaryGeometry();
    std::vector<Screen> screens;
    for (const QScreen* screen : QGuiApplication::screens()) {
        Screen facts;
        facts.number = static_cast<std::uint32_t>(screens.size() + 1);
        facts.frame = fromQt(screen->geometry(), primary);
        screens.push_back(facts);
    }
    return screens;
}

bool QtScreens::isBuiltIn(std::uint32_t displayNumber) const {
    const auto screens = QGuiApplication::screens();
    return displayNumber >= 1 && displayNumber <= static_cast<std::uint32_t>(screens.size()) &&
           isInternalConnector(screens.at(static_cast<qsizetype>(displayNumber) - 1)->name());
}

ObserverToken QtScreens::observeChanges(std::function<void()> changed) {
    return m_observers.add(std::move(changed));
}

QRectF QtScreens::primaryGeometry() {
    const QScreen* const primary = QGuiApplication::primaryScreen();
    return primary == nullptr ? QRectF() : QRectF(primary->geometry());
}

} // namespace brimlet
