#include "host/heartbeatbody.h"
#include "host/json.h"
#include "tests/support/testprogram.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTest>

using namespace brimlet;

class TestHeartbeatBody final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void itHasExactlyFiveKeys_data() {
        QTest::addColumn<bool>("paused");
        QTest::addColumn<bool>("visible");
        QTest::addColumn<bool>("inApplications");
        for (int bits = 0; bits < 8; ++bits) {
            QTest::addRow("%d%d%d", (bits >> 2) & 1, (bits >> 1) & 1, bits & 1)
                << bool(bits & 4) << bool(bits & 2) << bool(bits & 1);
        }
    }
    void itHasExactlyFiveKeys() {
        QFETCH(bool, paused);
        QFETCH(bool, visible);
        QFETCH(bool, inApplications);
        QJsonArray slotNames;
        if (visible) {
            slotNames = {QStringLiteral("left"), QStringLiteral("right")};
        }
        const QJsonObject expected{{QStringLiteral("paused"), paused},
                                   {QStringLiteral("slotsVisible"), slotNames},
                                   {QStringLiteral("wakeMinutes"), 0},
                                   {QStringLiteral("appVersion"), QStringLiteral("0.1.0")},
                                   {QStringLiteral("fromApplications"), inApplications}};
        const QByteArray body = heartbeatBody(paused, visible, inApplications);
        QCOMPARE(QJsonDocument::fromJson(body).object(), expected);
        const auto json = parseJson(body);
        QVERIFY(json && json->at("wakeMinutes").is_number_integer());
    }
};

BRIMLET_TEST(TestHeartbeatBody, brimlet::NoApplication)
#include "tst_heartbeatbody.moc"
