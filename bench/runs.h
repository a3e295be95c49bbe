#pragma once

#include "bench/desktop.h"
#include "bench/results.h"
#include "bench/show.h"
#include "bench/stage.h"

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace brimlet {

/// A program with capsules.
struct Actor final {
    enum class Argument { None, MachineFile, Root };

    std::string program;
    Argument argument = Argument::None;
    Show::Counting counting = Show::Counting::Everything;
};

/// Runs one program with capsules on a stage, in several ways, each so many times. The references
/// outlive it. Each way fills in a row.
class Runs final {
public:
    Runs(const Desktop& desktop, const Stage& stage, Actor actor, int times)
        : m_desktop(desktop)
        , m_stage(stage)
        , m_actor(std::move(actor))
        , m_times(times) {}

    /// Of the Qt that the program uses; empty when it is not built.
    [[nodiscard]] std::string qtVersion() const;
    /// From the start to the first capsule.
    [[nodiscard]] Row starts(Row row) const;
    /// The time in which both capsules show their brands, each time after a start.
    [[nodiscard]] Row rest(Row row) const;
    /// Brands and taglines in turn, one time after the other.
    [[nodiscard]] Row cycles(Row row) const;
    /// Both taglines scroll; those of the stage are long enough. Without runs when too few paints
    /// came.
    [[nodiscard]] Row scrolling(Row row) const;
    /// Something has been done to the program that has a console; nothing moves.
    [[nodiscard]] Row after(Row row, const std::function<void(Show&)>& change) const;
    /// Polls that bring another brand, from the last byte of the reply to the first paint.
    [[nodiscard]] Row changes(Row row) const;

    /// For how long taglines have to scroll, in seconds.
    [[nodiscard]] static double scrollSeconds(int times);

private:
    [[nodiscard]] bool isBuilt(Row& row) const;
    [[nodiscard]] Spent watched(Show& show, std::chrono::seconds time) const;
    [[nodiscard]] std::vector<std::string> command() const;

    const Desktop& m_desktop;
    const Stage& m_stage;
    Actor m_actor;
    int m_times;
};

} // namespace brimlet
