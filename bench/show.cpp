#include "bench/show.h"

#include "bench/desktop.h"
#include "bench/requestcounter.h"
#include "bench/stage.h"
#include "tests/support/failure.h"

#include <algorithm>
#include <fstream>

#include <sys/stat.h>

namespace brimlet {
namespace {

using namespace std::chrono_literals;

/// Five points into the left capsule, before its picture and text.
constexpr std::int16_t kCapsuleX = 542 + 8 + 5;
constexpr std::int16_t kCapsuleY = 13;

/// An empty file or named pipe in place of what a show before has left.
std::filesystem::path inputFor(const std::vector<std::string>& command,
                               const std::filesystem::path& folder) {
    if (command.back() != "--console") {
        return "/dev/null";
    }
    const auto pipe = folder / "console";
    std::filesystem::remove(pipe);
    if (::mkfifo(pipe.c_str(), 0600) != 0) {
        throw Failure("there is no way to talk to a program");
    }
    return pipe;
}

} // namespace

Show::Show(const Desktop& desktop, const Stage& stage, const std::vector<std::string>& command)
    : m_desktop(desktop)
    , m_stage(stage)
    , m_log(stage.places().scratch / "show.log")
    , m_input(inputFor(command, stage.places().scratch)) {
    if (m_desktop.isDark(kCapsuleX, kCapsuleY)) {
        throw Failure("the screen is black before a capsule is there; give it a brighter colour");
    }
    std::filesystem::remove(m_log);
    m_start = Clock::now();
    m_program.emplace(command, m_log, m_input);
    const auto isSeen = [this] {
        return m_desktop.isDark(kCapsuleX, kCapsuleY) || !m_program->isRunning();
    };
    const bool isInTime = waitUntil(isSeen, 20s);
    m_firstCapsule = Clock::now();
    if (!isInTime || !m_program->isRunning()) {
        throw Failure(command.front() + " showed no capsule within 20 seconds: " + printed());
    }
    m_startMilliseconds =
        std::chrono::duration<double, std::milli>(m_firstCapsule - m_start).count();
    m_window = m_desktop.overlay();
    if (m_window == 0) {
        throw Failure(command.front() + " has no visible window named Brimlet");
    }
    m_paints.emplace(m_desktop, m_window);
}

Show::~Show() {
    m_paints.reset();
    m_program->end();
    // The next start is timed by a capsule of its own.
    static_cast<void>(waitUntil([this] { return !m_desktop.isDark(kCapsuleX, kCapsuleY); }, 5s));
}

void Show::waitUntilAge(std::chrono::milliseconds age) {
    const auto left = m_firstCapsule + age - Clock::now();
    if (left > 0s) {
        pause(std::chrono::ceil<std::chrono::milliseconds>(left));
    }
}

Spent Show::watch(std::chrono::milliseconds time, Counting counting) {
    std::optional<RequestCounter> requests;
    if (counting == Counting::Everything) {
        requests.emplace(m_desktop, m_window);
    }
    static_cast<void>(m_paints->take());
    const Traffic traffic = m_stage.traffic();
    const auto start = Clock::now();
    Spent spent{.before = figures()};
    for (auto left = time; left > 0ms;
         left = std::chrono::ceil<std::chrono::milliseconds>(start + time - Clock::now())) {
        // Looked at twice a second at most, to leave the processor to what is measured.
        pause(std::min(left, std::chrono::milliseconds(500ms)));
        if (requests) {
            requests->drain();
        }
    }
    spent.after = figures();
    spent.seconds = std::chrono::duration<double>(Clock::now() - start).count();
    spent.paints = m_paints->take();
    spent.traffic = m_stage.traffic() - traffic;
    if (requests) {
        spent.xRequests = requests->finish();
    }
    return spent;
}

std::string Show::tell(const std::string& line) {
    const auto answers = [this] {
        const std::string text = printed();
        return std::count(text.begin(), text.end(), '\n');
    };
    const auto before = answers();
    std::ofstream(m_input) << line << '\n' << std::flush;
    if (!waitUntil([&] { return answers() > before; }, 10s)) {
        throw Failure("the program does not answer \"" + line + '"');
    }
    std::string text = printed();
    text.pop_back();
    return text.substr(text.rfind('\n') + 1);
}

ProcessFigures Show::figures() {
    if (!m_program->isRunning()) {
        throw Failure("the program ended by itself: " + printed());
    }
    const ProcessFigures figures = readProcessFigures(m_program->id());
    if (figures.pssKib == 0 || figures.cpuMilliseconds <= 0 || figures.voluntary == 0) {
        throw Failure("the kernel does not tell what the program uses");
    }
    return figures;
}

} // namespace brimlet
