#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/screenreader.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

const int kPatience = 5'000 * slowness(); // tried every 50 ms, not counting what a try takes
const QString kPanel = QStringLiteral("Brimlet panel");

/// The panel's accessible elements as "role: name", from top to bottom.
QStringList elements() {
    QStringList lines;
    for (const QJsonObject& element : ScreenReader::elements({QStringLiteral("window"), kPanel})) {
        const QString name = element.value(QStringLiteral("name")).toString();
        if (!name.isEmpty()) {
            lines << element.value(QStringLiteral("role")).toString() + QStringLiteral(": ") + name;
        }
    }
    return lines;
}

bool press(const char* name) {
    return ScreenReader::does({QStringLiteral("press"), QString::fromUtf8(name)});
}

QString label(const char* text) {
    return QStringLiteral("label: ") + QString::fromUtf8(text);
}

} // namespace

/// The whole program used through the accessibility bus alone.
class TestMenuByScreenReader final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aHostOpensReadsTypesSignsPausesAndQuits() {
        const PlacementProcess service;
        service.setScenario({{QStringLiteral("agreementText"),
                              QStringLiteral("You show ads.\nWe share what they earn.")}});
        SimulatorProcess program({{QStringLiteral("infoDictionary"),
                                   QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}},
                                  {QStringLiteral("secretStore"), QStringLiteral("memory")}});
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        QCOMPARE(elements(), QStringList());

        // Opened by a second start.
        QCOMPARE(program.startAgain(), 0);
        const QStringList welcome{
            QStringLiteral("panel: Brimlet"),
            label("Brimlet"),
            label("Live"),
            label("€0"),
            label("You'll earn €0 this week"),
            label("Estimate, not a guarantee"),
            label("Ad status"),
            label("Quiet Bike"),
            label("Left panel"),
            label("Live"),
            label("Palindrome"),
            label("Right panel"),
            label("Live"),
            label("Ads on. Add your approved host token to qualify for payouts."),
            label("Recorded 0/4 live windows today · 0 live days this week"),
            QStringLiteral("button: I agree · not a guarantee"),
            QStringLiteral("password text: Host token"),
            QStringLiteral("button: Save token"),
            QStringLiteral("button: Pause ads 24h"),
            QStringLiteral("button: Quit")};
        QTRY_COMPARE_WITH_TIMEOUT(elements(), welcome, kPatience);

        // The token is sent, and the panel shows the host's own figures.
        QVERIFY(ScreenReader::does({QStringLiteral("type"), QStringLiteral("Host token"),
                                    QStringLiteral("demo-host-token")}));
        QVERIFY(press("Save token"));
        QTRY_VERIFY_WITH_TIMEOUT(
            service.requestLines().contains(QStringLiteral("POST /api/host/heartbeat")), kPatience);
        const qsizetype index =
            service.requestLines().indexOf(QStringLiteral("POST /api/host/heartbeat"));
        QCOMPARE(service.requests()
                     .at(index)
                     .toObject()
                     .value(QStringLiteral("authorization"))
                     .toObject()
                     .value(QStringLiteral("token"))
                     .toString(),
                 QStringLiteral("known"));
        const QString wanted =
            label("Sign the host agreement. Pay is an estimate, not a guarantee.");
        QTRY_VERIFY_WITH_TIMEOUT(elements().contains(wanted), kPatience);
        QVERIFY(elements().contains(label("You show ads.\nWe share what they earn.")));

        // Once signed, the agreement disappears and an estimate is shown.
        QVERIFY(press("I agree · not a guarantee"));
        QTRY_VERIFY_WITH_TIMEOUT(
            service.requestLines().contains(QStringLiteral("POST /api/host/agree")), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(
            !elements().contains(QStringLiteral("button: I agree · not a guarantee")), kPatience);
        QCOMPARE(elements().filter(QStringLiteral("We share")), QStringList());
        QTRY_COMPARE_WITH_TIMEOUT(elements().filter(QStringLiteral("Ads on. This week ~€")).size(),
                                  1, kPatience);
        QVERIFY(!elements().contains(label("€0")));
        QCOMPARE(elements().filter(QStringLiteral("Split with ")).size(), 1);

        // While paused nothing is live, and the capsules are hidden.
        QVERIFY(press("Pause ads 24h"));
        QTRY_COMPARE_WITH_TIMEOUT(elements().count(label("Unfilled")), 3, kPatience);
        QVERIFY(!elements().contains(label("Live")));
        QTRY_VERIFY_WITH_TIMEOUT(!program.isPanelShown(), kPatience);

        QVERIFY(press("Quit"));
        QCOMPARE(program.exitCode(), 0);
    }

    void everyControlIsFocusableAndHasAName() {
        const PlacementProcess service;
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        QCOMPARE(program.startAgain(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(elements().contains(QStringLiteral("button: Quit")), kPatience);
        for (const QJsonObject& element :
             ScreenReader::elements({QStringLiteral("window"), kPanel})) {
            const QString role = element.value(QStringLiteral("role")).toString();
            if (role == QStringLiteral("push button") || role.endsWith(QStringLiteral("text"))) {
                const auto states = element.value(QStringLiteral("states")).toVariant();
                QVERIFY2(states.toStringList().contains(QStringLiteral("focusable")),
                         qPrintable(role));
                QVERIFY(!element.value(QStringLiteral("name")).toString().isEmpty());
            }
        }
        QVERIFY(ScreenReader::does({QStringLiteral("focus"), QStringLiteral("Pause ads 24h")}));
        const auto focused = [] {
            const auto elements = ScreenReader::elements({QStringLiteral("focused")});
            return elements.isEmpty() ? QString()
                                      : elements.first().value(QStringLiteral("name")).toString();
        };
        QTRY_COMPARE_WITH_TIMEOUT(focused(), QStringLiteral("Pause ads 24h"), kPatience);
    }
};

BRIMLET_TEST(TestMenuByScreenReader, QCoreApplication)
#include "tst_menubyscreenreader.moc"
