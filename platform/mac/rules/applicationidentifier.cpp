#include "platform/mac/rules/applicationidentifier.h"

namespace brimlet {

QString applicationIdentifier(const QString& bundleIdentifier) {
    return bundleIdentifier.isEmpty() ? QStringLiteral("app.brimlet.host") : bundleIdentifier;
}

} // namespace brimlet
