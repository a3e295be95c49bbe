#pragma once

#include <stdexcept>

namespace brimlet {

/// An error that ends a benchmark or soak run; `what()` is its message.
class Failure final : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

} // namespace brimlet
