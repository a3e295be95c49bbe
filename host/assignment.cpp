#include "host/assignment.h"

namespace brimlet {

Assignment initialAssignment(bool fromApplications) {
    Assignment assignment;
    assignment.fromApplications = fromApplications;
    return assignment;
}

bool isInApplications(const QString& bundlePath) {
    return bundlePath.startsWith(QLatin1StringView("/Applications/"), Qt::CaseSensitive);
}

} // namespace brimlet
