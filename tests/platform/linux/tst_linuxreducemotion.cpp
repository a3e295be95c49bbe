#include "platform/linux/linuxreducemotion.h"
#include "tests/platform/linux/busservice.h"

#include <QDBusMetaType>
#include <QDBusVariant>
#include <QRegularExpression>

using namespace brimlet;

using Settings = QMap<QString, QVariantMap>;
Q_DECLARE_METATYPE(Settings)

namespace {

const QString portalName = QStringLiteral("org.freedesktop.portal.Desktop");
const QString portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const QString appearance = QStringLiteral("org.freedesktop.appearance");
const QString gnome = QStringLiteral("org.gnome.desktop.interface");
const QString reducedMotion = QStringLiteral("reduced-motion");
const QString enableAnimations = QStringLiteral("enable-animations");

} // namespace

class FakePortal final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    Settings settings;
    int questions = 0;

    void change(const QString& group, const QString& key, const QVariant& value) {
        settings[group][key] = value;
        Q_EMIT SettingChanged(group, key, QDBusVariant(value));
    }

public Q_SLOTS:
    Settings ReadAll(const QStringList& groups) {
        ++questions;
        Settings answer;
        for (const QString& group : groups) {
            if (settings.contains(group)) {
                answer[group] = settings[group];
            }
        }
        return answer;
    }

Q_SIGNALS:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);
};

class LinuxReduceMotionTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase() { qDBusRegisterMetaType<Settings>(); }

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
        QVERIFY(service.isThere());
        LinuxReduceMotion motion;
        int changes = 0;
        motion.observeChanges([&changes] { ++changes; });
        QVERIFY(!motion.isOn());
        QTRY_COMPARE(portal.questions, 1);
        // Known once a later word of the portal has come through.
        portal.change(appearance, reducedMotion, isOn ? 0U : 1U);
        portal.change(gnome, enableAnimations, true);
        QTRY_COMPARE(changes, isOn ? 2 : 1);
        QCOMPARE(motion.isOn(), !isOn);
    }

    void aChangeIsToldWhenItMakesADifference() {
        FakePortal portal;
        const BusService service(portalName, portalPath, portal);
        LinuxReduceMotion motion;
        QList<bool> told;
        motion.observeChanges([&] { told << motion.isOn(); });
        settle(QDBusConnection::sessionBus());
        portal.change(gnome, enableAnimations, false);
        portal.change(gnome, enableAnimations, false);
        portal.change(appearance, reducedMotion, 1U);
        portal.change(gnome, enableAnimations, true);
        portal.change(appearance, reducedMotion, 0U);
        QTRY_COMPARE(told, (QList<bool>{true, false}));
    }

    void aPortalThatComesLaterIsAsked() {
        LinuxReduceMotion motion;
        FakePortal portal;
        portal.settings = {{gnome, {{enableAnimations, false}}}};
        settle(QDBusConnection::sessionBus());
        const BusService service(portalName, portalPath, portal);
        QTRY_VERIFY(motion.isOn());
    }
};

QTEST_GUILESS_MAIN(LinuxReduceMotionTest)
#include "tst_linuxreducemotion.moc"
