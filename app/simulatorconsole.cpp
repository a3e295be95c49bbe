#include "app/simulatorconsole.h"

#include "app/brimletapp.h"
#include "overlay/notchpill.h"
#include "overlay/overlaycontroller.h"
#include "platform/starttask.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <array>
#include <cerrno>
#include <cstdio>

#include <unistd.h>

namespace brimlet {
namespace {

QJsonValue describe(const std::optional<SlotCreative>& creative) {
    if (!creative) {
        return QJsonValue::Null;
    }
    const auto text = [](const std::optional<Url>& url) {
        return url ? QJsonValue(url->absoluteString()) : QJsonValue(QJsonValue::Null);
    };
    return QJsonObject{{QStringLiteral("brandName"), creative->brandName},
                       {QStringLiteral("tagline"), creative->tagline},
                       {QStringLiteral("assetURL"), text(creative->assetURL)},
                       {QStringLiteral("brandURL"), text(creative->brandURL)}};
}

QJsonValue describePanel() {
    const OverlayPanel* const panel = OverlayController::shared().panel();
    if (panel == nullptr) {
        return QJsonValue::Null;
    }
    QJsonValue frame = QJsonValue::Null;
    if (const auto& rect = panel->frame()) {
        frame = QJsonArray{rect->x, rect->y, rect->width, rect->height};
    }
    return QJsonObject{{QStringLiteral("shown"), panel->isShown()},
                       {QStringLiteral("frame"), frame},
                       {QStringLiteral("left"), describe(panel->runtime().left())},
                       {QStringLiteral("right"), describe(panel->runtime().right())}};
}

/// The visible pills, from left to right.
QJsonArray describePills() {
    QJsonArray pills;
    for (const QWidget* const window : QApplication::topLevelWidgets()) {
        for (const NotchPill* const pill : window->findChildren<NotchPill*>()) {
            if (pill->isVisible()) {
                pills.append(
                    QJsonObject{{QStringLiteral("line"), pill->line().line()},
                                {QStringLiteral("showingTagline"), pill->line().showingTagline()},
                                {QStringLiteral("offsetOnScreen"), pill->line().offsetOnScreen()},
                                {QStringLiteral("hasImage"), pill->mark().image().has_value()}});
            }
        }
    }
    return pills;
}

QJsonObject describe(const Assignment& assignment) {
    return {{QStringLiteral("weekStatus"), assignment.weekStatus},
            {QStringLiteral("estimatedCents"), qint64{assignment.estimatedCents}},
            {QStringLiteral("pendingStipendCents"), qint64{assignment.pendingStipendCents}},
            {QStringLiteral("liveHostCount"), qint64{assignment.liveHostCount}},
            {QStringLiteral("liveDaysThisWeek"), qint64{assignment.liveDaysThisWeek}},
            {QStringLiteral("liveBucketsToday"), qint64{assignment.liveBucketsToday}},
            {QStringLiteral("liveBucketsNeeded"), qint64{assignment.liveBucketsNeeded}},
            {QStringLiteral("forceHide"), assignment.forceHide},
            {QStringLiteral("agreed"), assignment.agreed},
            {QStringLiteral("fromApplications"), assignment.fromApplications},
            {QStringLiteral("agreementText"), assignment.agreementText},
            {QStringLiteral("left"), describe(assignment.left)},
            {QStringLiteral("right"), describe(assignment.right)}};
}

/// Returns false where a picture cannot be written.
bool savePictures(const QDir& folder) {
    bool isSaved = true;
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        if (window->isVisible()) {
            const QString name = QString::fromLatin1(window->metaObject()->className());
            isSaved = window->grab().save(
                          folder.filePath(name.section(u':', -1) + QStringLiteral(".png"))) &&
                      isSaved;
        }
    }
    return isSaved;
}

} // namespace

SimulatorConsole::SimulatorConsole(BrimletApp& app, const CachesFolder& cachesFolder,
                                   const ReduceMotion& reduceMotion)
    : m_app(app)
    , m_cachesFolder(cachesFolder)
    , m_reduceMotion(reduceMotion)
    , m_notifier(STDIN_FILENO, QSocketNotifier::Read) {
    connect(&m_notifier, &QSocketNotifier::activated, this, &SimulatorConsole::readInput);
}

void SimulatorConsole::readInput() {
    std::array<char, 4096> buffer{};
    const auto count = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) {
        return; // the notifier calls again
    }
    if (count <= 0) {
        m_notifier.setEnabled(false);
        return;
    }
    m_pending.append(buffer.data(), count);
    for (qsizetype end = m_pending.indexOf('\n'); end >= 0; end = m_pending.indexOf('\n')) {
        const QByteArray line = m_pending.left(end);
        m_pending.remove(0, end + 1);
        execute(line);
    }
}

void SimulatorConsole::execute(const QByteArray& line) {
    const auto& store = HostStore::shared();
    constexpr QByteArrayView kSaveToken("save-token ");
    constexpr QByteArrayView kPictures("pictures ");
    if (line == "state") {
        answer(state());
        return;
    }
    if (line.startsWith(kSaveToken)) {
        store->saveToken(QString::fromUtf8(line.mid(kSaveToken.size())));
    } else if (line == "pause") {
        store->pause24h();
    } else if (line == "agree") {
        startTask(store->agree());
    } else if (line == "open") {
        m_app.menuBarExtra().open();
    } else if (line == "quit") {
        QCoreApplication::quit();
    } else if (line.startsWith(kPictures)) {
        if (!savePictures(QDir(QFile::decodeName(line.mid(kPictures.size()))))) {
            answer(R"({"error":"the pictures cannot be written"})");
            return;
        }
    } else {
        answer(
            R"({"error":"commands: state, save-token TOKEN, agree, pause, open, pictures FOLDER, quit"})");
        return;
    }
    answer(R"({"ok":true})");
}

void SimulatorConsole::answer(const QByteArray& json) const {
    std::fputs((json + '\n').constData(), stdout);
    std::fflush(stdout);
}

QByteArray SimulatorConsole::state() const {
    const auto& store = HostStore::shared();
    const QJsonObject state{
        {QStringLiteral("statusLine"), store->statusLine()},
        {QStringLiteral("hasToken"), !store->token().isEmpty()},
        {QStringLiteral("hasNotch"), store->hasNotch()},
        {QStringLiteral("isPaused"), store->isPaused()},
        {QStringLiteral("screenAsleep"), store->screenAsleep()},
        {QStringLiteral("adsVisible"), store->adsVisible()},
        {QStringLiteral("assignment"), describe(store->assignment())},
        {QStringLiteral("panel"), describePanel()},
        {QStringLiteral("pills"), describePills()},
        {QStringLiteral("isMenuOpen"), m_app.menuBarExtra().isOpen()},
        {QStringLiteral("cachesFolder"), m_cachesFolder.path().value_or(QString())},
        {QStringLiteral("reduceMotion"), m_reduceMotion.isOn()}};
    return QJsonDocument(state).toJson(QJsonDocument::Compact);
}

} // namespace brimlet
