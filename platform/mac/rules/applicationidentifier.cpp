#include "platform/mac/rules/applicationidentifier.h"

namespace brimlet {

QString applicationIdentifier(const QString& ofBundle) {
    return ofBundle.isEmpty() ? QStringLiteral("app.brimlet.host") : ofBundle;
}

} // namespace brimlet
