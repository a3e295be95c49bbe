#include "tests/soak/faultyservice.h"

#include "tests/soak/programuse.h"
#include "tests/soak/progress.h"
#include "tests/support/failure.h"
#include "tests/support/faultserverprocess.h"
#include "tests/support/pngbytes.h"
#include "tests/support/sessionfolders.h"

#include <QFile>
#include <QJsonDocument>

#include <algorithm>

namespace brimlet {
namespace {

constexpr qint64 kSecond = 1'000; // milliseconds
/// Replies until no rare fault or burst of requests allocates memory for the first time.
constexpr int kWarmUp = 20'000;
constexpr int kWarmUpOfShortRun = 200;
/// Good replies until all earlier requests have ended.
constexpr int kGoodReplies = 100;
constexpr double kShareOfFaults = 0.5;

/// A text that occurs nowhere else.
const QByteArray kToken = "canary-Zk3wq9Xb";
const QString kNone = QStringLiteral("nowhere");
const QByteArray kTokenHeader = "Authorization: Bearer " + kToken + "\r\n";

/// The texts fit, since scrolling ones would keep a program at this speed busy.
QByteArray placement(const QString& root) {
    const auto creative = [&root](const QString& slot) {
        return QJsonObject{{QStringLiteral("slotId"), slot},
                           {QStringLiteral("brandName"), QStringLiteral("Quiet Bicycle")},
                           {QStringLiteral("tagline"), QStringLiteral("Home")},
                           {QStringLiteral("assetUrl"), QString(root + u'/' + slot)},
                           {QStringLiteral("brandUrl"), QStringLiteral("https://brand.test/")}};
    };
    const QJsonObject body{
        {QStringLiteral("weekStatus"), QStringLiteral("live")},
        {QStringLiteral("agreed"), true},
        {QStringLiteral("estimatedCents"), 1234},
        {QStringLiteral("agreementText"), QStringLiteral("Be kind.")},
        {QStringLiteral("creatives"),
         QJsonArray{creative(QStringLiteral("left")), creative(QStringLiteral("right"))}}};
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

/// A program, and a service that gives faulty replies on demand.
class FaultySoak final {
public:
    explicit FaultySoak(const FaultySettings& settings)
        : m_settings(settings)
        , m_program({{QStringLiteral("infoDictionary"),
                      QJsonObject{{QStringLiteral("BrimletAPIURL"), m_service.root()}}},
                     {QStringLiteral("speed"), settings.speed}})
        , m_use(m_program.pid()) {}

    void run(Report& report) {
        answer(false);
        askAll();
        await(kGoodReplies);
        answer(true);
        await(m_settings.isShort ? kWarmUpOfShortRun : kWarmUp);
        answer(false);
        await(kGoodReplies);
        m_use.sample();
        printProgress(QStringLiteral("warmed up: ") + m_use.description());

        const qint64 before = asked();
        const qint64 start = realTime();
        answer(true);
        await(m_settings.replies);
        const qint64 replies = asked() - before;
        const qint64 seconds = std::max((realTime() - start) / kSecond, qint64{1});
        answer(false);
        await(kGoodReplies);
        m_use.sample();

        report.begin(QStringLiteral("Faults in half of all replies, seed %1, %2 times as fast")
                         .arg(m_settings.seed)
                         .arg(m_settings.speed));
        report.expectAtLeast(QStringLiteral("replies asked for"), m_settings.replies, replies);
        report.add(QStringLiteral("a second"), replies / seconds);
        reportRequests(report);
        m_use.judge(report, m_settings.isShort);
        judgeOutput(report, m_program, QStringLiteral("Ads on. This week ~€12.34 estimate."));
        report.expect(QStringLiteral("where the token is besides its header"), kNone, leaks());
    }

private:
    void answer(bool isFaulty) {
        m_isFaulty = isFaulty;
        const QJsonArray api{faults::reply(200, placement(m_service.root()))};
        const QJsonArray image{
            faults::reply(200, pngOf(QColor(Qt::darkGreen)), "Content-Type: image/png\r\n")};
        QJsonObject answers{{QStringLiteral("/left"), image},
                            {QStringLiteral("/right"), image},
                            // A picture address that a fault has changed.
                            {QString(), QJsonArray{faults::reply(404, {})}}};
        for (const char* path :
             {"/api/display", "/api/host/me", "/api/host/heartbeat", "/api/host/agree"}) {
            answers.insert(QLatin1StringView(path), api);
        }
        m_service.follow({{QStringLiteral("answers"), answers},
                          {QStringLiteral("random"),
                           QJsonObject{{QStringLiteral("seed"), m_settings.seed},
                                       {QStringLiteral("share"), isFaulty ? kShareOfFaults : 0}}}});
    }

    /// Makes the program send the requests without a timer: display, heartbeat and signature.
    void askAll() {
        if (m_program.ask("save-token " + kToken).isEmpty() || m_program.ask("agree").isEmpty()) {
            throw Failure("the program does not answer");
        }
    }

    [[nodiscard]] qint64 asked() const { return m_service.received().count(" HTTP/1.1\r\n"); }

    /// Waits until the program has sent as many more requests.
    void await(qint64 replies) {
        constexpr int kPatience = 20;
        const qint64 first = asked();
        int idle = 0;
        for (qint64 seen = first, count = 0; seen < first + replies; seen = count) {
            sleepUntil(realTime() + (replies > kGoodReplies ? kSecond : kSecond / 10));
            count = asked();
            idle = count == seen ? idle + 1 : 0;
            if (idle == kPatience) {
                throw Failure("the program has stopped asking");
            }
            if (m_use.hasBegun()) {
                m_use.sample();
            }
            if (m_isFaulty) {
                askAll();
                reportProgress(count - first, replies);
            }
        }
    }

    void reportRequests(Report& report) const {
        const QByteArray received = m_service.received();
        const auto count = [&](const char* kind) {
            return received.count(kind + QByteArray(" HTTP/1.1\r\n"));
        };
        qint64 others = count("");
        for (const char* kind : {"GET /api/display", "GET /api/host/me", "POST /api/host/heartbeat",
                                 "POST /api/host/agree", "GET /left", "GET /right"}) {
            report.add(QString::fromLatin1(kind) + QStringLiteral(", warm-up included"),
                       count(kind));
            others -= count(kind);
        }
        report.add(QStringLiteral("pictures at addresses that a fault changed"), others);
    }

    /// Reports the progress every ten seconds.
    void reportProgress(qint64 seen, qint64 due) {
        constexpr qint64 kPause = 10 * kSecond;
        if (m_use.hasBegun() && realTime() >= m_reported + kPause) {
            m_reported = realTime();
            printProgress(
                QStringLiteral("%1 of %2 replies: %3").arg(seen).arg(due).arg(m_use.description()));
        }
    }

    /// The places where the token is, besides its header.
    [[nodiscard]] QString leaks() {
        QStringList places = filesHolding(QString::fromLatin1(kToken));
        // The service's log is outside these folders.
        if (m_service.received().replace(kTokenHeader, {}).contains(kToken)) {
            places << QStringLiteral("requests");
        }
        if (m_program.answers().contains(kToken) || m_program.complaints().contains(kToken)) {
            places << QStringLiteral("output");
        }
        for (const char* name : {"cmdline", "environ"}) {
            QFile file(QStringLiteral("/proc/%1/%2").arg(m_program.pid()).arg(QLatin1String(name)));
            if (file.open(QIODevice::ReadOnly) && file.readAll().contains(kToken)) {
                places << QLatin1String(name);
            }
        }
        return places.isEmpty() ? kNone : places.join(u", ");
    }

    FaultySettings m_settings;
    FaultServerProcess m_service;
    SimulatorProcess m_program;
    UseWatch m_use;
    bool m_isFaulty = false;
    qint64 m_reported = 0;
};

} // namespace

void soakInFaults(const FaultySettings& settings, Report& report) {
    FaultySoak(settings).run(report);
}

} // namespace brimlet
