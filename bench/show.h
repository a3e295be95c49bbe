#pragma once

#include "bench/childprocess.h"
#include "bench/paintcounter.h"
#include "bench/processfigures.h"
#include "bench/rates.h"

#include <chrono>
#include <optional>

namespace brimlet {

class Desktop;

/// A program with capsules beside the notch of the 14-inch machine, from its start to its end.
class Show final {
public:
    /// Starts it and returns when its first capsule is seen. The desktop outlives it.
    Show(const Desktop& desktop, const std::vector<std::string>& command,
         const std::filesystem::path& log);
    ~Show();
    Show(const Show&) = delete;
    Show& operator=(const Show&) = delete;

    /// From the start of the program to its first capsule.
    [[nodiscard]] double startMilliseconds() const { return m_startMilliseconds; }
    /// Lets time pass until so long after the first capsule.
    void waitUntilAge(std::chrono::milliseconds age);
    /// What it spends while this time passes.
    [[nodiscard]] Spent watch(std::chrono::milliseconds time);
    [[nodiscard]] ProcessFigures figures();

private:
    using Clock = std::chrono::steady_clock;

    const Desktop& m_desktop;
    Clock::time_point m_start = Clock::now();
    ChildProcess m_program;
    std::filesystem::path m_log;
    Clock::time_point m_firstCapsule;
    double m_startMilliseconds = 0;
    std::optional<PaintCounter> m_paints;
};

} // namespace brimlet
