#pragma once

#include "bench/processfigures.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace brimlet {

/// What went through the relay to the placement service and back.
struct Traffic final {
    std::int64_t polls = 0;
    std::int64_t pollBytesSent = 0;     ///< By the program, heads and bodies.
    std::int64_t pollBytesReceived = 0; ///< Likewise.
    std::int64_t pollConnections = 0;   ///< Connections on which polls came.
    std::int64_t otherRequests = 0;     ///< Heartbeats, pictures.

    Traffic operator-(const Traffic& earlier) const;
};

/// What a program asked of the X server.
struct XRequests final {
    std::int64_t count = 0;
    std::int64_t bytes = 0;
};

/// What a window was painted.
struct Paints final {
    std::int64_t count = 0;
};

/// What a program spent in a while; absent is what nobody counted.
struct Spent final {
    double seconds = 0;
    ProcessFigures before{};
    ProcessFigures after{};
    std::optional<Paints> paints{};
    std::optional<XRequests> xRequests{};
    std::optional<Traffic> traffic{};
};

/// One run's figures by name, as they stand in the results: memory at its end, and rates.
using Figures = std::map<std::string, double>;

[[nodiscard]] Figures figuresOf(const Spent& spent);

/// Of at least one value.
[[nodiscard]] double median(std::vector<double> values);

/// Each figure's median over at least one run; those that some run lacks are left out.
[[nodiscard]] Figures medianOf(const std::vector<Figures>& runs);

/// Each figure's greatest value, likewise.
[[nodiscard]] Figures greatestOf(const std::vector<Figures>& runs);

} // namespace brimlet
