#include "bench/runs.h"

#include "bench/show.h"

#include <algorithm>
#include <cstdio>

namespace brimlet {
namespace {

using namespace std::chrono_literals;

// The first swap comes 16 s after the start, and the scroll 1.6 s later. Windows are multiples of
// the 3 s between two requests, so that each has its share of them.
constexpr auto kStartIsOver = 3s;
constexpr auto kRest = 12s;
constexpr auto kScrollHasBegun = 18'500ms;
constexpr double kSpareScroll = 3;

} // namespace

double scrollSeconds(std::chrono::seconds slice, int slices) {
    return static_cast<double>((slice * slices).count()) + kSpareScroll;
}

std::filesystem::path Runs::log() const {
    return m_places.scratch / (m_program + ".log");
}

std::vector<double> Runs::starts(const Stage& stage, int times) const {
    std::vector<double> starts;
    for (int i = 0; i < times; ++i) {
        const Show show(m_desktop, stage.command(m_program), log());
        starts.push_back(show.startMilliseconds());
    }
    std::sort(starts.begin(), starts.end());
    return starts;
}

Row Runs::rest(const Stage& stage, int times) const {
    std::vector<Spent> runs;
    std::vector<ProcessFigures> memory;
    for (int i = 0; i < times; ++i) {
        Show show(m_desktop, stage.command(m_program), log());
        show.waitUntilAge(kStartIsOver);
        runs.push_back(show.watch(kRest));
        memory.push_back(show.figures());
    }
    std::sort(memory.begin(), memory.end(),
              [](const auto& left, const auto& right) { return left.pssKib < right.pssKib; });
    return {.name = m_name + ", at rest between swaps",
            .memory = memory[memory.size() / 2],
            .rates = medianOf(runs)};
}

Row Runs::cycles(const Stage& stage, std::chrono::seconds time) const {
    Show show(m_desktop, stage.command(m_program), log());
    show.waitUntilAge(kStartIsOver);
    const Spent spent = show.watch(time);
    return {.name = m_name + ", sample brands over " + std::to_string(time.count()) + " s",
            .memory = show.figures(),
            .rates = ratesOf(spent)};
}

Row Runs::scrolling(const Stage& stage, std::chrono::seconds slice, int slices) const {
    constexpr double kFewestPaints = 5 * 60;
    Show show(m_desktop, stage.command(m_program), log());
    show.waitUntilAge(kScrollHasBegun);
    std::vector<Spent> runs;
    std::vector<double> paints;
    for (int i = 0; i < slices; ++i) {
        runs.push_back(show.watch(slice));
        paints.push_back(ratesOf(runs.back()).paints.value_or(0));
    }
    Row row{.name = m_name + ", both taglines scrolling", .memory = show.figures()};
    const auto [least, most] = std::minmax_element(paints.begin(), paints.end());
    if (*least >= kFewestPaints) {
        row.rates = medianOf(runs);
    } else {
        char remark[100];
        std::snprintf(remark, sizeof remark, "no scrolling was seen: %.1f to %.1f paints a second",
                      *least / 60, *most / 60);
        row.remark = remark;
    }
    return row;
}

} // namespace brimlet
