#pragma once

#include <QString>

#include <vector>

namespace brimlet {

/// Something that goes wrong in the world, and the tests that show what becomes of it.
struct FaultCase final {
    int number;
    const char* area;
    const char* what;
    const char* outcome;
    /// Each as "suite: function, function", the suite as CTest names it.
    std::vector<const char*> tests;
    /// How it is run where a test alone does not do; empty otherwise.
    const char* besides = "";
};

/// All of them, in the order of their numbers, which never change.
[[nodiscard]] const std::vector<FaultCase>& faultCases();

/// The tables that docs/robustness.md shows.
[[nodiscard]] QString asMarkdown(const std::vector<FaultCase>& cases);

} // namespace brimlet
