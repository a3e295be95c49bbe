#include "platform/qt/awaketime.h"

namespace brimlet {

std::chrono::nanoseconds awakeTime() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

} // namespace brimlet
