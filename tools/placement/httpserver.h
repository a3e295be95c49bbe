#pragma once

#include "tools/placement/desk.h"
#include "tools/placement/stopsignal.h"

#include <httplib.h>

namespace brimlet::placement {

/// HTTP/1.1 on the loopback interface; every request goes to the desk. A connection is kept for as
/// long as its client comes back within five minutes.
class HttpServer final : public httplib::Server {
public:
    HttpServer();

    /// The port bound, which also begins to take connections in; -1 with errno set on failure.
    [[nodiscard]] int bind(int port);
    /// Answers until `finish()`; blocks. The desk outlives the call. False when it ended by itself.
    [[nodiscard]] bool serve(Desk& desk);
    /// Ends `serve()` from another thread within moments, whatever requests still hang. Once only.
    void finish();

private:
    bool process_and_close_socket(socket_t socket) override;
    void answer(const httplib::Request& request, httplib::Response& response);
    void send(const Answer& answer, httplib::Response& response);
    void refuse(const httplib::Request& request, httplib::Response& response, int status);

    StopSignal m_stop;
    std::atomic<bool> m_served{false};
    Desk* m_desk = nullptr;
};

} // namespace brimlet::placement
