#include "picture/confinement.h"

#include <sys/resource.h>
#include <unistd.h>

namespace brimlet {

bool confineProcess() {
    const auto limit = [](int resource, rlim_t value) {
        const rlimit limits{value, value};
        return setrlimit(resource, &limits) == 0;
    };
    for (int descriptor = STDERR_FILENO; descriptor < getdtablesize(); ++descriptor) {
        close(descriptor);
    }
    return limit(RLIMIT_CPU, 3) && limit(RLIMIT_FSIZE, 0) && limit(RLIMIT_CORE, 0);
}

} // namespace brimlet
