#pragma once

#include "bench/report/findings.h"

#include <filesystem>
#include <string>
#include <vector>

namespace brimlet {

struct Picture final {
    std::string file; ///< Without a folder.
    std::string title;
};

/// Writes what gnuplot needs for the plots, one file NAME.gp for each that there are figures for;
/// each makes the picture NAME.svg in the current folder.
std::vector<Picture> writePlots(const Findings& findings, const std::filesystem::path& folder);

} // namespace brimlet
