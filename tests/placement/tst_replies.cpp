#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tools/placement/brands.h"
#include "tools/placement/responder.h"

#include <QtTest/QtTest>

using namespace brimlet::placement;
using nlohmann::json;

namespace {

constexpr Instant monday{std::chrono::sys_days{std::chrono::year{2024} / 2 / 5}};

const std::string goodBeat =
    R"({"paused":false,"slotsVisible":["left","right"],"wakeMinutes":0,"appVersion":"0.1.0",)"
    R"("fromApplications":true})";

Responder responder(std::string_view scenario = "{}") {
    Responder made("http://127.0.0.1:99", {{"quiet-bicycle", "PNG"}, {"palindrome-tea", "PNG"}});
    ScenarioResult result = parseScenario(scenario);
    if (const auto* error = std::get_if<std::string>(&result)) {
        qFatal("not a scenario: %s", error->c_str());
    }
    made.setScenario(std::get<Scenario>(std::move(result)));
    return made;
}

Incoming get(const std::string& path) {
    return {"GET", path, {}, {}};
}

Incoming asHost(const std::string& method, const std::string& path, const std::string& body = {}) {
    return {method, path, "Bearer demo-host-token", body};
}

Answer answered(std::string_view scenario, const Incoming& request) {
    return responder(scenario).answer(request, monday);
}

json object(const Answer& answer) {
    return json::parse(answer.reply.body, nullptr, false);
}

QStringList keys(const json& value) {
    QStringList names;
    for (const auto& item : value.items()) {
        names << QString::fromStdString(item.key());
    }
    return names;
}

QByteArray header(const Answer& answer, const std::string& name) {
    QByteArrayList values;
    for (const auto& [key, value] : answer.reply.headers) {
        if (key == name) {
            values << QByteArray::fromStdString(value);
        }
    }
    return values.join('|');
}

} // namespace

class RepliesTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theDisplayReplyHasItsThreeKeys();
    void theHostReplyHasAllItsKeys_data();
    void theHostReplyHasAllItsKeys();
    void theSampleBrandsFillBothSlots();
    void picturesAndPagesAreServed();
    void theDocumentAndItsPageAreServed();
    void thePageLoadsNothing();
    void agreeingLastsForThatTokenOnly();
    void aHeartbeatCountsInTheFigures();
    void aWrongTokenIsRefused_data();
    void aWrongTokenIsRefused();
    void unknownPathsAreNotFound_data();
    void unknownPathsAreNotFound();
    void wrongMethodsNameTheRightOnes_data();
    void wrongMethodsNameTheRightOnes();
    void badBodiesNameTheKey_data();
    void badBodiesNameTheKey();
    void aRefusedHeartbeatCountsForNothing();
    void aMergeSetsKeys();
    void aRemovedKeyIsGone();
    void aMergeLeavesErrorsAlone();
    void aWholeBodyReplacesEvenErrors();
    void statusDelayHeadersAndFaultAreApplied();
    void repliesWithoutContentHaveNoBody_data();
    void repliesWithoutContentHaveNoBody();
    void garbageIsNotJson();
    void theScenariosPlacementIsSent();
    void aNewScenarioKeepsTheHostsFigures();
    void anUnchangedReplyIsA304_data();
    void anUnchangedReplyIsA304();
    void aChangedReplyIsSentWhole();
    void aScenariosETagIsUsed();
    void otherRepliesHaveNoETag_data();
    void otherRepliesHaveNoETag();
};

void RepliesTest::theDisplayReplyHasItsThreeKeys() {
    const Answer answer = answered("{}", get("/api/display"));
    QCOMPARE(answer.reply.status, 200);
    QCOMPARE(answer.reply.contentType, std::string("application/json"));
    QCOMPARE(keys(object(answer)),
             QStringList({QStringLiteral("creatives"), QStringLiteral("forceHide"),
                          QStringLiteral("weekStatus")}));
    QVERIFY(object(answer)["weekStatus"] == "live");
    QVERIFY(object(answer)["forceHide"] == false);
}

void RepliesTest::theHostReplyHasAllItsKeys_data() {
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::newRow("heartbeat") << QByteArray("POST") << QByteArray("/api/host/heartbeat")
                               << QByteArray::fromStdString(goodBeat);
    QTest::newRow("me") << QByteArray("GET") << QByteArray("/api/host/me") << QByteArray();
    QTest::newRow("agree") << QByteArray("POST") << QByteArray("/api/host/agree")
                           << QByteArray("{}");
}

void RepliesTest::theHostReplyHasAllItsKeys() {
    QFETCH(QByteArray, method);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, body);
    const Answer answer =
        answered("{}", asHost(method.toStdString(), path.toStdString(), body.toStdString()));
    QCOMPARE(answer.reply.status, 200);
    const json reply = object(answer);
    QCOMPARE(keys(reply).join(QLatin1Char(' ')),
             QStringLiteral("agreed agreementText creatives estimatedCents forceHide "
                            "fromApplications liveBucketsNeeded liveBucketsToday liveDaysThisWeek "
                            "liveHostCount pendingStipendCents weekStatus"));
    for (const char* key : {"estimatedCents", "liveBucketsNeeded", "liveBucketsToday",
                            "liveDaysThisWeek", "liveHostCount", "pendingStipendCents"}) {
        QVERIFY2(reply[key].is_number_integer(), key);
    }
    for (const char* key : {"agreed", "forceHide", "fromApplications"}) {
        QVERIFY2(reply[key].is_boolean(), key);
    }
    QVERIFY(reply["liveBucketsNeeded"] == 4);
}

void RepliesTest::theSampleBrandsFillBothSlots() {
    const json creatives = object(answered("{}", get("/api/display")))["creatives"];
    QCOMPARE(creatives.size(), std::size_t{2});
    QVERIFY(creatives[0]["slotId"] == "left");
    QVERIFY(creatives[1]["slotId"] == "right");
    for (const json& creative : creatives) {
        QCOMPARE(keys(creative).join(QLatin1Char(' ')),
                 QStringLiteral("assetUrl brandName brandUrl copy slotId"));
        for (const char* key : {"assetUrl", "brandUrl"}) {
            const auto url = creative[key].get<std::string>();
            QVERIFY2(url.starts_with("http://127.0.0.1:99/"), url.c_str());
            QCOMPARE(answered("{}", get(url.substr(19))).reply.status, 200);
        }
    }
    QVERIFY(creatives[1]["copy"].get<std::string>().size() > 60);
}

void RepliesTest::picturesAndPagesAreServed() {
    const Answer picture = answered("{}", get("/assets/quiet-bicycle.png"));
    QCOMPARE(picture.reply.contentType, std::string("image/png"));
    QCOMPARE(picture.reply.body, std::string("PNG"));
    const Answer page = answered("{}", get("/brands/palindrome-tea"));
    QCOMPARE(page.reply.contentType, std::string("text/html; charset=utf-8"));
    QVERIFY(page.reply.body.find("<h1>Palindrome</h1>") != std::string::npos);
}

void RepliesTest::theDocumentAndItsPageAreServed() {
    QFile file(brimlet::sourcePath(u"docs/service/openapi.yaml"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(file.readAll());
    const Answer document = answered("{}", get("/openapi.yaml"));
    QCOMPARE(document.reply.status, 200);
    QCOMPARE(document.reply.contentType, std::string("application/yaml"));
    QCOMPARE(QString::fromStdString(document.reply.body), text);
    const Answer page = answered("{}", get("/"));
    QCOMPARE(page.reply.status, 200);
    QCOMPARE(page.reply.contentType, std::string("text/html; charset=utf-8"));
    QVERIFY(QString::fromStdString(page.reply.body)
                .contains(
                    text.toHtmlEscaped().replace(QStringLiteral("&quot;"), QStringLiteral("\""))));
}

void RepliesTest::thePageLoadsNothing() {
    const QString page = QString::fromStdString(answered("{}", get("/")).reply.body);
    const QRegularExpression loading(QStringLiteral(
        "<(script|link|img|iframe|object|embed|video|audio|source)|src=|@import|url\\("));
    QVERIFY(loading.match(QStringLiteral("<img src=x>")).hasMatch());
    QVERIFY(!loading.match(page).hasMatch());
    QVERIFY(page.contains(QStringLiteral("href=\"/openapi.yaml\"")));
}

void RepliesTest::agreeingLastsForThatTokenOnly() {
    Responder both = responder(R"({"tokens": ["one", "two"]})");
    const auto agreed = [&](const std::string& token) {
        return object(
            both.answer({"GET", "/api/host/me", "Bearer " + token, {}}, monday))["agreed"];
    };
    QVERIFY(agreed("one") == false);
    const Answer signing = both.answer({"POST", "/api/host/agree", "Bearer one", "{}"}, monday);
    QVERIFY(object(signing)["agreed"] == true);
    QVERIFY(agreed("one") == true);
    QVERIFY(agreed("two") == false);
}

void RepliesTest::aHeartbeatCountsInTheFigures() {
    Responder made = responder(R"({"poolCents": 2800, "liveHosts": 0})");
    QCOMPARE(made.answer(asHost("POST", "/api/host/agree", "{}"), monday).reply.status, 200);
    const json reply = object(made.answer(asHost("POST", "/api/host/heartbeat", goodBeat), monday));
    QVERIFY(reply["liveBucketsToday"] == 1);
    QVERIFY(reply["liveHostCount"] == 1);
    QVERIFY(reply["estimatedCents"] == 100);
    QVERIFY(reply["fromApplications"] == true);
}

void RepliesTest::aWrongTokenIsRefused_data() {
    QTest::addColumn<QByteArray>("authorization");
    QTest::addColumn<int>("status");
    QTest::newRow("right") << QByteArray("Bearer demo-host-token") << 200;
    QTest::newRow("none") << QByteArray() << 401;
    QTest::newRow("empty") << QByteArray("Bearer ") << 401;
    QTest::newRow("unknown") << QByteArray("Bearer demo-host-tokem") << 401;
    QTest::newRow("longer") << QByteArray("Bearer demo-host-token2") << 401;
    QTest::newRow("other scheme") << QByteArray("Basic demo-host-token") << 401;
    QTest::newRow("compared") << QByteArray("demo-host-token") << 401;
}

void RepliesTest::aWrongTokenIsRefused() {
    QFETCH(QByteArray, authorization);
    QFETCH(int, status);
    for (Incoming request :
         {asHost("GET", "/api/host/me"), asHost("POST", "/api/host/heartbeat", goodBeat),
          asHost("POST", "/api/host/agree", "{}")}) {
        request.authorization = authorization.toStdString();
        if (authorization.isEmpty()) {
            request.authorization.reset();
        }
        const Answer answer = answered("{}", request);
        QCOMPARE(answer.reply.status, status);
        QCOMPARE(object(answer).contains("error"), status != 200);
        QCOMPARE(header(answer, "WWW-Authenticate"), QByteArray(status == 200 ? "" : "Bearer"));
    }
}

void RepliesTest::unknownPathsAreNotFound_data() {
    QTest::addColumn<QByteArray>("path");
    for (const char* path :
         {"", "/index.html", "/api", "/api/display/", "//api/display", "/API/display", "/assets/",
          "/assets/.png", "/assets/other.png", "/assets/quiet-bicycle", "/brands/", "/brands/other",
          "/brands/../quiet-bicycle"}) {
        QTest::addRow("\"%s\"", path) << QByteArray(path);
    }
}

void RepliesTest::unknownPathsAreNotFound() {
    QFETCH(QByteArray, path);
    const Answer answer = answered("{}", get(path.toStdString()));
    QCOMPARE(answer.reply.status, 404);
    QVERIFY(object(answer)["error"].is_string());
}

void RepliesTest::wrongMethodsNameTheRightOnes_data() {
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("allow");
    const QByteArray reading = "GET, HEAD";
    QTest::newRow("display") << QByteArray("POST") << QByteArray("/api/display") << reading;
    QTest::newRow("me") << QByteArray("DELETE") << QByteArray("/api/host/me") << reading;
    QTest::newRow("heartbeat") << QByteArray("GET") << QByteArray("/api/host/heartbeat")
                               << QByteArray("POST");
    QTest::newRow("agree") << QByteArray("PUT") << QByteArray("/api/host/agree")
                           << QByteArray("POST");
    QTest::newRow("picture") << QByteArray("POST") << QByteArray("/assets/quiet-bicycle.png")
                             << reading;
}

void RepliesTest::wrongMethodsNameTheRightOnes() {
    QFETCH(QByteArray, method);
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, allow);
    const Answer answer = answered("{}", asHost(method.toStdString(), path.toStdString(), "{}"));
    QCOMPARE(answer.reply.status, 405);
    QCOMPARE(header(answer, "Allow"), allow);
    QVERIFY(object(answer)["error"].is_string());
}

void RepliesTest::badBodiesNameTheKey_data() {
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QByteArray>("error");
    const auto beat = [](const char* name, const char* key, const json& value, const char* error) {
        json body = json::parse(goodBeat);
        body[key] = value;
        if (value.is_null()) {
            body.erase(key);
        }
        QTest::newRow(name) << QByteArray("/api/host/heartbeat")
                            << QByteArray::fromStdString(body.dump()) << QByteArray(error);
    };
    beat("no paused", "paused", nullptr, R"(heartbeat: key "paused" is missing)");
    beat("no slots", "slotsVisible", nullptr, R"(heartbeat: key "slotsVisible" is missing)");
    beat("no minutes", "wakeMinutes", nullptr, R"(heartbeat: key "wakeMinutes" is missing)");
    beat("no version", "appVersion", nullptr, R"(heartbeat: key "appVersion" is missing)");
    beat("no folder", "fromApplications", nullptr,
         R"(heartbeat: key "fromApplications" is missing)");
    beat("paused", "paused", 0, R"(heartbeat: key "paused" must be true or false)");
    beat("slots", "slotsVisible", "left",
         R"(heartbeat: key "slotsVisible" must be an array of strings)");
    beat("slot", "slotsVisible", {"left", 2},
         R"(heartbeat: key "slotsVisible" must be an array of strings)");
    beat("minutes", "wakeMinutes", 0.5,
         R"(heartbeat: key "wakeMinutes" must be a whole number from 0 to 10080)");
    beat("version", "appVersion", 1, R"(heartbeat: key "appVersion" must be a string)");
    beat("folder", "fromApplications", "yes",
         R"(heartbeat: key "fromApplications" must be true or false)");
    const QByteArray heartbeat = "/api/host/heartbeat";
    const QByteArray agree = "/api/host/agree";
    QTest::newRow("empty") << heartbeat << QByteArray()
                           << QByteArray("body: not valid JSON at line 1, column 1");
    QTest::newRow("array") << heartbeat << QByteArray("[]")
                           << QByteArray("body: must be a JSON object");
    QTest::newRow("not JSON") << heartbeat << QByteArray("{\"paused\":}")
                              << QByteArray("body: not valid JSON at line 1, column 11");
    QTest::newRow("agreeing to nothing")
        << agree << QByteArray() << QByteArray("body: not valid JSON at line 1, column 1");
    QTest::newRow("agreeing to null")
        << agree << QByteArray("null") << QByteArray("body: must be a JSON object");
}

void RepliesTest::badBodiesNameTheKey() {
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, body);
    QFETCH(QByteArray, error);
    const Answer answer = answered("{}", asHost("POST", path.toStdString(), body.toStdString()));
    QCOMPARE(answer.reply.status, 400);
    QCOMPARE(QByteArray::fromStdString(object(answer)["error"].get<std::string>()), error);
}

void RepliesTest::aRefusedHeartbeatCountsForNothing() {
    Responder made = responder();
    const Incoming half = asHost("POST", "/api/host/heartbeat", R"({"slotsVisible":["left"]})");
    QCOMPARE(made.answer(half, monday).reply.status, 400);
    QVERIFY(object(made.answer(asHost("GET", "/api/host/me"), monday))["liveBucketsToday"] == 0);
}

void RepliesTest::aMergeSetsKeys() {
    const json reply = object(answered(
        R"({"endpoints": {"/api/host/me": {"merge":
            {"estimatedCents": 1234, "agreed": null, "creatives": {"left": 1}, "new": "x"}}}})",
        asHost("GET", "/api/host/me")));
    QVERIFY(reply["estimatedCents"] == 1234);
    QVERIFY(reply.contains("agreed") && reply["agreed"].is_null());
    QVERIFY(reply["creatives"].is_object());
    QVERIFY(reply["new"] == "x");
    QVERIFY(reply["liveBucketsNeeded"] == 4);
}

void RepliesTest::aRemovedKeyIsGone() {
    const json reply =
        object(answered(R"({"endpoints": {"/api/host/me": {"remove": ["agreed", "no such"]}}})",
                        asHost("GET", "/api/host/me")));
    QVERIFY(!reply.contains("agreed"));
    QCOMPARE(reply.size(), std::size_t{11});
}

void RepliesTest::aMergeLeavesErrorsAlone() {
    const Answer answer =
        answered(R"({"endpoints": {"/api/host/me": {"merge": {"estimatedCents": 1}}}})",
                 get("/api/host/me"));
    QCOMPARE(answer.reply.status, 401);
    QVERIFY(!object(answer).contains("estimatedCents"));
}

void RepliesTest::aWholeBodyReplacesEvenErrors() {
    const Answer answer =
        answered(R"({"endpoints": {"/api/host/me": {"text": "<p>sign in</p>", "status": 200,
                     "headers": {"content-type": "text/html"}}}})",
                 get("/api/host/me"));
    QCOMPARE(answer.reply.status, 200);
    QCOMPARE(answer.reply.body, std::string("<p>sign in</p>"));
    QCOMPARE(answer.reply.contentType, std::string("text/html"));
}

void RepliesTest::statusDelayHeadersAndFaultAreApplied() {
    const Answer answer = answered(R"({"endpoints": {"/api/display": {"status": 503,
        "delayMs": 70, "headers": {"Retry-After": "3", "cache-control": "max-age=9"},
        "fault": "hang"}}})",
                                   get("/api/display"));
    QCOMPARE(answer.reply.status, 503);
    QCOMPARE(answer.delay, std::chrono::milliseconds{70});
    QCOMPARE(answer.fault, Fault::Hang);
    QCOMPARE(header(answer, "Retry-After"), QByteArray("3"));
    QCOMPARE(header(answer, "cache-control"), QByteArray("max-age=9"));
    QCOMPARE(header(answer, "Cache-Control"), QByteArray());
}

void RepliesTest::repliesWithoutContentHaveNoBody_data() {
    QTest::addColumn<int>("status");
    QTest::newRow("204") << 204;
    QTest::newRow("304") << 304;
}

void RepliesTest::repliesWithoutContentHaveNoBody() {
    QFETCH(int, status);
    const std::string scenario =
        R"({"endpoints": {"/api/display": {"status": )" + std::to_string(status) + "}}}";
    const Answer answer = answered(scenario, get("/api/display"));
    QCOMPARE(answer.reply.status, status);
    QVERIFY(answer.reply.body.empty());
}

void RepliesTest::garbageIsNotJson() {
    const Answer answer =
        answered(R"({"endpoints": {"/api/host/me": {"fault": "garbage"}}})", get("/api/host/me"));
    QCOMPARE(answer.reply.status, 200);
    QVERIFY(!answer.reply.body.empty());
    QVERIFY(!json::accept(answer.reply.body));
}

void RepliesTest::theScenariosPlacementIsSent() {
    const std::string scenario = R"({"weekStatus": "unfilled", "forceHide": true,
        "agreementText": "Sign.", "creatives": [{"slotId": "right", "assetUrl": "/assets/x.png",
        "brandUrl": "https://example.org/", "tagline": ""}]})";
    const json expected = json::parse(R"([{"slotId": "right",
        "assetUrl": "http://127.0.0.1:99/assets/x.png", "brandUrl": "https://example.org/",
        "tagline": ""}])");
    for (const Incoming& request : {get("/api/display"), asHost("GET", "/api/host/me")}) {
        const json reply = object(answered(scenario, request));
        QVERIFY(reply["weekStatus"] == "unfilled");
        QVERIFY(reply["forceHide"] == true);
        QVERIFY(reply["creatives"] == expected);
    }
    QVERIFY(object(answered(scenario, asHost("GET", "/api/host/me")))["agreementText"] == "Sign.");
}

void RepliesTest::aNewScenarioKeepsTheHostsFigures() {
    Responder made = responder();
    QCOMPARE(made.answer(asHost("POST", "/api/host/agree", "{}"), monday).reply.status, 200);
    made.setScenario(std::get<Scenario>(parseScenario(R"({"liveHosts": 7})")));
    const json reply = object(made.answer(asHost("GET", "/api/host/me"), monday));
    QVERIFY(reply["agreed"] == true);
    QVERIFY(reply["liveHostCount"] == 7);
}

void RepliesTest::anUnchangedReplyIsA304_data() {
    QTest::addColumn<QByteArray>("ifNoneMatch"); // TAG stands for the ETag
    QTest::addColumn<int>("status");
    QTest::newRow("no condition") << QByteArray() << 200;
    QTest::newRow("the tag") << QByteArray("TAG") << 304;
    QTest::newRow("weak twice") << QByteArray("W/TAG") << 200;
    QTest::newRow("among others") << QByteArray("\"a\",  W/\"b\" ,TAG") << 304;
    QTest::newRow("anything") << QByteArray("*") << 304;
    QTest::newRow("another") << QByteArray("\"0123456789abcdef\"") << 200;
    QTest::newRow("others") << QByteArray("\"a\",\"b\",") << 200;
    QTest::newRow("no tag") << QByteArray("TAG2") << 200;
    QTest::newRow("blanks") << QByteArray(" , ,") << 200;
    QTest::newRow("anything among others") << QByteArray("\"a\", *") << 200;
}

void RepliesTest::anUnchangedReplyIsA304() {
    QFETCH(QByteArray, ifNoneMatch);
    QFETCH(int, status);
    for (const char* const method : {"GET", "HEAD"}) {
        for (const char* const path : {"/api/display", "/api/host/me"}) {
            Incoming request = asHost(method, path);
            const Answer whole = answered("{}", request);
            const QByteArray tag = header(whole, "ETag");
            QVERIFY(tag.size() > 10 && tag.startsWith("W/\"") && tag.endsWith('"'));
            QCOMPARE(header(whole, "Cache-Control"), "private, no-cache");

            request.ifNoneMatch = QByteArray(ifNoneMatch).replace("TAG", tag).toStdString();
            Incoming strong = request;
            strong.ifNoneMatch = tag.sliced(2).toStdString();
            const Answer compared = answered("{}", strong);
            QCOMPARE(compared.reply.status, 304); // weak comparison
            const Answer answer = answered("{}", request);
            QCOMPARE(answer.reply.status, status);
            QCOMPARE(header(answer, "ETag"), tag);
            QCOMPARE(answer.reply.body, status == 304 ? std::string() : whole.reply.body);
            QCOMPARE(header(answer, "Content-Length"),
                     status == 304 ? QByteArray::number(qulonglong(whole.reply.body.size()))
                                   : QByteArray());
        }
    }
}

void RepliesTest::aChangedReplyIsSentWhole() {
    Incoming request = get("/api/display");
    request.ifNoneMatch = header(answered("{}", request), "ETag").toStdString();
    const Answer answer = answered(R"({"forceHide": true})", request);
    QCOMPARE(answer.reply.status, 200);
    QVERIFY(object(answer)["forceHide"] == true);
    QVERIFY(header(answer, "ETag").toStdString() != request.ifNoneMatch);
}

void RepliesTest::aScenariosETagIsUsed() {
    const char* const scenario =
        R"({"endpoints": {"/api/display": {"headers": {"etag": "\"week 12\""}}}})";
    Incoming request = get("/api/display");
    const Answer whole = answered(scenario, request);
    QCOMPARE(header(whole, "etag"), "\"week 12\"");
    QCOMPARE(header(whole, "ETag"), QByteArray());
    request.ifNoneMatch = "\"week 12\"";
    QCOMPARE(answered(scenario, request).reply.status, 304);
}

void RepliesTest::otherRepliesHaveNoETag_data() {
    QTest::addColumn<QByteArray>("scenario");
    QTest::addColumn<QByteArray>("method");
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<bool>("isHost");
    const auto rule = [](const QByteArray& keys) {
        return R"({"endpoints": {"/api/host/me": {)" + keys + "}}}";
    };
    const QByteArray me("/api/host/me");
    QTest::newRow("heartbeat") << QByteArray("{}") << QByteArray("POST")
                               << QByteArray("/api/host/heartbeat") << true;
    QTest::newRow("unknown host") << QByteArray("{}") << QByteArray("GET") << me << false;
    QTest::newRow("failing") << rule(R"("status": 503)") << QByteArray("GET") << me << true;
    QTest::newRow("cut") << rule(R"("fault": "cut")") << QByteArray("GET") << me << true;
    QTest::newRow("garbage") << rule(R"("fault": "garbage")") << QByteArray("GET") << me << true;
    QTest::newRow("picture") << QByteArray("{}") << QByteArray("GET")
                             << QByteArray("/assets/quiet-bicycle.png") << true;
}

void RepliesTest::otherRepliesHaveNoETag() {
    QFETCH(QByteArray, scenario);
    QFETCH(QByteArray, method);
    QFETCH(QByteArray, path);
    QFETCH(bool, isHost);
    Incoming request = asHost(method.toStdString(), path.toStdString(), goodBeat);
    if (!isHost) {
        request.authorization.reset();
    }
    request.ifNoneMatch = "*";
    const Answer answer = answered(scenario.toStdString(), request);
    QVERIFY(answer.reply.status != 304);
    QVERIFY(!answer.reply.body.empty());
    QCOMPARE(header(answer, "ETag"), QByteArray());
}

BRIMLET_TEST(RepliesTest, brimlet::NoApplication)
#include "tst_replies.moc"
