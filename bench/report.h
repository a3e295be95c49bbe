#pragma once

#include "bench/processfigures.h"
#include "bench/rates.h"

#include <optional>
#include <string>

namespace brimlet {

/// One line of the table.
struct Row final {
    std::string name;
    std::optional<ProcessFigures> memory{};
    std::optional<Rates> rates{};
    std::string remark{}; ///< Printed behind the figures, or in place of them.
};

/// Prints the names of the columns.
void printHead();

/// Prints one line of the table at once, since the next one may take minutes, and gives it back.
Row printed(Row row);

/// Prints how much CPU the first takes for the second's; nothing unless both were measured.
void printCpuRatio(const char* name, const Row& ours, const Row& other, const char* target = "");

} // namespace brimlet
