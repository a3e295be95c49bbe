#include "tests/service/prism.h"
#include "tests/support/processes.h"
#include "tests/support/screenreader.h"
#include "tests/support/testprogram.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QTest>

#include <optional>

using namespace brimlet;

namespace {

constexpr int kPatience = 60'000; // milliseconds
/// A poll every 50 milliseconds; a request may take a second, which a busy machine needs.
constexpr int kSpeed = 60;
constexpr int kHostReplies = 160;
constexpr int kDisplayReplies = 40;
/// How many replies there are for each time that the panel's texts are read.
constexpr int kRepliesARead = 20;

/// Without these the mock would send every field every time. The value of a field that may be
/// anything is as often "live" as not.
const QByteArray kInventionRules = R"(
x-json-schema-faker:
  alwaysFakeOptionals: false
  optionalsProbability: 0.7
  fixedProbabilities: false
)";

QString text(const char* utf8) {
    return QString::fromUtf8(utf8);
}

QJsonValue creativeOfSlot(const QJsonObject& reply, const char* slot) {
    for (const QJsonValue& each : reply.value(text("creatives")).toArray()) {
        const QJsonObject creative = each.toObject();
        if (creative.value(text("slotId")) != text(slot)) {
            continue;
        }
        const auto address = [&creative](const char* key) {
            const QJsonValue value = creative.value(text(key));
            return value.isString() ? value : QJsonValue(QJsonValue::Null);
        };
        return QJsonObject{
            {text("brandName"), creative.value(text("brandName")).toString()},
            {text("tagline"),
             creative.value(text("copy")).toString(creative.value(text("tagline")).toString())},
            {text("assetURL"), address("assetUrl")},
            {text("brandURL"), address("brandUrl")}};
    }
    return QJsonValue::Null;
}

/// What every reply changes of the assignment before.
QJsonObject placed(QJsonObject before, const QJsonObject& reply) {
    before[text("weekStatus")] = reply.value(text("weekStatus")).toString(text("unfilled"));
    before[text("forceHide")] = reply.value(text("forceHide")).toBool(false);
    before[text("left")] = creativeOfSlot(reply, "left");
    before[text("right")] = creativeOfSlot(reply, "right");
    return before;
}

QJsonObject afterHostReply(QJsonObject before, const QJsonObject& reply) {
    before = placed(before, reply);
    for (const char* const key : {"estimatedCents", "pendingStipendCents", "liveHostCount",
                                  "liveDaysThisWeek", "liveBucketsToday"}) {
        before[text(key)] = reply.value(text(key)).toInteger(0);
    }
    before[text("liveBucketsNeeded")] = reply.value(text("liveBucketsNeeded")).toInteger(4);
    before[text("agreed")] = reply.value(text("agreed")).toBool(false);
    before[text("fromApplications")] = reply.value(text("fromApplications")).toBool(true);
    before[text("agreementText")] =
        reply.value(text("agreementText")).toString(before.value(text("agreementText")).toString());
    return before;
}

bool showsAds(const QJsonObject& week) {
    return week.value(text("weekStatus")) == text("live") &&
           !week.value(text("forceHide")).toBool();
}

QString euros(qint64 cents) {
    return text("€") + QString::asprintf("%.2f", static_cast<double>(cents) / 100);
}

QString hostsStatusLine(const QJsonObject& week) {
    if (!week.value(text("agreed")).toBool()) {
        return text("Sign the host agreement. Pay is an estimate, not a guarantee.");
    }
    return (showsAds(week) ? text("Ads on. This week ~") : text("Ads off. This week ~")) +
           euros(week.value(text("estimatedCents")).toInteger()) + text(" estimate.");
}

QString publicStatusLine(const QJsonObject& week) {
    return showsAds(week) ? text("Ads on. Add your approved host token to qualify for payouts.")
                          : text("No live placement right now.");
}

/// What the panel has to show of the week besides its constant texts; empty texts are not read.
QStringList panelTexts(const QJsonObject& week) {
    const auto number = [&week](const char* key) { return week.value(text(key)).toInteger(); };
    const auto counted = [&number](const char* key) { return QString::number(number(key)); };
    const qint64 cents = number("estimatedCents");
    QStringList texts{
        text("You'll earn ") +
            (cents % 100 == 0 ? text("€") + QString::number(cents / 100) : euros(cents)) +
            text(" this week"),
        text("Recorded %1/%2 live windows today · %3 live days this week")
            .arg(counted("liveBucketsToday"), counted("liveBucketsNeeded"),
                 counted("liveDaysThisWeek"))};
    if (number("liveHostCount") > 1) {
        texts << text("Split with %1 live hosts").arg(number("liveHostCount"));
    }
    if (number("pendingStipendCents") >= 1) {
        texts << text("Banked %1. Cash-out at €15 via Stripe or PayPal.")
                     .arg(euros(number("pendingStipendCents")));
    }
    if (!week.value(text("agreed")).toBool()) {
        texts << text("I agree · not a guarantee") << week.value(text("agreementText")).toString();
    }
    for (const char* const slot : {"left", "right"}) {
        if (const QJsonObject creative = week.value(text(slot)).toObject(); !creative.isEmpty()) {
            const QString brand = creative.value(text("brandName")).toString();
            texts << text(qstrcmp(slot, "left") == 0 ? "Left panel" : "Right panel")
                  << (brand.isEmpty() ? text("Brand") : brand);
        }
    }
    texts.removeAll(QString());
    return texts;
}

QStringList readTexts() {
    QStringList texts;
    for (const QJsonObject& element :
         ScreenReader::elements({text("window"), text("Brimlet panel")})) {
        texts << element.value(text("name")).toString();
    }
    return texts;
}

} // namespace

/// Replies that a mock service makes up from the schemas of docs/service/openapi.yaml, given to the
/// whole program.
class TestInventions final : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    std::optional<PrismProcess> m_mock;
    std::optional<PlacementProcess> m_service;
    std::optional<SimulatorProcess> m_program;
    QJsonObject m_week; ///< As the replies so far should have left it.

    [[nodiscard]] QJsonObject invented(const char* path, int seed) const {
        const QByteArray query = "?__dynamic=true&__seed=" + QByteArray::number(seed);
        return QJsonDocument::fromJson(m_mock->get(path + query)).object();
    }
    void serve(const QList<const char*>& paths, const QJsonObject& reply) const {
        QJsonObject endpoints;
        for (const char* const path : paths) {
            endpoints[text(path)] = QJsonObject{{text("body"), reply}};
        }
        m_service->setScenario({{text("endpoints"), endpoints}});
    }
    /// How what is shown differs from what it should be; empty if it does not.
    [[nodiscard]] QString difference(const QString& statusLine) {
        const QJsonObject state = m_program->state();
        const QJsonObject panel = state.value(text("panel")).toObject();
        const QJsonObject shown{{text("assignment"), state.value(text("assignment"))},
                                {text("statusLine"), state.value(text("statusLine"))},
                                {text("adsVisible"), state.value(text("adsVisible"))},
                                {text("shown"), panel.value(text("shown"))},
                                {text("left"), panel.value(text("left"))},
                                {text("right"), panel.value(text("right"))}};
        const QJsonObject expected{{text("assignment"), m_week},
                                   {text("statusLine"), statusLine},
                                   {text("adsVisible"), showsAds(m_week)},
                                   {text("shown"), showsAds(m_week)},
                                   {text("left"), m_week.value(text("left"))},
                                   {text("right"), m_week.value(text("right"))}};
        return shown == expected
                   ? QString()
                   : text("\nshown    %1\nexpected %2")
                         .arg(text(QJsonDocument(shown).toJson(QJsonDocument::Compact)),
                              text(QJsonDocument(expected).toJson(QJsonDocument::Compact)));
    }

private Q_SLOTS:
    void initTestCase() {
        QFile document(serviceDocument());
        QFile copy(m_folder.filePath(text("openapi.yaml")));
        QVERIFY(document.open(QIODevice::ReadOnly) && copy.open(QIODevice::WriteOnly) &&
                copy.write(document.readAll() + kInventionRules) > 0);
        copy.close();
        m_mock.emplace(QStringList{text("mock"), copy.fileName()});
        if (!m_mock->missing().isEmpty()) {
            QSKIP(qPrintable(m_mock->missing()));
        }
        QVERIFY(!m_mock->root().isEmpty());
        m_service.emplace();
        // Addresses are made up, too; none beyond this computer is asked for its picture.
        m_program.emplace(QJsonObject{{text("infoDictionary"),
                                       QJsonObject{{text("BrimletAPIURL"), m_service->root()}}},
                                      {text("secretStore"), text("memory")},
                                      {text("speed"), kSpeed}},
                          EnvironmentChanges{{text("https_proxy"), text("http://127.0.0.1:9")},
                                             {text("no_proxy"), {}}});
        QTRY_VERIFY_WITH_TIMEOUT(m_program->isPanelShown(), kPatience);
        (void)m_program->ask("open");
        m_week = m_program->state().value(text("assignment")).toObject();
    }

    void theDisplayIsShownAsDocumented() {
        qsizetype visible = 0;
        for (int seed = 1; seed <= kDisplayReplies; ++seed) {
            const QJsonObject reply = invented("/api/display", seed);
            m_week = placed(m_week, reply);
            visible += showsAds(m_week) ? 1 : 0;
            serve({"/api/display"}, reply);
            QTRY_COMPARE_WITH_TIMEOUT(difference(publicStatusLine(m_week)), QString(), kPatience);
        }
        QVERIFY(visible > 0 && visible < kDisplayReplies);
    }

    void aHostsReplyIsShownAsDocumented() {
        m_service->setScenario({});
        (void)m_program->ask("save-token demo-host-token");
        QTRY_VERIFY_WITH_TIMEOUT(
            m_service->requestLines().contains(text("POST /api/host/heartbeat")), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(m_program->statusLine().startsWith(text("Sign the host")),
                                 kPatience);
        m_week = m_program->state().value(text("assignment")).toObject();
        qsizetype signedOnes = 0;
        QSet<QString> kept;
        for (int seed = 1; seed <= kHostReplies; ++seed) {
            const QJsonObject reply = invented("/api/host/me", seed);
            m_week = afterHostReply(m_week, reply);
            signedOnes += m_week.value(text("agreed")).toBool() ? 1 : 0;
            for (const QString& key : reply.keys()) {
                kept << key;
            }
            // Heartbeats go on meanwhile, and their replies are shown, too.
            serve({"/api/host/me", "/api/host/heartbeat"}, reply);
            QTRY_COMPARE_WITH_TIMEOUT(difference(hostsStatusLine(m_week)), QString(), kPatience);
            if (seed % kRepliesARead == 0) {
                const QStringList texts = readTexts();
                QVERIFY2(texts.contains(hostsStatusLine(m_week)), qPrintable(texts.join(u'\n')));
                for (const QString& wanted : panelTexts(m_week)) {
                    QVERIFY2(texts.contains(wanted),
                             qPrintable(wanted + u'\n' + texts.join(u'\n')));
                }
            }
        }
        // The replies were worth the effort: both kinds, and every field at some time.
        QVERIFY(signedOnes > 0 && signedOnes < kHostReplies);
        QCOMPARE(kept.size(), 12);
        (void)m_program->ask("quit");
        QCOMPARE(m_program->exitCode(), 0);
        qInfo("%d replies were invented and shown as documented", kDisplayReplies + kHostReplies);
    }
};

BRIMLET_TEST(TestInventions, QCoreApplication)
#include "tst_inventions.moc"
