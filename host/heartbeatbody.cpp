#include "host/heartbeatbody.h"

#include "host/json.h"

namespace brimlet {

QByteArray heartbeatBody(bool paused, bool adsVisible, bool fromApplications) {
    Json body = Json::object();
    body["paused"] = paused;
    body["slotsVisible"] = adsVisible ? Json::array({"left", "right"}) : Json::array();
    body["wakeMinutes"] = 0;
    // The version of the protocol, not of the program.
    body["appVersion"] = "0.1.0";
    body["fromApplications"] = fromApplications;
    return QByteArray::fromStdString(body.dump());
}

} // namespace brimlet
