#include "bench/runs.h"

#include "bench/machinefacts.h"
#include "tests/support/failure.h"

#include <cstdio>

#include <nlohmann/json.hpp>

namespace brimlet {
namespace {

using namespace std::chrono_literals;

// The first swap comes 16 s after the start, and the scroll 1.6 s later. Windows are multiples of
// the 3 s between two requests and begin well after one of these, so that each has its share.
constexpr auto kStartIsOver = 3'600ms;
constexpr auto kRest = 12s;
constexpr auto kCycle = 36s; // of the sample tagline, about
constexpr auto kScrollHasBegun = 18'500ms;
constexpr auto kSlice = 6s;
constexpr double kSpareScroll = 3;
// A minute's paints when something scrolls all the time, at least, and in a third of it.
constexpr double kFewestPaints = 5 * 60;
constexpr double kFewestPaintsInCycles = kFewestPaints / 3;

void requirePaints(const Figures& run, double least) {
    if (const double paints = run.at("paintsPerMinute"); paints < least) {
        char complaint[100];
        std::snprintf(complaint, sizeof complaint, "no scrolling was seen: %.1f paints a second",
                      paints / 60);
        throw Failure(complaint);
    }
}

} // namespace

double Runs::scrollSeconds(int times) {
    return static_cast<double>((kSlice * times).count()) + kSpareScroll;
}

bool Runs::isBuilt(Row& row) const {
    if (std::filesystem::exists(m_stage.places().programs / m_actor.program)) {
        return true;
    }
    row.remark = "absent: " + m_actor.program + " is not built";
    return false;
}

std::vector<std::string> Runs::command() const {
    std::vector command{(m_stage.places().programs / m_actor.program).string()};
    if (m_actor.argument == Actor::Argument::MachineFile) {
        command.insert(command.end(), {"--machine", m_stage.machineFile().string()});
    } else if (m_actor.argument == Actor::Argument::Root) {
        command.push_back(m_stage.root());
    }
    return command;
}

std::string Runs::qtVersion() const {
    Row row;
    return isBuilt(row) ? qtVersionOf(Show(m_desktop, m_stage, command()).program())
                        : std::string();
}

/// What it spends in a time in which it polls as it should; one that does not is no cheaper.
Spent Runs::watched(Show& show, std::chrono::seconds time) const {
    constexpr auto kBetweenPolls = 3s;
    const Spent spent = show.watch(time, m_actor.counting);
    const auto due = time / kBetweenPolls;
    const auto seen = spent.traffic ? spent.traffic->polls : 0;
    if (seen < due - 1 || seen > due + 1) {
        throw Failure("it polled " + std::to_string(seen) + " times where " + std::to_string(due) +
                      " were due");
    }
    return spent;
}

Row Runs::starts(Row row) const {
    for (int i = 0; isBuilt(row) && i < m_times; ++i) {
        const Show show(m_desktop, m_stage, command());
        row.runs.push_back({{"startMs", show.startMilliseconds()}});
    }
    return row;
}

Row Runs::rest(Row row) const {
    for (int i = 0; isBuilt(row) && i < m_times; ++i) {
        Show show(m_desktop, m_stage, command());
        show.waitUntilAge(kStartIsOver);
        row.runs.push_back(figuresOf(watched(show, kRest)));
    }
    return row;
}

Row Runs::cycles(Row row) const {
    if (isBuilt(row)) {
        Show show(m_desktop, m_stage, command());
        show.waitUntilAge(kStartIsOver);
        for (int i = 0; i < m_times; ++i) {
            row.runs.push_back(figuresOf(watched(show, kCycle)));
            requirePaints(row.runs.back(), kFewestPaintsInCycles);
        }
    }
    return row;
}

Row Runs::scrolling(Row row) const {
    if (!isBuilt(row)) {
        return row;
    }
    Show show(m_desktop, m_stage, command());
    show.waitUntilAge(kScrollHasBegun);
    for (int i = 0; i < m_times; ++i) {
        row.runs.push_back(figuresOf(show.watch(kSlice, m_actor.counting)));
        requirePaints(row.runs.back(), kFewestPaints);
    }
    return row;
}

Row Runs::after(Row row, const std::function<void(Show&)>& change) const {
    constexpr auto kChangeIsOver = 6s;
    if (isBuilt(row)) {
        auto withConsole = command();
        withConsole.emplace_back("--console");
        Show show(m_desktop, m_stage, withConsole);
        show.waitUntilAge(kStartIsOver);
        change(show);
        pause(kChangeIsOver);
        for (int i = 0; i < m_times; ++i) {
            row.runs.push_back(figuresOf(show.watch(kSlice, m_actor.counting)));
        }
    }
    return row;
}

Row Runs::changes(Row row) const {
    constexpr double kFrame = 1000.0 / 60;
    constexpr auto kPatience = 10s;
    if (!isBuilt(row)) {
        return row;
    }
    Show show(m_desktop, m_stage, command());
    show.waitUntilAge(kStartIsOver);
    for (int i = 0; i <= m_times; ++i) {
        static_cast<void>(show.paints().take());
        m_stage.setScenario(stillBrands("Brand No. " + std::to_string(i)));
        const auto painted = show.paints().waitForPaint(kPatience);
        const auto replied = m_stage.relay().lastPollReply();
        if (!painted || !replied) {
            throw Failure("another brand was not shown");
        }
        const double late = std::chrono::duration<double, std::milli>(*painted - *replied).count();
        // The first time, all that is needed for it has to be found.
        if (i > 0) {
            row.runs.push_back({{"replyToPixelsMs", late}, {"replyToPixelsFrames", late / kFrame}});
        }
        // What it paints besides comes within this.
        pause(500ms);
    }
    return row;
}

} // namespace brimlet
