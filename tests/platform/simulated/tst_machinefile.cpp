#include "platform/simulated/memorysecretstore.h"
#include "platform/simulated/simulatedports.h"
#include "tests/support/fakes.h"
#include "tests/support/testprogram.h"

#include <QSaveFile>
#include <QSignalSpy>
#include <QTemporaryDir>
#include <QTest>

using namespace brimlet;

namespace {

/// A machine file in a temporary folder, and all simulated ports, with fakes as the real ones.
struct MachineFixture final {
    explicit MachineFixture(const QByteArray& text) {
        write(text);
        loadError = file.load();
        realCachesFolder.folder = QStringLiteral("/real");
        screens.observeChanges([this] { ++screenChanges; });
        workspace.observeScreensDidSleep([this] { events << QStringLiteral("sleep"); });
        workspace.observeScreensDidWake([this] { events << QStringLiteral("wake"); });
        reduceMotion.observeChanges([this] { ++motionChanges; });
    }

    /// Replaces the file with a new one renamed into place, as many editors do.
    void write(const QByteArray& text) const {
        QSaveFile out(path());
        QVERIFY(out.open(QIODevice::WriteOnly));
        out.write(text);
        QVERIFY(out.commit());
    }
    /// Rewrites the existing file.
    void overwrite(const QByteArray& text) const {
        QFile out(path());
        QVERIFY(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
        out.write(text);
    }
    [[nodiscard]] QString path() const { return folder.filePath(QStringLiteral("machine.json")); }

    QTemporaryDir folder;
    MachineFile file{path()};
    QString loadError;
    FakeScreens realScreens;
    FakeWorkspace realWorkspace;
    FakeBundle realBundle;
    FakeCachesFolder realCachesFolder;
    FakeReduceMotion realReduceMotion;
    SimulatedScreens screens{file, realScreens};
    SimulatedWorkspace workspace{file, realWorkspace};
    SimulatedBundle bundle{file, realBundle};
    SimulatedCachesFolder cachesFolder{file, realCachesFolder};
    SimulatedReduceMotion reduceMotion{file, realReduceMotion};
    int screenChanges = 0;
    int motionChanges = 0;
    QStringList events;
};

} // namespace

class TestMachineFile final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aMissingFileIsAnError() {
        MachineFile file(QStringLiteral("/nonexistent/machine.json"));
        QCOMPARE(file.load(),
                 QStringLiteral("/nonexistent/machine.json: No such file or directory"));
    }

    void aMalformedFileIsAnErrorThatNamesTheFile() {
        const MachineFixture f("{");
        QVERIFY(f.loadError.startsWith(f.path() + QStringLiteral(": line 1")));
    }

    void absentKeysAreAnsweredByTheRealMachine() {
        MachineFixture f("{}");
        QCOMPARE(f.loadError, QString());
        Screen screen;
        screen.number = 3;
        f.realScreens.set({screen}, {3});
        QCOMPARE(f.screenChanges, 1);
        QCOMPARE(f.screens.list().size(), std::size_t{1});
        QVERIFY(f.screens.isBuiltIn(3));
        QCOMPARE(f.bundle.path(), f.realBundle.path());
        f.realBundle.info[QStringLiteral("key")] = 7;
        QCOMPARE(f.bundle.infoDictionaryValue(QStringLiteral("key")).toInt(), 7);
        QCOMPARE(f.cachesFolder.path().value_or(QString()), QStringLiteral("/real"));
        f.realWorkspace.screensDidSleep();
        f.realWorkspace.screensDidWake();
        QCOMPARE(f.events, (QStringList{QStringLiteral("sleep"), QStringLiteral("wake")}));
        f.realReduceMotion.set(true);
        QVERIFY(f.reduceMotion.isOn());
        QCOMPARE(f.motionChanges, 1);
    }

    void givenKeysHideTheRealMachine() {
        MachineFixture f(R"({"displays":[], "bundlePath":"/b", "infoDictionary":{},
                             "cachesFolder":"/c", "reduceMotion":false, "screensAsleep":false})");
        QCOMPARE(f.loadError, QString());
        f.realScreens.set({Screen()}, {0});
        QVERIFY(f.screens.list().empty());
        QVERIFY(!f.screens.isBuiltIn(0));
        QCOMPARE(f.screenChanges, 0);
        QCOMPARE(f.bundle.path(), QStringLiteral("/b"));
        f.realBundle.info[QStringLiteral("key")] = 7;
        QVERIFY(!f.bundle.infoDictionaryValue(QStringLiteral("key")).isValid());
        QCOMPARE(f.cachesFolder.path().value_or(QString()), QStringLiteral("/c"));
        f.realWorkspace.screensDidSleep();
        QVERIFY(f.events.isEmpty());
        f.realReduceMotion.set(true);
        QVERIFY(!f.reduceMotion.isOn());
        QCOMPARE(f.motionChanges, 0);
    }

    void theBuiltInDisplayIsMovedToTheRealTop_data() {
        QTest::addColumn<QByteArray>("displays");
        QTest::addColumn<Rect>("real");
        QTest::addColumn<QList<Rect>>("expected");
        const QByteArray notched =
            R"({"builtIn": true, "frame": [0, 0, 1512, 982],
                "auxiliaryTopLeftArea": [0, 950, 664, 32],
                "auxiliaryTopRightArea": [848, 950, 664, 32]})";
        QTest::newRow("no display") << QByteArray() << Rect{0, 0, 1920, 1080} << QList<Rect>{};
        QTest::newRow("as large") << notched << Rect{0, 0, 1512, 982}
                                  << QList<Rect>{{0, 0, 1512, 982}};
        QTest::newRow("smaller") << notched << Rect{0, 0, 1920, 1080}
                                 << QList<Rect>{{204, 98, 1512, 982}};
        QTest::newRow("larger") << notched << Rect{0, 0, 1440, 900}
                                << QList<Rect>{{-36, -82, 1512, 982}};
        QTest::newRow("of odd width")
            << notched << Rect{0, 0, 1511, 982} << QList<Rect>{{-1, 0, 1512, 982}};
        QTest::newRow("beside another")
            << QByteArray(R"({"frame": [0, 0, 2560, 1440]},
                             {"builtIn": true, "frame": [-1512, 10, 1512, 982]})")
            << Rect{0, 0, 1512, 982} << QList<Rect>{{1512, -10, 2560, 1440}, {0, 0, 1512, 982}};
        QTest::newRow("none built in")
            << QByteArray(R"({"frame": [0, 0, 100, 50]}, {"frame": [100, 0, 100, 50]})")
            << Rect{0, 0, 200, 100} << QList<Rect>{{50, 50, 100, 50}, {150, 50, 100, 50}};
    }

    void theBuiltInDisplayIsMovedToTheRealTop() {
        QFETCH(const QByteArray, displays);
        QFETCH(const Rect, real);
        QFETCH(const QList<Rect>, expected);
        MachineFixture f("{\"displays\": [" + displays + "]}");
        QCOMPARE(f.loadError, QString());
        SimulatedScreens screens(f.file, f.realScreens, MachinePlace::AtRealTop);
        int changes = 0;
        screens.observeChanges([&] { ++changes; });
        Screen screen;
        screen.frame = real;
        f.realScreens.set({screen}, {});
        QCOMPARE(changes, 1);
        const auto list = screens.list();
        QCOMPARE(qsizetype(list.size()), expected.size());
        for (qsizetype i = 0; i < expected.size(); ++i) {
            QCOMPARE(list[std::size_t(i)].frame, expected[i]);
        }
        if (!list.empty() && list.front().auxiliaryTopLeftArea) {
            const Rect& frame = list.front().frame;
            QCOMPARE(*list.front().auxiliaryTopLeftArea, (Rect{frame.x, frame.y + 950, 664, 32}));
            QCOMPARE(*list.front().auxiliaryTopRightArea,
                     (Rect{frame.x + 848, frame.y + 950, 664, 32}));
        }
    }

    void withoutARealScreenTheDisplaysAreAsDescribed() {
        const MachineFixture f(R"({"displays": [{"frame": [0, 0, 100, 50]}]})");
        FakeScreens none;
        const SimulatedScreens screens(f.file, none, MachinePlace::AtRealTop);
        QCOMPARE(screens.list().front().frame, (Rect{0, 0, 100, 50}));
    }

    void aDisplayWithoutANumberIsDisplayZero() {
        const MachineFixture f(R"({"displays":[{"frame":[0,0,1,1]},
                                  {"builtIn":true,"frame":[0,0,2,2]}]})");
        QVERIFY(f.screens.isBuiltIn(0));
        QVERIFY(!f.screens.isBuiltIn(1));
        QVERIFY(!f.screens.list().at(1).number);
    }

    void anEditTakesEffectAtOnce_data() {
        QTest::addColumn<bool>("isInPlace");
        QTest::newRow("renamed into place") << false;
        QTest::newRow("written in place") << true;
    }
    void anEditTakesEffectAtOnce() {
        QFETCH(bool, isInPlace);
        MachineFixture f("{}");
        const auto edit = [&](const QByteArray& text) {
            if (isInPlace) {
                f.overwrite(text);
            } else {
                f.write(text);
            }
        };
        edit(R"({"screensAsleep":true})");
        QTRY_COMPARE(f.events, QStringList{QStringLiteral("sleep")});
        edit(R"({"screensAsleep":false})");
        QTRY_COMPARE(f.events.size(), 2);
        QCOMPARE(f.events.last(), QStringLiteral("wake"));
        edit(R"({"screensAsleep":false,"reduceMotion":true})");
        QTRY_COMPARE(f.motionChanges, 1);
        QVERIFY(f.reduceMotion.isOn());
        QCOMPARE(f.screenChanges, 0);
        edit(R"({"screensAsleep":false,"reduceMotion":true,"displays":[{"frame":[0,0,1,1]}]})");
        QTRY_COMPARE(f.screenChanges, 1);
        QCOMPARE(f.screens.list().size(), std::size_t{1});
        QCOMPARE(f.events.size(), 2);
        QCOMPARE(f.motionChanges, 1);
    }

    void aBadEditIsReportedAndKeepsTheOldState_data() {
        QTest::addColumn<QByteArray>("text");
        QTest::addColumn<QString>("error");
        QTest::newRow("wrong type") << QByteArray(R"({"bundlePath":3})")
                                    << QStringLiteral("\"bundlePath\" must be a string");
        QTest::newRow("no JSON") << QByteArray("not a machine")
                                 << QStringLiteral("line 1: illegal value");
    }
    void aBadEditIsReportedAndKeepsTheOldState() {
        QFETCH(QByteArray, text);
        QFETCH(QString, error);
        MachineFixture f(R"({"bundlePath":"/old"})");
        const QSignalSpy changes(&f.file, &MachineFile::changed);
        const QSignalSpy errors(&f.file, &MachineFile::failed);
        f.write(text);
        QTRY_COMPARE(errors.count(), 1);
        QCOMPARE(errors.at(0).at(0).toString(),
                 QStringLiteral("%1: %2; the machine stays as it was").arg(f.path(), error));
        QCOMPARE(f.bundle.path(), QStringLiteral("/old"));
        QCOMPARE(changes.count(), 0);
        f.write(R"({"bundlePath":"/new"})");
        QTRY_COMPARE(f.bundle.path(), QStringLiteral("/new"));
        QCOMPARE(errors.count(), 1);
    }

    void aRemovedFileIsReportedAndKeepsTheOldStateUntilItIsBack() {
        MachineFixture f(R"({"bundlePath":"/old"})");
        const QSignalSpy errors(&f.file, &MachineFile::failed);
        QVERIFY(QFile::remove(f.path()));
        QTRY_COMPARE(errors.count(), 1);
        QCOMPARE(f.bundle.path(), QStringLiteral("/old"));
        f.write(R"({"bundlePath":"/back"})");
        QTRY_COMPARE(f.bundle.path(), QStringLiteral("/back"));
    }

    void screensAsleepAtTheStartAreReported() {
        const MachineFixture f(R"({"screensAsleep":true})");
        QVERIFY(f.events.isEmpty());
        QTRY_COMPARE(f.events, QStringList{QStringLiteral("sleep")});
    }

    void anEditWithoutEffectChangesNothing() {
        MachineFixture f(R"({"bundlePath":"/a"})");
        const QSignalSpy changes(&f.file, &MachineFile::changed);
        f.write(R"(  {"bundlePath":"/a"}  )");
        f.write(R"({"bundlePath":"/b"})");
        QTRY_COMPARE(changes.count(), 1);
        QCOMPARE(f.bundle.path(), QStringLiteral("/b"));
    }
};

BRIMLET_TEST(TestMachineFile, QCoreApplication)
#include "tst_machinefile.moc"
