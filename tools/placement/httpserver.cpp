#include "tools/placement/httpserver.h"

#include "tools/placement/connection.h"

#include <algorithm>
#include <cctype>

#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

namespace brimlet::placement {

namespace {

constexpr std::size_t bodyLimit = 65536;

constexpr std::chrono::seconds keepAlive{300};

// Each open connection holds one thread. A client whose requests hang opens one every 3 seconds for
// a minute.
constexpr std::size_t connectionLimit = 64;

// A cut reply promises this much more than it sends.
constexpr std::size_t cutBytes = 100;

// The library does not pass the connection to its handlers, which run on the connection's thread.
thread_local Connection* currentConnection = nullptr;
thread_local bool currentAnswered = false;

// Without the library's SO_REUSEPORT, under which a second service could take the same port.
void setListenerOptions(socket_t socket) {
    const int on = 1;
    ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
}

std::string lowered(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char letter) { return static_cast<char>(std::tolower(letter)); });
    return text;
}

// The library adds these to the headers received.
bool isInvented(const std::string& name) {
    return name == "remote_addr" || name == "remote_port" || name == "local_addr" ||
           name == "local_port";
}

Incoming incomingOf(const httplib::Request& request) {
    Incoming incoming;
    incoming.method = request.method;
    incoming.path = request.target.substr(0, request.target.find('?'));
    if (request.has_header("Authorization")) {
        incoming.authorization = request.get_header_value("Authorization");
    }
    incoming.body = request.body;
    const auto [first, last] = request.headers.equal_range("If-None-Match");
    for (auto header = first; header != last; ++header) {
        incoming.ifNoneMatch += (header != first ? "," : "") + header->second;
    }
    return incoming;
}

LogFacts factsOf(const httplib::Request& request) {
    LogFacts facts;
    const std::size_t mark = request.target.find('?');
    facts.query = mark == std::string::npos ? std::string{} : request.target.substr(mark + 1);
    for (const auto& [name, value] : request.headers) {
        const std::string shown = lowered(name);
        if (!isInvented(shown) && shown != "authorization") {
            facts.headers.emplace_back(shown, value);
        }
    }
    return facts;
}

// The library reads a body only with some methods; with the others its bytes would be taken for the
// next request.
bool hasUnreadBody(const httplib::Request& request) {
    const bool announced =
        request.has_header("Transfer-Encoding") ||
        (request.has_header("Content-Length") && request.get_header_value("Content-Length") != "0");
    return announced &&
           (request.method == "GET" || request.method == "HEAD" || request.method == "OPTIONS");
}

} // namespace

HttpServer::HttpServer() {
    new_task_queue = [] { return new httplib::ThreadPool(connectionLimit); };
    set_address_family(AF_INET);
    set_socket_options(setListenerOptions);
    set_payload_max_length(bodyLimit);
    set_keep_alive_timeout(keepAlive.count());
    set_keep_alive_max_count(1'000'000);
    const auto handler = [this](const httplib::Request& request, httplib::Response& response) {
        answer(request, response);
    };
    Get(".*", handler);
    Post(".*", handler);
    Put(".*", handler);
    Patch(".*", handler);
    Delete(".*", handler);
    Options(".*", handler);
    set_error_handler([this](const httplib::Request& request, httplib::Response& response) {
        if (!currentAnswered) {
            refuse(request, response, currentConnection->isExhausted() ? 413 : response.status);
        }
    });
}

int HttpServer::bind(int port) {
    if (port == 0) {
        return bind_to_any_port("127.0.0.1");
    }
    return bind_to_port("127.0.0.1", port) ? port : -1;
}

bool HttpServer::serve(RequestHandler& handler) {
    m_handler = &handler;
    listen_after_bind();
    m_served = true;
    return m_stop.isSet();
}

void HttpServer::finish() {
    m_stop.set();
    // The library ignores stop() before its loop runs, which takes only moments.
    while (!is_running() && !m_served) {
        std::this_thread::yield();
    }
    if (!m_served) {
        stop();
    }
}

template <typename Setup>
bool HttpServer::processRequest(auto& connection, bool& isClosing, const Setup& setup) {
    if constexpr (requires { process_request(connection, false, isClosing, setup); }) {
        return process_request(connection, false, isClosing, setup);
    } else { // newer versions of the library take both ends' addresses, which nothing here reads
        return process_request(connection, {}, 0, {}, 0, false, isClosing, setup);
    }
}

bool HttpServer::process_and_close_socket(socket_t socket) {
    const int on = 1;
    ::setsockopt(socket, IPPROTO_TCP, TCP_NODELAY, &on, sizeof on);
    Connection connection(socket, m_stop);
    currentConnection = &connection;
    bool done = false;
    while (!done && connection.waitForRequest(keepAlive)) {
        currentAnswered = false;
        bool closing = false;
        const bool sent = processRequest(connection, closing, [&](const httplib::Request& request) {
            if (hasUnreadBody(request)) {
                connection.endAfterReply();
            }
        });
        done = !sent || closing || connection.endsAfterReply();
    }
    if (connection.endsAfterReply()) {
        connection.drain();
    }
    currentConnection = nullptr;
    ::shutdown(socket, SHUT_RDWR);
    ::close(socket);
    return true;
}

void HttpServer::answer(const httplib::Request& request, httplib::Response& response) {
    // The library checks only an announced length.
    if (request.body.size() > bodyLimit) {
        refuse(request, response, 413);
        return;
    }
    const Answer decided = m_handler->answer(incomingOf(request), factsOf(request));
    currentAnswered = true;
    m_stop.waitFor(decided.delay);
    if (decided.fault == Fault::Hang) {
        currentConnection->waitUntilGone();
    }
    if (decided.fault == Fault::Hang || decided.fault == Fault::Close) {
        currentConnection->dropReply();
    }
    send(decided, response);
}

void HttpServer::send(const Answer& answer, httplib::Response& response) {
    const Reply& reply = answer.reply;
    response.status = reply.status;
    for (const auto& [name, value] : reply.headers) {
        response.set_header(name, value);
    }
    if (currentConnection->endsAfterReply()) {
        response.set_header("Connection", "close");
    }
    if (reply.status == 304 && answer.fault == Fault::None) {
        return;
    }
    if (answer.fault != Fault::Cut) {
        response.set_content(reply.body, reply.contentType);
        return;
    }
    response.set_content_provider(
        reply.body.size() + cutBytes, reply.contentType,
        [body = reply.body](std::size_t offset, std::size_t /*length*/, httplib::DataSink& sink) {
            return offset < body.size() && sink.write(body.data() + offset, body.size() - offset);
        });
}

void HttpServer::refuse(const httplib::Request& request, httplib::Response& response, int status) {
    currentAnswered = true;
    currentConnection->endAfterReply();
    Incoming incoming = incomingOf(request);
    // It is cut off or far too long.
    incoming.body.clear();
    m_handler->logRefusal(incoming, factsOf(request), status);
    Answer refusal;
    refusal.reply = errorReply(status, status == 413   ? "the body is larger than 64 KiB"
                                       : status == 414 ? "the address is too long"
                                                       : "the request cannot be understood");
    send(refusal, response);
}

} // namespace brimlet::placement
