#include "tests/robustness/watchedprogram.h"

#include "tests/support/emulated.h"
#include "tests/support/memoryuse.h"
#include "tests/support/pngbytes.h"
#include "tests/support/sessionfolders.h"

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QRegularExpression>
#include <QTest>

namespace brimlet {
namespace {

constexpr qint64 kMebibyte = qint64{1024} * 1024;
/// The most memory above the recorded use at the peak, and afterwards. Files in memory count:
/// OpenSSL 3.5 maps 8 MiB when it is used first, and OpenSSL 3.0 two less.
constexpr qint64 kPeak = 80 * kMebibyte;
constexpr qint64 kAfterwards = 10 * kMebibyte;
/// Connections kept for the next requests, and one for a request under way.
constexpr qsizetype kConnections = 5;

/// A part of the first line of every request to the API.
const char* const kApi = "/api/";
const QStringList kEndpoints{QStringLiteral("/api/display"), QStringLiteral("/api/host/heartbeat"),
                             QStringLiteral("/api/host/me"), QStringLiteral("/api/host/agree")};

/// Every possible text of the status line.
const QRegularExpression& statusTexts() {
    static const QRegularExpression texts(QRegularExpression::anchoredPattern(QStringLiteral(
        "Loading the live placement…|Paused 24h\\. You may drop out of this week's split\\.|"
        "Notched MacBooks only\\.|Could not load the live placement\\. Will retry\\.|"
        "Heartbeat failed\\. Will retry\\.|Server rejected the host token\\.|"
        "Ads are on\\. Move Brimlet to Applications to qualify for payouts\\.|"
        "No live placement right now\\.|"
        "Ads on\\. Add your approved host token to qualify for payouts\\.|"
        "Ads on\\. Checking payout eligibility…|"
        "Drag Brimlet into Applications\\. Live time only counts from there\\.|"
        "Sign the host agreement\\. Pay is an estimate, not a guarantee\\.|"
        "Ads (on|off)\\. This week ~€-?[0-9]+\\.[0-9][0-9] estimate\\.")));
    return texts;
}

QJsonObject machineAt(const QString& root) {
    return {
        {QStringLiteral("infoDictionary"), QJsonObject{{QStringLiteral("BrimletAPIURL"), root}}},
        {QStringLiteral("speed"), WatchedProgram::kSpeed}};
}

} // namespace

WatchedProgram::WatchedProgram()
    : m_program(machineAt(m_service.root())) {
    behave();
    askAll();
}

void WatchedProgram::moveTo(const QString& root) {
    m_program.edit(machineAt(root));
}

QByteArray WatchedProgram::token() {
    return "canary-Zk3wq9Xb";
}

QString WatchedProgram::goodStatus() {
    return QStringLiteral("Ads on. This week ~€12.34 estimate.");
}

QString WatchedProgram::otherStatus() {
    return QStringLiteral("Ads on. This week ~€99.00 estimate.");
}

QByteArray WatchedProgram::goodBody() const {
    return bodyWith(QStringLiteral("Quiet Bicycle"), 1234);
}

QByteArray WatchedProgram::otherBody() const {
    return bodyWith(QStringLiteral("Somebody Else"), 9900);
}

QByteArray WatchedProgram::bodyWith(const QString& brand, int cents) const {
    const auto creative = [&](const QString& slot) {
        return QJsonObject{
            {QStringLiteral("slotId"), slot},
            {QStringLiteral("brandName"), brand},
            {QStringLiteral("tagline"), QStringLiteral("Home")},
            {QStringLiteral("assetUrl"), QString(m_service.root() + QStringLiteral("/") + slot)},
            {QStringLiteral("brandUrl"), QStringLiteral("https://brand.test/")}};
    };
    const QJsonObject body{
        {QStringLiteral("weekStatus"), QStringLiteral("live")},
        {QStringLiteral("forceHide"), false},
        {QStringLiteral("agreed"), true},
        {QStringLiteral("fromApplications"), true},
        {QStringLiteral("estimatedCents"), cents},
        {QStringLiteral("agreementText"), QStringLiteral("Be kind.")},
        {QStringLiteral("creatives"),
         QJsonArray{creative(QStringLiteral("left")), creative(QStringLiteral("right"))}}};
    return QJsonDocument(body).toJson(QJsonDocument::Compact);
}

void WatchedProgram::behave() {
    follow(everywhere({faults::reply(200, goodBody())}));
    moveTo(m_service.root());
}

QJsonObject WatchedProgram::everywhere(const QJsonArray& steps) {
    const QJsonArray picture{
        faults::reply(200, pngOf(QColor(Qt::darkGreen)), "Content-Type: image/png\r\n")};
    QJsonObject answers{{QStringLiteral("/left"), picture}, {QStringLiteral("/right"), picture}};
    for (const QString& endpoint : kEndpoints) {
        answers[endpoint] = steps;
    }
    return {{QStringLiteral("answers"), answers}};
}

void WatchedProgram::follow(const QJsonObject& script) {
    m_service.follow(script);
    m_requestsBefore = m_service.received().count(kApi);
}

void WatchedProgram::askAll() {
    (void)m_program.ask("save-token " + token());
}

bool WatchedProgram::reaches(const QString& status) {
    const int kPatience = 20'000 * slowness(); // milliseconds
    QString said;
    const bool isSaid = QTest::qWaitFor(
        [&] {
            said = m_program.statusLine();
            return said == status;
        },
        kPatience);
    if (!isSaid) {
        qInfo("it says \"%s\"", qUtf8Printable(said));
    }
    return isSaid;
}

qsizetype WatchedProgram::requests() const {
    return m_service.received().count(kApi) - m_requestsBefore;
}

QString WatchedProgram::content() {
    const QJsonObject state = m_program.state();
    const QJsonObject content{
        {QStringLiteral("assignment"), state.value(QStringLiteral("assignment"))},
        {QStringLiteral("panel"), state.value(QStringLiteral("panel"))}};
    return QString::fromUtf8(QJsonDocument(content).toJson(QJsonDocument::Compact));
}

WatchedProgram::Use WatchedProgram::use() const {
    Use use;
    use.memory = memoryInUse(m_program.pid());
    use.threads = threadCount(m_program.pid());
    const QDir folder(QStringLiteral("/proc/%1/fd").arg(m_program.pid()));
    for (const QFileInfo& descriptor :
         folder.entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
        // Empty when it was closed since the folder was listed.
        if (const QString target = descriptor.symLinkTarget(); !target.isEmpty()) {
            use.descriptors << target.section(u'/', -1);
        }
    }
    return use;
}

QStringList WatchedProgram::windows() const {
    QStringList titles;
    for (const ClientWindow& window : m_x.windowsOf(m_program.pid())) {
        if (window.isViewable) {
            titles << window.title;
        }
    }
    titles.sort();
    return titles;
}

void WatchedProgram::recordUse() {
    m_before = use();
    m_windows = windows();
    forgetPeakMemory();
}

void WatchedProgram::forgetPeakMemory() {
    (void)forgetPeak(m_program.pid());
}

qsizetype WatchedProgram::connections() const {
    return use().descriptors.filter(QStringLiteral("socket:")).size() -
           m_before.descriptors.filter(QStringLiteral("socket:")).size();
}

QString WatchedProgram::complaint() {
    const QJsonObject state = m_program.state();
    if (state.isEmpty()) {
        return QStringLiteral("it does not answer");
    }
    const QString status = state.value(QStringLiteral("statusLine")).toString();
    if (!statusTexts().match(status).hasMatch()) {
        return QStringLiteral("it says \"%1\"").arg(status);
    }
    if (const QStringList now = windows(); now != m_windows) {
        return QStringLiteral("its windows are ") + now.join(u", ");
    }
    if (const QByteArray printed = m_program.complaints(); !printed.isEmpty()) {
        return QStringLiteral("it printed ") + QString::fromUtf8(printed);
    }
    const Use now = use();
    if (now.threads != m_before.threads) {
        return QStringLiteral("it has %1 threads, not %2").arg(now.threads).arg(m_before.threads);
    }
    QStringList sockets;
    QStringList others;
    const QSet<QString> known(m_before.descriptors.cbegin(), m_before.descriptors.cend());
    for (const QString& descriptor : now.descriptors) {
        if (!known.contains(descriptor)) {
            (descriptor.startsWith(u"socket:") ? sockets : others) << descriptor;
        }
    }
    if (!others.isEmpty() || now.descriptors.size() > m_before.descriptors.size() + kConnections) {
        return QStringLiteral("it holds %1 descriptors after %2, besides: %3")
            .arg(now.descriptors.size())
            .arg(m_before.descriptors.size())
            .arg((others + sockets).join(u", "));
    }
    if (!isMemoryDistorted()) {
        if (now.memory > m_before.memory + kAfterwards) {
            return QStringLiteral("%1 KiB more memory than before")
                .arg((now.memory - m_before.memory) / 1024);
        }
        if (memoryPeak(m_program.pid()) > m_before.memory + kPeak) {
            return QStringLiteral("%1 KiB more memory than before at the worst moment")
                .arg((memoryPeak(m_program.pid()) - m_before.memory) / 1024);
        }
    }
    return leak();
}

QString WatchedProgram::leak() const {
    if (m_otherServer.received().contains(token())) {
        return QStringLiteral("the other server received the token");
    }
    QByteArrayList lines = m_service.received().split('\n');
    lines.removeIf(
        [](const QByteArray& line) { return line.startsWith("Authorization: Bearer "); });
    if (lines.join().contains(token())) {
        return QStringLiteral("the token went out besides its header");
    }
    if (const QStringList files = filesHolding(QString::fromLatin1(token())); !files.isEmpty()) {
        return QStringLiteral("the token is in ") + files.join(u", ");
    }
    for (const char* file : {"cmdline", "environ"}) {
        QFile facts(
            QStringLiteral("/proc/%1/%2").arg(m_program.pid()).arg(QLatin1StringView(file)));
        if (facts.open(QIODevice::ReadOnly) && facts.readAll().contains(token())) {
            return QStringLiteral("the token is in its ") + QLatin1StringView(file);
        }
    }
    return {};
}

} // namespace brimlet
