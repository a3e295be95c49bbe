#pragma once

#include "bench/desktop.h"
#include "bench/report.h"
#include "bench/stage.h"

#include <chrono>
#include <string>
#include <vector>

namespace brimlet {

/// Runs one program with capsules on a stage, in several ways. The references outlive it.
class Runs final {
public:
    Runs(const Desktop& desktop, const Places& places, std::string program, std::string name)
        : m_desktop(desktop)
        , m_places(places)
        , m_program(std::move(program))
        , m_name(std::move(name)) {}

    /// Milliseconds from the start to the first capsule, so many times, sorted.
    [[nodiscard]] std::vector<double> starts(const Stage& stage, int times) const;

    /// The time in which both capsules show their brands, so many times.
    [[nodiscard]] Row rest(const Stage& stage, int times) const;

    /// So many seconds of brands and taglines in turn.
    [[nodiscard]] Row cycles(const Stage& stage, std::chrono::seconds time) const;

    /// So many slices of time in which both taglines scroll; the stage's taglines are long enough.
    /// Without rates when too few paints came.
    [[nodiscard]] Row scrolling(const Stage& stage, std::chrono::seconds slice, int slices) const;

private:
    [[nodiscard]] std::filesystem::path log() const;

    const Desktop& m_desktop;
    const Places& m_places;
    std::string m_program;
    std::string m_name;
};

/// For how long taglines have to scroll in `Runs::scrolling`, in seconds.
[[nodiscard]] double scrollSeconds(std::chrono::seconds slice, int slices);

} // namespace brimlet
