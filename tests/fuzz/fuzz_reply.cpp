#include "tests/fuzz/fuzzing.h"
#include "tests/fuzz/replycheck.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    return brimlet::runCheck(data, size, brimlet::checkReply);
}
