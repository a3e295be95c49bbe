#include "host/linkrule.h"

namespace brimlet {

bool isAllowedLink(const Url& url) {
    const QString scheme = url.scheme().value_or(QString());
    if (scheme == QLatin1StringView("https")) {
        return true;
    }
    if (scheme != QLatin1StringView("http")) {
        return false;
    }
    const QString host = url.host().value_or(QString());
    return host == QLatin1StringView("127.0.0.1") || host == QLatin1StringView("localhost") ||
           host == QLatin1StringView("::1");
}

} // namespace brimlet
