#pragma once

#include <stdexcept>

namespace brimlet {

/// Something could not be measured; `what()` says what. Ends the benchmark, which ends its
/// programs.
class Failure final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace brimlet
