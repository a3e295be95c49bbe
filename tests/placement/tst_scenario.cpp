#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tools/placement/scenario.h"
#include "tools/placement/scenariofile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest/QtTest>

using namespace brimlet::placement;

namespace {

Scenario parsed(std::string_view text) {
    ScenarioResult result = parseScenario(text);
    if (const auto* error = std::get_if<std::string>(&result)) {
        qWarning("not a scenario: %s", error->c_str());
        return {};
    }
    return std::get<Scenario>(std::move(result));
}

} // namespace

class ScenarioTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".*"))); }
    void anEmptyObjectChangesNothing();
    void everyTopLevelKeyIsRead();
    void everyKeyOfAnEndpointIsRead();
    void aBodyMayBeAnyJson_data();
    void aBodyMayBeAnyJson();
    void theDocumentedExampleIsAScenario();
    void mistakesAreNamed_data();
    void mistakesAreNamed();
    void aFileIsReloadedOnlyWhenItChanged();
    void aBrokenFileIsReportedOnce();
    void aMissingFileIsReported();
};

void ScenarioTest::anEmptyObjectChangesNothing() {
    const Scenario scenario = parsed("{}");
    QCOMPARE(scenario.tokens, std::vector<std::string>{"demo-host-token"});
    QCOMPARE(scenario.weekStatus, std::string("live"));
    QVERIFY(!scenario.forceHide);
    QVERIFY(!scenario.creatives);
    QVERIFY(scenario.endpoints.empty());
    QVERIFY(!scenario.agreementText.empty());
}

void ScenarioTest::everyTopLevelKeyIsRead() {
    const Scenario scenario = parsed(R"({
        "tokens": ["one", "two"], "agreementText": "Sign here.", "poolCents": 5, "liveHosts": 0,
        "creatives": [{"slotId": "left", "tagline": "t"}], "weekStatus": "unfilled",
        "forceHide": true, "endpoints": {}})");
    QCOMPARE(scenario.tokens, (std::vector<std::string>{"one", "two"}));
    QCOMPARE(scenario.agreementText, std::string("Sign here."));
    QCOMPARE(scenario.terms.poolCents, 5);
    QCOMPARE(scenario.terms.simulatedHosts, 0);
    QVERIFY(scenario.creatives.has_value());
    QCOMPARE(scenario.creatives->size(), std::size_t{1});
    QCOMPARE(scenario.weekStatus, std::string("unfilled"));
    QVERIFY(scenario.forceHide);
}

void ScenarioTest::everyKeyOfAnEndpointIsRead() {
    const Scenario scenario = parsed(R"({"endpoints": {
        "/api/host/me": {"merge": {"agreed": null}, "remove": ["agreementText"], "status": 201,
                         "delayMs": 40, "headers": {"X-One": "1"}, "fault": "cut"},
        "/assets/quiet-bicycle.png": {"text": "no picture", "fault": "hang"},
        "/brands/quiet-bicycle": {"fault": "close"},
        "/api/display": {"fault": "garbage"}}})");
    QCOMPARE(scenario.endpoints.size(), std::size_t{4});
    const EndpointRule& rule = scenario.endpoints.at("/api/host/me");
    QVERIFY(rule.merge.at("agreed").is_null());
    QCOMPARE(rule.remove, std::vector<std::string>{"agreementText"});
    QCOMPARE(rule.status.value_or(0), 201);
    QCOMPARE(rule.delay, std::chrono::milliseconds{40});
    QCOMPARE(rule.headers.size(), std::size_t{1});
    QCOMPARE(rule.headers.front().first, std::string("X-One"));
    QCOMPARE(rule.fault, Fault::Cut);
    QVERIFY(!rule.body);
    const EndpointRule& picture = scenario.endpoints.at("/assets/quiet-bicycle.png");
    QCOMPARE(picture.body.value_or(""), std::string("no picture"));
    QCOMPARE(picture.fault, Fault::Hang);
    QCOMPARE(scenario.endpoints.at("/brands/quiet-bicycle").fault, Fault::Close);
    QCOMPARE(scenario.endpoints.at("/api/display").fault, Fault::Garbage);
}

void ScenarioTest::aBodyMayBeAnyJson_data() {
    QTest::addColumn<QByteArray>("value");
    for (const char* value : {"null", "3", "\"x\"", "[]", "{}", "{\"a\":[1,null]}"}) {
        QTest::newRow(value) << QByteArray(value);
    }
}

void ScenarioTest::aBodyMayBeAnyJson() {
    QFETCH(QByteArray, value);
    const QByteArray text = R"({"endpoints": {"/api/display": {"body": )" + value + "}}}";
    const Scenario scenario = parsed(text.toStdString());
    QCOMPARE(scenario.endpoints.at("/api/display").body.value_or("absent"), value.toStdString());
}

void ScenarioTest::theDocumentedExampleIsAScenario() {
    QFile file(brimlet::sourcePath(u"docs/placement.md"));
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray page = file.readAll();
    const QByteArray fence = "```json\n";
    const auto begin = page.indexOf(fence) + fence.size();
    const QByteArray example = page.mid(begin, page.indexOf("```\n", begin) - begin);
    QVERIFY(example.startsWith('{'));
    const Scenario scenario = parsed(example.toStdString());
    QCOMPARE(scenario.endpoints.size(), std::size_t{4});
    QCOMPARE(scenario.tokens.size(), std::size_t{2});
}

void ScenarioTest::mistakesAreNamed_data() {
    QTest::addColumn<QByteArray>("text");
    QTest::addColumn<QByteArray>("error");
    const auto row = [](const char* name, const char* text, const char* error) {
        QTest::newRow(name) << QByteArray(text) << QByteArray(error);
    };
    row("empty file", "", "not valid JSON at line 1, column 1");
    row("cut short", "{\n  \"tokens\": [", "not valid JSON at line 2, column 14");
    row("trailing comma", "{\"forceHide\": true,\n}", "not valid JSON at line 2, column 1");
    row("not an object", "[]", "must be a JSON object");
    row("unknown key", R"({"weekstatus": "live"})", R"(unknown key "weekstatus")");
    row("flag", R"({"forceHide": 1})", R"(key "forceHide" must be true or false)");
    row("text", R"({"weekStatus": 1})", R"(key "weekStatus" must be a string)");
    row("tokens", R"({"tokens": ["a", 1]})", R"(key "tokens" must be an array of strings)");
    row("empty token", R"({"tokens": [""]})", R"(key "tokens" must not hold an empty token)");
    row("negative pool", R"({"poolCents": -1})",
        R"(key "poolCents" must be a whole number from 0 to 1000000000000)");
    row("vast pool", R"({"poolCents": 18446744073709551615})",
        R"(key "poolCents" must be a whole number from 0 to 1000000000000)");
    row("fraction of a host", R"({"liveHosts": 1.5})",
        R"(key "liveHosts" must be a whole number from 0 to 1000000)");
    row("creatives", R"({"creatives": {}})", R"(key "creatives" must be an array of objects)");
    row("creative", R"({"creatives": [{}, 1]})", "creative 2: must be a JSON object");
    row("key of a creative", R"({"creatives": [{"assetURL": ""}]})",
        R"(creative 1: unknown key "assetURL")");
    row("text of a creative", R"({"creatives": [{"copy": 1}]})",
        R"(creative 1: key "copy" must be a string)");
    row("path", R"({"endpoints": {"/api/displays": {}}})",
        R"(endpoint "/api/displays" is not one of the service's paths)");
    row("rule", R"({"endpoints": {"/api/display": 1}})",
        R"(endpoint "/api/display": must be a JSON object)");
    row("key of a rule", R"({"endpoints": {"/api/display": {"stauts": 1}}})",
        R"(endpoint "/api/display": unknown key "stauts")");
    row("status", R"({"endpoints": {"/api/display": {"status": 199}}})",
        R"(endpoint "/api/display": key "status" must be a whole number from 200 to 599)");
    row("delay", R"({"endpoints": {"/api/display": {"delayMs": -1}}})",
        R"(endpoint "/api/display": key "delayMs" must be a whole number from 0 to 600000)");
    row("fault", R"({"endpoints": {"/api/display": {"fault": "none"}}})",
        R"(endpoint "/api/display": key "fault" must be "hang", "close", "cut" or "garbage")");
    row("text that is none", R"({"endpoints": {"/api/display": {"text": {}}}})",
        R"(endpoint "/api/display": key "text" must be a string)");
    row("body twice", R"({"endpoints": {"/api/display": {"text": "", "body": 1}}})",
        R"(endpoint "/api/display": give "body" or "text", not both)");
    row("merge into a body", R"({"endpoints": {"/api/display": {"merge": {}, "body": 1}}})",
        R"(endpoint "/api/display": "merge" and "remove" have no effect beside "body" or "text")");
    row("merge into a picture", R"({"endpoints": {"/assets/a.png": {"remove": ["a"]}}})",
        R"(endpoint "/assets/a.png": "merge" and "remove" need a reply that is a JSON object)");
    row("garbage with a status", R"({"endpoints": {"/api/display": {"fault": "garbage",
        "status": 500}}})",
        R"(endpoint "/api/display": the fault "garbage" sets status and body itself)");
    row("header of the framing", R"({"endpoints": {"/api/display": {"headers":
        {"content-LENGTH": "1"}}}})",
        R"(endpoint "/api/display": header "content-LENGTH" is set by the service itself)");
    row("header name", R"({"endpoints": {"/api/display": {"headers": {"X Y": "1"}}}})",
        R"(endpoint "/api/display": header name "X Y" is not valid)");
    row("header value", R"({"endpoints": {"/api/display": {"headers": {"X": "a\r\nB: c"}}}})",
        R"(endpoint "/api/display": header "X" must be a string without control characters)");
}

void ScenarioTest::mistakesAreNamed() {
    QFETCH(QByteArray, text);
    QFETCH(QByteArray, error);
    const ScenarioResult result = parseScenario(text.toStdString());
    QVERIFY(std::holds_alternative<std::string>(result));
    QCOMPARE(QByteArray::fromStdString(std::get<std::string>(result)), error);
}

void ScenarioTest::aFileIsReloadedOnlyWhenItChanged() {
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("scenario.json")));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    file.write(R"({"poolCents": 1})");
    ScenarioFile scenarioFile(file.fileName().toStdString());
    QVERIFY(scenarioFile.reload().scenario.has_value());
    const ScenarioFile::Update nothing = scenarioFile.reload();
    QVERIFY(!nothing.scenario);
    QVERIFY(nothing.complaint.empty());
    // The same size, and probably the same modification time.
    file.seek(0);
    file.write(R"({"poolCents": 2})");
    const ScenarioFile::Update edited = scenarioFile.reload();
    QVERIFY(edited.scenario.has_value());
    QCOMPARE(edited.scenario->terms.poolCents, 2);
}

void ScenarioTest::aBrokenFileIsReportedOnce() {
    const QTemporaryDir folder;
    QFile file(folder.filePath(QStringLiteral("scenario.json")));
    QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    file.write("{]");
    ScenarioFile scenarioFile(file.fileName().toStdString());
    const ScenarioFile::Update spoilt = scenarioFile.reload();
    QVERIFY(!spoilt.scenario);
    QCOMPARE(spoilt.complaint,
             "scenario " + file.fileName().toStdString() + ": not valid JSON at line 1, column 2");
    QVERIFY(scenarioFile.reload().complaint.empty());
}

void ScenarioTest::aMissingFileIsReported() {
    const QTemporaryDir folder;
    const QString name = folder.filePath(QStringLiteral("scenario.json"));
    ScenarioFile scenarioFile(name.toStdString());
    QVERIFY(!scenarioFile.reload().complaint.empty());
    QVERIFY(scenarioFile.reload().complaint.empty());
    ScenarioFile ofAFolder(folder.path().toStdString());
    QVERIFY(!ofAFolder.reload().complaint.empty());
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("{}");
    file.close();
    QVERIFY(scenarioFile.reload().scenario.has_value());
}

BRIMLET_TEST(ScenarioTest, brimlet::NoApplication)
#include "tst_scenario.moc"
