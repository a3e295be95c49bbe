#pragma once

#include "tools/placement/requesthandler.h"
#include "tools/placement/stopsignal.h"

#include <httplib.h>

namespace brimlet::placement {

/// HTTP/1.1 on the loopback interface. A connection without a request for five minutes is closed.
class HttpServer final : public httplib::Server {
public:
    HttpServer();

    /// The port that is bound, from then on connections are accepted; -1 with errno set on failure.
    [[nodiscard]] int bind(int port);
    /// Serves until `finish()`; blocks. False when the listening socket failed before that.
    [[nodiscard]] bool serve(RequestHandler& handler);
    /// Makes `serve()` return at once, even while requests hang. Called once, from another thread.
    void finish();

private:
    bool process_and_close_socket(socket_t socket) override;
    template <typename Setup>
    bool processRequest(auto& connection, bool& isClosing, const Setup& setup);
    void answer(const httplib::Request& request, httplib::Response& response);
    void send(const Answer& answer, httplib::Response& response);
    void refuse(const httplib::Request& request, httplib::Response& response, int status);

    StopSignal m_stop;
    std::atomic<bool> m_served{false};
    RequestHandler* m_handler = nullptr;
};

} // namespace brimlet::placement
