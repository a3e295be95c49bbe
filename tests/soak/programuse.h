#pragma once

#include "tests/soak/report.h"
#include "tests/support/processes.h"

namespace brimlet {

/// The resources that a program uses.
struct ProgramUse final {
    qint64 memory = 0;    ///< Resident bytes.
    qint64 anonymous = 0; ///< Those that do not map a file.
    qint64 threads = 0;
    qint64 sockets = 0; ///< Including kept connections.
    qint64 others = 0;  ///< Other descriptors.
};

/// Throws a `Failure` when the process is gone.
[[nodiscard]] ProgramUse useOf(qint64 process);

/// A program's use of resources after its warm-up, and the maximum since.
class UseWatch final {
public:
    explicit UseWatch(qint64 process)
        : m_process(process) {}

    /// Takes a sample. The first one is what the last one is compared with.
    void sample();
    [[nodiscard]] bool hasBegun() const { return m_isWarm; }
    /// The last sample as a text.
    [[nodiscard]] QString description() const;
    /// Reports the last sample. In a short run, which has not warmed up, more memory is allowed.
    void judge(Report& report, bool isShort) const;

private:
    qint64 m_process;
    bool m_isWarm = false;
    ProgramUse m_warm;
    ProgramUse m_last;
    ProgramUse m_most;
};

/// Reports the program's output to standard error and its status line.
void judgeOutput(Report& report, SimulatorProcess& program, const QString& status);

} // namespace brimlet
