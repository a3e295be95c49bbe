#pragma once

#include <optional>
#include <string>

namespace brimlet {

/// Asks the placement service over one kept connection of plain HTTP/1.1. Knows bodies with a
/// length only; a connection that ends is made again with the next question.
class FloorService final {
public:
    /// `root` as "http://HOST:PORT".
    explicit FloorService(const std::string& root);
    ~FloorService() { close(); }
    FloorService(const FloorService&) = delete;
    FloorService& operator=(const FloorService&) = delete;

    /// To be watched for input; -1 while there is no connection.
    [[nodiscard]] int descriptor() const { return m_socket; }
    /// Asks for the placement, unless it is still the one that came last.
    void ask();
    /// Reads what has come: the body of a new placement once it is complete.
    [[nodiscard]] std::optional<std::string> read();

private:
    void connect();
    void close();
    [[nodiscard]] std::optional<std::string> takeReply();

    std::string m_host;
    std::string m_port;
    int m_socket = -1;
    std::string m_received;
    std::string m_validator;
};

} // namespace brimlet
