#include "tests/support/faultserver/randomfaults.h"

#include <iterator>

namespace brimlet {
namespace {

using Kind = FaultStep::Kind;

FaultSteps sentAndCut(const QByteArray& bytes) {
    return {{Kind::Send, bytes}, {Kind::Cut}};
}

QByteArray withHeader(const QByteArray& good, const QByteArray& line) {
    QByteArray bytes = good;
    return bytes.insert(bytes.indexOf("\r\n") + 2, line + "\r\n");
}

QByteArray withBody(const QByteArray& body) {
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(body.size()) + "\r\n\r\n" +
           body;
}

QByteArray anyOf(QRandomGenerator& random, std::initializer_list<const char*> texts) {
    return *std::next(texts.begin(), random.bounded(static_cast<int>(texts.size())));
}

int placeIn(QRandomGenerator& random, const QByteArray& bytes) {
    return random.bounded(static_cast<int>(std::max(bytes.size(), qsizetype{1})));
}

FaultSteps cutShort(QRandomGenerator& random, const QByteArray& good) {
    return sentAndCut(good.first(placeIn(random, good)));
}

FaultSteps resetShort(QRandomGenerator& random, const QByteArray& good) {
    return {{Kind::Send, good.first(placeIn(random, good))}, {Kind::Reset}};
}

FaultSteps changedBytes(QRandomGenerator& random, const QByteArray& good) {
    QByteArray bytes = good;
    for (int changes = random.bounded(1, 5); changes > 0; --changes) {
        bytes[placeIn(random, bytes)] = static_cast<char>(random.bounded(256));
    }
    return sentAndCut(bytes);
}

FaultSteps otherStatus(QRandomGenerator& random, const QByteArray& /*good*/) {
    const QByteArray status = anyOf(random, {"201", "204", "206", "301", "304", "401", "403", "404",
                                             "407", "418", "429", "500", "503", "999"});
    return {{Kind::Send, "HTTP/1.1 " + status + " Some Reason\r\nContent-Length: 0\r\n\r\n"}};
}

FaultSteps interimReplies(QRandomGenerator& random, const QByteArray& good) {
    const QByteArray interim = anyOf(random, {"HTTP/1.1 100 Continue\r\n\r\n",
                                              "HTTP/1.1 103 Early Hints\r\nLink: </a>\r\n\r\n"});
    return {{Kind::Send, interim.repeated(random.bounded(1, 20)) + good}};
}

FaultSteps wrongLength(QRandomGenerator& random, const QByteArray& good) {
    const QByteArray length =
        anyOf(random, {"-1", "1", "99999", "18446744073709551616", "0x10", "1, 2", ""});
    return sentAndCut(withHeader(good, "Content-Length: " + length));
}

FaultSteps surplus(QRandomGenerator& random, const QByteArray& good) {
    return sentAndCut(good + QByteArray(random.bounded(1, 2000), 'x'));
}

FaultSteps otherBody(QRandomGenerator& random, const QByteArray& /*good*/) {
    return {
        {Kind::Send, withBody(anyOf(random, {"", " \n", "<html>Sign in</html>", "[]", "3", "null",
                                             "\"x\"", "{\"weekStatus\":", "\xEF\xBB\xBF{}",
                                             "{\"weekStatus\":\"live\"}x", "[[[[[[[["}))}};
}

FaultSteps longBody(QRandomGenerator& random, const QByteArray& /*good*/) {
    return sentAndCut(withBody(QByteArray(1024 * 1024 + random.bounded(-2, 3), ' ')));
}

FaultSteps longHead(QRandomGenerator& random, const QByteArray& good) {
    return sentAndCut(
        withHeader(good, "X-Padding: " + QByteArray(random.bounded(60'000, 70'000), 'p')));
}

FaultSteps badChunks(QRandomGenerator& random, const QByteArray& /*good*/) {
    return sentAndCut("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" +
                      anyOf(random, {"zz\r\n{}\r\n0\r\n\r\n", "-1\r\n{}\r\n", "2\r\n{}",
                                     "FFFFFFFFFFFFFFFFF\r\n{}", "2;x=\r\n{}\r\n0\r\nA: b\r\n"}));
}

FaultSteps elsewhere(QRandomGenerator& random, const QByteArray& /*good*/) {
    const QByteArray target =
        anyOf(random, {"/api/display", "http://127.0.0.1:1/", "//[", "file:///etc/passwd",
                       "https://127.0.0.1:1/", "", "http://127.0.0.1@brand.test/"});
    return {{Kind::Send,
             "HTTP/1.1 302 Found\r\nLocation: " + target + "\r\nContent-Length: 0\r\n\r\n"}};
}

FaultSteps nonsense(QRandomGenerator& random, const QByteArray& /*good*/) {
    QByteArray bytes(random.bounded(1, 3000), '\0');
    for (char& byte : bytes) {
        byte = static_cast<char>(random.bounded(256));
    }
    return sentAndCut(anyOf(random, {"", "HTTP/1.1 ", "HTTP/2 200\r\n\r\n", "{}"}) + bytes);
}

FaultSteps inPieces(QRandomGenerator& /*random*/, const QByteArray& good) {
    return {{Kind::Drip, good}};
}

} // namespace

FaultSteps randomFault(QRandomGenerator& random, const QByteArray& good) {
    using Fault = FaultSteps (*)(QRandomGenerator&, const QByteArray&);
    static constexpr Fault kFaults[] = {
        cutShort,    resetShort, changedBytes, changedBytes, otherStatus, interimReplies,
        wrongLength, surplus,    otherBody,    otherBody,    longBody,    longHead,
        badChunks,   elsewhere,  nonsense,     inPieces,
    };
    return kFaults[random.bounded(static_cast<int>(std::size(kFaults)))](random, good);
}

} // namespace brimlet
