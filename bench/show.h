#pragma once

#include "bench/childprocess.h"
#include "bench/figures.h"
#include "bench/paintcounter.h"
#include "bench/processfigures.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace brimlet {

class Desktop;
class Stage;

/// A program with capsules beside the notch of the 14-inch machine, from its start to its end.
class Show final {
public:
    enum class Counting { Everything, NoXRequests };

    /// Starts it and returns when its first capsule is seen. Desktop and stage outlive it. A
    /// command that ends with `--console` can be told things.
    Show(const Desktop& desktop, const Stage& stage, const std::vector<std::string>& command);
    ~Show();
    Show(const Show&) = delete;
    Show& operator=(const Show&) = delete;

    /// From the start of the program to its first capsule.
    [[nodiscard]] double startMilliseconds() const { return m_startMilliseconds; }
    /// Lets time pass until so long after the first capsule.
    void waitUntilAge(std::chrono::milliseconds age);
    /// What it spends while this time passes.
    [[nodiscard]] Spent watch(std::chrono::milliseconds time,
                              Counting counting = Counting::Everything);
    /// Says a line to its console and gives back the answer.
    std::string tell(const std::string& line);

    [[nodiscard]] pid_t program() const { return m_program->id(); }
    [[nodiscard]] PaintCounter& paints() { return *m_paints; }

private:
    using Clock = std::chrono::steady_clock;

    [[nodiscard]] ProcessFigures figures();
    /// All that it has printed, complaints among it.
    [[nodiscard]] std::string printed() const { return textOf(m_log); }

    const Desktop& m_desktop;
    const Stage& m_stage;
    std::filesystem::path m_log;
    std::filesystem::path m_input;
    Clock::time_point m_start;
    std::optional<ChildProcess> m_program;
    Clock::time_point m_firstCapsule;
    double m_startMilliseconds = 0;
    xcb_window_t m_window = 0;
    std::optional<PaintCounter> m_paints;
};

} // namespace brimlet
