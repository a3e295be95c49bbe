#include "tests/app/waylandscreen.h"
#include "tests/support/testprogram.h"
#include "tests/support/wayland/compositor.h"
#include "tests/support/wayland/panel.h"

#include <QElapsedTimer>
#include <QFile>

#include <csignal>
#include <optional>

using namespace brimlet;
using namespace brimlet::WaylandScreen;

namespace {

/// The processor time that the process has used so far, in clock ticks; -1 when there is none.
qint64 processorTime(qint64 process) {
    QFile file(QStringLiteral("/proc/%1/stat").arg(process));
    if (!file.open(QIODevice::ReadOnly)) {
        return -1;
    }
    // Behind the program's name, which may contain spaces.
    const QByteArray stat = file.readAll();
    const QByteArrayList fields = stat.mid(stat.lastIndexOf(')') + 2).split(' ');
    return fields.value(11).toLongLong() + fields.value(12).toLongLong();
}

/// Whether the process comes to use no processor time for a second.
bool rests(qint64 process) {
    qint64 time = -1;
    QElapsedTimer sinceUse;
    return QTest::qWaitFor(
        [&] {
            if (const qint64 now = processorTime(process); now < 0 || now != time) {
                time = now;
                sinceUse.start();
            }
            return sinceUse.hasExpired(1000);
        },
        kPatience);
}

} // namespace

/// A compositor that crashes and starts again.
class TestWaylandRestart final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theProgramLivesOnAndTheCapsulesReturn() {
        if (!desktop::canTakePictures()) {
            QSKIP("this compositor gives no pictures of its screen");
        }
        const PlacementProcess service;
        service.setScenario({{QStringLiteral("creatives"), referenceCreatives()}});
        Program program(service);
        const qint64 process = program->pid();
        std::optional<desktop::Panel> panel(std::in_place, 60, kBackground,
                                            desktop::Panel::Space::Shared);
        QTRY_VERIFY_WITH_TIMEOUT(looksLikeTheReference(scale()), kPatience);
        for (int i = 0; i < 2; ++i) {
            panel.reset();
            QVERIFY(desktop::crashCompositor());
            QVERIFY(rests(process));
            QCOMPARE(program->pid(), process);
            QVERIFY(desktop::startCompositor());
            panel.emplace(60, kBackground, desktop::Panel::Space::Shared);
            QTRY_VERIFY_WITH_TIMEOUT(looksLikeTheReference(scale()), kPatience);
            QCOMPARE(program->pid(), process);
        }
        QCOMPARE(program->endBySignal(SIGTERM), 0);
        QCOMPARE(program.protocolErrors(), QByteArrayList());
    }

    // Although every other start is unpaused.
    void aPauseGoesOn() {
        const PlacementProcess service;
        Program program(service);
        QCOMPARE(program->ask("pause").value(QStringLiteral("ok")).toBool(), true);
        QVERIFY(desktop::crashCompositor());
        QVERIFY(rests(program->pid()));
        QVERIFY(desktop::startCompositor());
        QVERIFY(program->state().value(QStringLiteral("isPaused")).toBool());
        QCOMPARE(program->endBySignal(SIGTERM), 0);
    }
};

BRIMLET_TEST(TestWaylandRestart, QCoreApplication)
#include "tst_waylandrestart.moc"
