#include "tests/support/emulated.h"
#include "tests/support/fakelogind.h"
#include "tests/support/processes.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();

} // namespace

/// The whole program on a machine that is suspended.
class TestSuspend final : public QObject {
    Q_OBJECT

    /// The visible slots in the last heartbeat, as JSON; empty without one.
    [[nodiscard]] static QByteArray reported(const PlacementProcess& service) {
        QByteArray last;
        for (const auto& request : service.requests()) {
            const QJsonObject object = request.toObject();
            if (object.value(QStringLiteral("path")) == QStringLiteral("/api/host/heartbeat")) {
                const QByteArray body = object.value(QStringLiteral("body")).toString().toUtf8();
                const QJsonValue visible = QJsonDocument::fromJson(body)[u"slotsVisible"];
                last = QJsonDocument(visible.toArray()).toJson(QJsonDocument::Compact);
            }
        }
        return last;
    }

private Q_SLOTS:
    void theHeartbeatOfASuspendArrivesBeforeTheProgramStops() {
        FakeLogind logind;
        QVERIFY(logind.isRegistered());
        const PlacementProcess service;
        SimulatorProcess program({{QStringLiteral("infoDictionary"),
                                   QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}},
                                 {{QStringLiteral("DBUS_SYSTEM_BUS_ADDRESS"),
                                   qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS")}});
        (void)program.ask("save-token demo-host-token");
        const QByteArray both = R"(["left","right"])";
        QTRY_COMPARE_WITH_TIMEOUT(reported(service), both, kPatience);
        for (int i = 0; i < 3; ++i) {
            QTRY_VERIFY_WITH_TIMEOUT(logind.isInhibited(), kPatience);
            logind.prepareForSleep(true);
            QVERIFY(logind.areReleasedWithin(kPatience));
            program.freeze();
            QCOMPARE(reported(service), QByteArray("[]"));
            program.thaw();
            logind.prepareForSleep(false);
            QTRY_COMPARE_WITH_TIMEOUT(reported(service), both, kPatience);
        }
    }
};

BRIMLET_TEST(TestSuspend, QCoreApplication)
#include "tst_suspend.moc"
