#pragma once

#include <QByteArray>

namespace brimlet {

/// The JSON body of a heartbeat, in UTF-8.
[[nodiscard]] QByteArray heartbeatBody(bool paused, bool adsVisible, bool fromApplications);

} // namespace brimlet
