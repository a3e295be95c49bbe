#include "platform/simulated/simulatedports.h"

#include <QTimer>

#include <algorithm>
#include <cmath>
#include <utility>

namespace brimlet {

namespace {

void move(Rect& rect, double right, double up) {
    rect.x += right;
    rect.y += up;
}

} // namespace

std::vector<MachineDisplay> displaysAtTop(std::vector<MachineDisplay> displays, const Rect& real) {
    const auto builtIn = std::find_if(displays.begin(), displays.end(),
                                      [](const MachineDisplay& each) { return each.builtIn; });
    if (displays.empty()) {
        return displays;
    }
    const Rect frame = (builtIn == displays.end() ? displays.begin() : builtIn)->screen.frame;
    const double right = std::round(real.midX() - frame.midX());
    const double up = real.maxY() - frame.maxY();
    for (MachineDisplay& display : displays) {
        move(display.screen.frame, right, up);
        for (auto* const area :
             {&display.screen.auxiliaryTopLeftArea, &display.screen.auxiliaryTopRightArea}) {
            if (*area) {
                move(**area, right, up);
            }
        }
    }
    return displays;
}

SimulatedScreens::SimulatedScreens(const MachineFile& file, Screens& real, MachinePlace place)
    : m_file(file)
    , m_real(real)
    , m_place(place) {
    QObject::connect(&file, &MachineFile::changed, &file, [this](const Machine& before) {
        if (before.displays != m_file.machine().displays) {
            m_observers.notify();
        }
    });
    real.observeChanges([this] {
        if (!m_file.machine().displays || m_place == MachinePlace::AtRealTop) {
            m_observers.notify();
        }
    });
}

std::vector<Screen> SimulatedScreens::list() const {
    auto displays = m_file.machine().displays;
    if (!displays) {
        return m_real.list();
    }
    if (m_place == MachinePlace::AtRealTop) {
        if (const auto real = m_real.list(); !real.empty()) {
            displays = displaysAtTop(*std::move(displays), real.front().frame);
        }
    }
    std::vector<Screen> screens;
    screens.reserve(displays->size());
    for (const MachineDisplay& display : *displays) {
        screens.push_back(display.screen);
    }
    return screens;
}

bool SimulatedScreens::isBuiltIn(std::uint32_t displayNumber) const {
    const auto& displays = m_file.machine().displays;
    if (!displays) {
        return m_real.isBuiltIn(displayNumber);
    }
    // A display without a number counts as display 0, as on the real system.
    return std::any_of(displays->begin(), displays->end(), [&](const MachineDisplay& display) {
        return display.builtIn && display.screen.number.value_or(0) == displayNumber;
    });
}

ObserverToken SimulatedScreens::observeChanges(std::function<void()> changed) {
    return m_observers.add(std::move(changed));
}

QRectF simulatedPrimaryGeometry(const Machine& machine, const QRectF& real) {
    if (!machine.displays || machine.displays->empty()) {
        return real;
    }
    const Rect& frame = machine.displays->front().screen.frame;
    return {0, 0, frame.width, frame.height};
}

SimulatedWorkspace::SimulatedWorkspace(const MachineFile& file, Workspace& real)
    : m_file(file)
    , m_real(real) {
    QObject::connect(&file, &MachineFile::changed, &file, [this, &file](const Machine& before) {
        const bool isAsleep = file.machine().screensAsleep.value_or(false);
        if (isAsleep != before.screensAsleep.value_or(false)) {
            (isAsleep ? m_sleep : m_wake).notify();
        }
    });
    const auto passOn = [&file](Observers& observers) {
        return [&file, &observers] {
            if (!file.machine().screensAsleep) {
                observers.notify();
            }
        };
    };
    real.observeScreensDidSleep(passOn(m_sleep));
    real.observeScreensDidWake(passOn(m_wake));
}

ObserverToken SimulatedWorkspace::observeScreensDidSleep(std::function<void()> block) {
    if (std::exchange(m_isFirstObserver, false) && m_file.machine().screensAsleep.value_or(false)) {
        QTimer::singleShot(0, &m_file, [this] { m_sleep.notify(); });
    }
    return m_sleep.add(std::move(block));
}

ObserverToken SimulatedWorkspace::observeScreensDidWake(std::function<void()> block) {
    return m_wake.add(std::move(block));
}

QString SimulatedBundle::path() const {
    return m_file.machine().bundlePath.value_or(m_real.path());
}

QVariant SimulatedBundle::infoDictionaryValue(const QString& key) const {
    const auto& info = m_file.machine().infoDictionary;
    return info ? info->value(key) : m_real.infoDictionaryValue(key);
}

std::optional<QString> SimulatedCachesFolder::path() const {
    const auto& described = m_file.machine().cachesFolder;
    return described ? described : m_real.path();
}

SimulatedReduceMotion::SimulatedReduceMotion(const MachineFile& file, ReduceMotion& real)
    : m_file(file)
    , m_real(real)
    , m_wasOn(isOn()) {
    const auto passOn = [this] {
        if (isOn() != m_wasOn) {
            m_wasOn = isOn();
            m_observers.notify();
        }
    };
    QObject::connect(&file, &MachineFile::changed, &file, passOn);
    real.observeChanges(passOn);
}

bool SimulatedReduceMotion::isOn() const {
    return m_file.machine().reduceMotion.value_or(m_real.isOn());
}

ObserverToken SimulatedReduceMotion::observeChanges(std::function<void()> changed) {
    return m_observers.add(std::move(changed));
}

} // namespace brimlet
