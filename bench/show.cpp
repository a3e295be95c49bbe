#include "bench/show.h"

#include "bench/desktop.h"
#include "bench/failure.h"

namespace brimlet {
namespace {

using namespace std::chrono_literals;

/// Five points into the left capsule, before its picture and text.
constexpr std::int16_t kCapsuleX = 542 + 8 + 5;
constexpr std::int16_t kCapsuleY = 13;

const Desktop& withoutCapsule(const Desktop& desktop) {
    if (desktop.isDark(kCapsuleX, kCapsuleY)) {
        throw Failure("the screen is black before a capsule is there; give it a brighter colour");
    }
    return desktop;
}

} // namespace

Show::Show(const Desktop& desktop, const std::vector<std::string>& command,
           const std::filesystem::path& log)
    : m_desktop(withoutCapsule(desktop))
    , m_program(command, log)
    , m_log(log) {
    const auto isSeen = [this] {
        return m_desktop.isDark(kCapsuleX, kCapsuleY) || !m_program.isRunning();
    };
    if (!waitUntil(isSeen, 20s)) {
        throw Failure(command.front() + " showed no capsule within 20 seconds");
    }
    m_firstCapsule = Clock::now();
    m_startMilliseconds =
        std::chrono::duration<double, std::milli>(m_firstCapsule - m_start).count();
    static_cast<void>(figures());
    const xcb_window_t window = m_desktop.overlay();
    if (window == 0) {
        throw Failure(command.front() + " has no visible window named Brimlet");
    }
    m_paints.emplace(m_desktop, window);
}

Show::~Show() {
    m_paints.reset();
    m_program.end();
    // The next start is timed by a capsule of its own.
    static_cast<void>(waitUntil([this] { return !m_desktop.isDark(kCapsuleX, kCapsuleY); }, 5s));
}

void Show::waitUntilAge(std::chrono::milliseconds age) {
    const auto left = m_firstCapsule + age - Clock::now();
    if (left > 0s) {
        pause(std::chrono::ceil<std::chrono::milliseconds>(left));
    }
}

Spent Show::watch(std::chrono::milliseconds time) {
    const auto start = Clock::now();
    const ProcessFigures before = figures();
    const Paints paints = m_paints->watch(time);
    const ProcessFigures after = figures();
    return {.seconds = std::chrono::duration<double>(Clock::now() - start).count(),
            .cpuMilliseconds = after.cpuMilliseconds - before.cpuMilliseconds,
            .wakeUps = static_cast<double>(after.wakeUps - before.wakeUps),
            .paints = static_cast<double>(paints.count),
            .pixels = static_cast<double>(paints.pixels)};
}

ProcessFigures Show::figures() {
    if (!m_program.isRunning()) {
        throw Failure("the program ended by itself: " + textOf(m_log));
    }
    return readProcessFigures(m_program.id());
}

} // namespace brimlet
