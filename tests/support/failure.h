#pragma once

#include <stdexcept>

namespace brimlet {

/// A program that measures or soaks cannot go on; `what()` says why.
class Failure final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace brimlet
