#include "platform/linux/linuxreducemotion.h"
#include "tests/platform/linux/busservice.h"
#include "tests/platform/linux/writefile.h"
#include "tests/support/testprogram.h"

#include <QDBusMetaType>
#include <QDBusVariant>
#include <QRegularExpression>
#include <QTemporaryDir>

using namespace brimlet;

using Settings = QMap<QString, QVariantMap>;
Q_DECLARE_METATYPE(Settings)
using ChangedKeys = QMap<QString, QByteArrayList>;
Q_DECLARE_METATYPE(ChangedKeys)

namespace {

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString kde = QStringLiteral("org.kde.kdeglobals.KDE");
const QString factor = QStringLiteral("AnimationDurationFactor");
const QString reducedMotion = QStringLiteral("reduced-motion");
const QString enableAnimations = QStringLiteral("enable-animations");

} // namespace

class FakePortal final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    Settings settings;
    int reads = 0;

    void change(const QString& group, const QString& key, const QVariant& value) {
        settings[group][key] = value;
        Q_EMIT SettingChanged(group, key, QDBusVariant(value));
    }

public Q_SLOTS:
    Settings ReadAll(const QStringList& groups) {
        ++reads;
        Settings reply;
        for (const QString& group : groups) {
            if (settings.contains(group)) {
                reply[group] = settings[group];
            }
        }
        return reply;
    }

Q_SIGNALS:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);
};

/// Temporary folders for KDE's configuration files, the user's and the system's.
class KdeFiles final {
public:
    [[nodiscard]] QStringList folders() const {
        return {m_folder.filePath(QStringLiteral("user")),
                m_folder.filePath(QStringLiteral("system"))};
    }
    [[nodiscard]] bool write(const QString& folder, const QByteArray& content) {
        return writeFile(m_folder.filePath(folder + QStringLiteral("/kdeglobals")), content);
    }
    [[nodiscard]] bool setFactor(const QByteArray& value) {
        return write(QStringLiteral("user"), "[KDE]\nAnimationDurationFactor=" + value + '\n');
    }
    /// Signals that the files have changed, as KDE's configuration library does.
    static void announce(const QVariant& arguments) {
        const QString name = QStringLiteral("settings");
        auto message = QDBusMessage::createSignal(QStringLiteral("/kdeglobals"),
                                                  QStringLiteral("org.kde.kconfig.notify"),
                                                  QStringLiteral("ConfigChanged"));
        message << arguments;
        QDBusConnection connection =
            QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
        QVERIFY(connection.send(message));
        settle(connection);
        QDBusConnection::disconnectFromBus(name);
    }
    static void announce() {
        announce(QVariant::fromValue(ChangedKeys{{QStringLiteral("KDE"), {factor.toLatin1()}}}));
    }

private:
    QTemporaryDir m_folder;
};

class LinuxReduceMotionTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() {
        qDBusRegisterMetaType<Settings>();
        qDBusRegisterMetaType<QByteArrayList>();
        qDBusRegisterMetaType<ChangedKeys>();
    }

    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void theDesktopsSettingsDecide_data() {
        QTest::addColumn<Settings>("settings");
        QTest::addColumn<bool>("isOn");
        QTest::newRow("unknown") << Settings{} << false;
        QTest::newRow("animations wanted")
            << Settings{{gnome, {{enableAnimations, true}}}} << false;
        QTest::newRow("no animations") << Settings{{gnome, {{enableAnimations, false}}}} << true;
        QTest::newRow("no preference") << Settings{{appearance, {{reducedMotion, 0U}}}} << false;
        QTest::newRow("reduced") << Settings{{appearance, {{reducedMotion, 1U}}}} << true;
        QTest::newRow("a value of the future")
            << Settings{{appearance, {{reducedMotion, 2U}}}} << false;
        const auto stretched = [](const QVariant& value) {
            return Settings{{kde, {{factor, value}}}};
        };
        QTest::newRow("KDE, none") << stretched(QStringLiteral("0")) << true;
        QTest::newRow("KDE, none with a fraction") << stretched(QStringLiteral("0.0")) << true;
        QTest::newRow("KDE, none as a number") << stretched(0.0) << true;
        QTest::newRow("KDE, none as a whole number") << stretched(0) << true;
        QTest::newRow("KDE, below none") << stretched(QStringLiteral("-1")) << true;
        QTest::newRow("KDE, short") << stretched(QStringLiteral("0.5")) << false;
        QTest::newRow("KDE, usual") << stretched(QStringLiteral("1")) << false;
        QTest::newRow("KDE, long") << stretched(QStringLiteral("2.8284271247461903")) << false;
        QTest::newRow("KDE, empty") << stretched(QString()) << false;
        QTest::newRow("KDE, no number") << stretched(QStringLiteral("0,5")) << false;
        QTest::newRow("KDE against others") << Settings{{kde, {{factor, QStringLiteral("0")}}},
                                                        {gnome, {{enableAnimations, true}}},
                                                        {appearance, {{reducedMotion, 0U}}}}
                                            << true;
        QTest::newRow("either counts")
            << Settings{{appearance, {{reducedMotion, 1U}}}, {gnome, {{enableAnimations, true}}}}
            << true;
        QTest::newRow("others do not")
            << Settings{{appearance, {{enableAnimations, false}, {QStringLiteral("contrast"), 1U}}},
                        {gnome, {{reducedMotion, 1U}, {QStringLiteral("text-scaling"), 1.5}}}}
            << false;
    }

    void theDesktopsSettingsDecide() {
        QFETCH(const Settings, settings);
        QFETCH(const bool, isOn);
        FakePortal portal;
        portal.settings = settings;
        const BusService service(portalName, portalPath, portal);
        QVERIFY(service.isRegistered());
        LinuxReduceMotion motion;
        int changes = 0;
        motion.observeChanges([&changes] { ++changes; });
        QVERIFY(!motion.isOn());
        QTRY_COMPARE(portal.reads, 1);
        // The reply has been processed once later signals of the portal have arrived.
        portal.change(appearance, reducedMotion, isOn ? 0U : 1U);
        portal.change(gnome, enableAnimations, true);
        portal.change(kde, factor, QStringLiteral("1"));
        QTRY_COMPARE(changes, isOn ? 2 : 1);
        QCOMPARE(motion.isOn(), !isOn);
    }

    void onlyChangesOfTheResultAreReported() {
        FakePortal portal;
        const BusService service(portalName, portalPath, portal);
        LinuxReduceMotion motion;
        QList<bool> reported;
        motion.observeChanges([&] { reported << motion.isOn(); });
        settle(QDBusConnection::sessionBus());
        portal.change(gnome, enableAnimations, false);
        portal.change(gnome, enableAnimations, false);
        portal.change(appearance, reducedMotion, 1U);
        portal.change(gnome, enableAnimations, true);
        portal.change(appearance, reducedMotion, 0U);
        QTRY_COMPARE(reported, (QList<bool>{true, false}));
    }

    void changesOfKdesFactorAreReported() {
        FakePortal portal;
        const BusService service(portalName, portalPath, portal);
        LinuxReduceMotion motion;
        QList<bool> reported;
        motion.observeChanges([&] { reported << motion.isOn(); });
        settle(QDBusConnection::sessionBus());
        for (const char* const value : {"0.5", "0", "0", "1", "0"}) {
            portal.change(kde, factor, QString::fromLatin1(value));
        }
        QTRY_COMPARE(reported, (QList<bool>{true, false, true}));
    }

    void aPortalThatStartsLaterIsRead() {
        LinuxReduceMotion motion;
        FakePortal portal;
        portal.settings = {{gnome, {{enableAnimations, false}}}};
        settle(QDBusConnection::sessionBus());
        const BusService service(portalName, portalPath, portal);
        QTRY_VERIFY(motion.isOn());
    }

    void kdesFilesCountWithoutAPortal_data() {
        QTest::addColumn<QByteArray>("user");
        QTest::addColumn<QByteArray>("system");
        QTest::addColumn<bool>("isOn");
        const auto row = [](const char* name, const char* user, const char* system, bool isOn) {
            QTest::newRow(name) << QByteArray(user) << QByteArray(system) << isOn;
        };
        row("no files", "", "", false);
        row("none", "[KDE]\nAnimationDurationFactor=0\n", "", true);
        row("none, without a last line break", "[KDE]\nAnimationDurationFactor=0", "", true);
        row("none, among others",
            "[General]\nfont=Inter\n\n[KDE]\nLookAndFeelPackage=x\nAnimationDurationFactor=0\n"
            "SingleClick=false\n\n[WM]\nactiveFont=Inter\n",
            "", true);
        row("spaces", "[KDE] \r\n AnimationDurationFactor = 0.0 \r\n", "", true);
        row("half", "[KDE]\nAnimationDurationFactor=0.5\n", "", false);
        row("usual", "[KDE]\nAnimationDurationFactor=1\n", "", false);
        row("key missing", "[KDE]\nSingleClick=false\n", "", false);
        row("empty value", "[KDE]\nAnimationDurationFactor=\n", "", false);
        row("no number", "[KDE]\nAnimationDurationFactor=off\n", "", false);
        row("another group", "[KDE]\n[General]\nAnimationDurationFactor=0\n", "", false);
        row("a group inside", "[KDE][More]\nAnimationDurationFactor=0\n", "", false);
        row("before all groups", "AnimationDurationFactor=0\n[KDE]\n", "", false);
        row("commented out", "[KDE]\n#AnimationDurationFactor=0\n", "", false);
        row("another key", "[KDE]\nMyAnimationDurationFactor=0\n", "", false);
        row("the last one counts", "[KDE]\nAnimationDurationFactor=1\nAnimationDurationFactor=0\n",
            "", true);
        row("marked group", "[KDE][$i]\nAnimationDurationFactor=0\n", "", true);
        row("marked key", "[KDE]\nAnimationDurationFactor[$i]=0\n", "", true);
        row("the system's", "[KDE]\n", "[KDE]\nAnimationDurationFactor=0\n", true);
        row("the user's first", "[KDE]\nAnimationDurationFactor=1\n",
            "[KDE]\nAnimationDurationFactor=0\n", false);
        row("garbage", "\x01\xff[[[\n=\n]\n=0\n[KDE", "", false);
    }

    void kdesFilesCountWithoutAPortal() {
        QFETCH(const QByteArray, user);
        QFETCH(const QByteArray, system);
        QFETCH(const bool, isOn);
        KdeFiles files;
        QVERIFY(user.isEmpty() || files.write(QStringLiteral("user"), user));
        QVERIFY(system.isEmpty() || files.write(QStringLiteral("system"), system));
        const LinuxReduceMotion motion(files.folders());
        QCOMPARE(motion.isOn(), isOn);
    }

    void theUsersOwnFolderIsTheDefault() {
        QTemporaryDir folder;
        const QByteArray before = qgetenv("XDG_CONFIG_HOME");
        qputenv("XDG_CONFIG_HOME", folder.path().toLocal8Bit());
        QVERIFY(writeFile(folder.filePath(QStringLiteral("kdeglobals")),
                          "[KDE]\nAnimationDurationFactor=0\n"));
        const LinuxReduceMotion motion;
        qputenv("XDG_CONFIG_HOME", before);
        QVERIFY(motion.isOn());
    }

    void theFilesAreReadAgainWhenTheyChange() {
        KdeFiles files;
        LinuxReduceMotion motion(files.folders());
        QList<bool> reported;
        motion.observeChanges([&] { reported << motion.isOn(); });
        settle(QDBusConnection::sessionBus());
        QVERIFY(files.setFactor("0"));
        KdeFiles::announce();
        QTRY_COMPARE(reported, (QList<bool>{true}));
        QVERIFY(files.setFactor("0.5"));
        KdeFiles::announce();
        QTRY_COMPARE(reported, (QList<bool>{true, false}));
        // The signal's arguments do not matter.
        QVERIFY(files.setFactor("0"));
        KdeFiles::announce(QStringLiteral("KDE"));
        QTRY_COMPARE(reported, (QList<bool>{true, false, true}));
        QVERIFY(files.write(QStringLiteral("user"), "[KDE]\n"));
        KdeFiles::announce();
        QTRY_COMPARE(reported, (QList<bool>{true, false, true, false}));
    }

    void thePortalsAnswerReplacesTheFiles_data() {
        QTest::addColumn<QByteArray>("inFile");
        QTest::addColumn<Settings>("settings");
        QTest::addColumn<bool>("isOnFromFiles");
        QTest::addColumn<bool>("isOn");
        const auto stretched = [](const char* value) {
            return Settings{{kde, {{factor, QString::fromLatin1(value)}}}};
        };
        QTest::newRow("both none") << QByteArray("0") << stretched("0") << true << true;
        QTest::newRow("none in the file only")
            << QByteArray("0") << stretched("1") << true << false;
        QTest::newRow("none in the portal only")
            << QByteArray("1") << stretched("0") << false << true;
        QTest::newRow("neither") << QByteArray("1") << stretched("1") << false << false;
        QTest::newRow("not in the portal") << QByteArray("0") << Settings{} << true << true;
        QTest::newRow("another desktop's portal")
            << QByteArray("0") << Settings{{gnome, {{enableAnimations, true}}}} << true << true;
    }

    void thePortalsAnswerReplacesTheFiles() {
        QFETCH(const QByteArray, inFile);
        QFETCH(const Settings, settings);
        QFETCH(const bool, isOnFromFiles);
        QFETCH(const bool, isOn);
        KdeFiles files;
        QVERIFY(files.setFactor(inFile));
        FakePortal portal;
        portal.settings = settings;
        const BusService service(portalName, portalPath, portal);
        LinuxReduceMotion motion(files.folders());
        QList<bool> reported;
        motion.observeChanges([&] { reported << motion.isOn(); });
        QCOMPARE(motion.isOn(), isOnFromFiles);
        QTRY_COMPARE(portal.reads, 1);
        // The reply has been processed once a later signal has arrived, which causes a change in
        // any case.
        portal.change(kde, factor, QString::fromLatin1(isOn ? "1" : "0"));
        QTRY_COMPARE(reported,
                     isOn == isOnFromFiles ? (QList<bool>{!isOn}) : (QList<bool>{isOn, !isOn}));
    }

    void aChangeThatThePortalDoesNotReportIsReadFromTheFiles() {
        KdeFiles files;
        QVERIFY(files.setFactor("1"));
        FakePortal portal;
        portal.settings = {{kde, {{factor, QStringLiteral("1")}}}};
        const BusService service(portalName, portalPath, portal);
        LinuxReduceMotion motion(files.folders());
        settle(QDBusConnection::sessionBus());
        QTRY_COMPARE(portal.reads, 1);
        QVERIFY(files.setFactor("0"));
        KdeFiles::announce();
        QTRY_VERIFY(motion.isOn());
    }
};

BRIMLET_TEST(LinuxReduceMotionTest, QCoreApplication)
#include "tst_linuxreducemotion.moc"
