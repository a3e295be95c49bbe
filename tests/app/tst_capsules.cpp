#include "tests/support/emulated.h"
#include "tests/support/pointer.h"
#include "tests/support/processes.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QMouseEvent>
#include <QPainter>
#include <QRasterWindow>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();
// In points of the 14-inch machine's screen, whose panel begins at 542.
constexpr QPoint kLeftCapsule(542 + 8 + 54, 13);
constexpr QPoint kRightCapsule(542 + 312 + 54, 13);
constexpr QPoint kLeftMark(542 + 8 + 7 + 1, 1 + 4 + 1);
constexpr QRect kLeftLine(542 + 8 + 28, 3, 73, 20);
// The background of a sample brand's picture.
const QColor kTea(0xd8, 0x5a, 0x3a);
const QString kPicture = QStringLiteral("GET /assets/quiet-bicycle.png");
const QString kDisplay = QStringLiteral("GET /api/display");

int scale() {
    return qMax(1, qEnvironmentVariableIntValue("QT_SCALE_FACTOR"));
}

/// A window that fills the screen and has that pointer shape.
class Background final : public QRasterWindow {
public:
    explicit Background(Qt::CursorShape shape) {
        setCursor(shape);
        showFullScreen();
    }
    int clicks = 0;

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter(this).fillRect(QRect(QPoint(), size()), Qt::lightGray);
    }
    void mousePressEvent(QMouseEvent* /*event*/) override { ++clicks; }
};

bool isAbout(const QColor& a, const QColor& b) {
    return qAbs(a.red() - b.red()) < 16 && qAbs(a.green() - b.green()) < 16 &&
           qAbs(a.blue() - b.blue()) < 16;
}

/// A placement with this brand on the left and a sample brand on the right, with ads on or off.
QJsonObject placementOf(const char* brand, const char* picture, bool isHidden) {
    const auto creative = [](const char* slot, const char* name, const char* asset) {
        return QJsonObject{{QStringLiteral("slotId"), QString::fromLatin1(slot)},
                           {QStringLiteral("brandName"), QString::fromLatin1(name)},
                           {QStringLiteral("assetUrl"), QString::fromLatin1(asset)}};
    };
    return {{QStringLiteral("forceHide"), isHidden},
            {QStringLiteral("creatives"),
             QJsonArray{creative("left", brand, picture),
                        creative("right", "Right", "/assets/quiet-bicycle.png")}}};
}

QJsonObject scenarioOf(const char* path, const QJsonObject& change) {
    return {{QStringLiteral("endpoints"), QJsonObject{{QString::fromLatin1(path), change}}}};
}

} // namespace

/// What the capsules show and do, with the real program in a real session.
class TestCapsules final : public QObject {
    Q_OBJECT

    XServer m_x;
    std::optional<QTemporaryDir> m_folder;
    QString m_openedFile;

    [[nodiscard]] QStringList opened() const {
        QFile file(m_openedFile);
        return file.open(QIODevice::ReadOnly)
                   ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)
                   : QStringList();
    }
    [[nodiscard]] QString cachesFolder() const {
        return m_folder->filePath(QStringLiteral("caches"));
    }
    [[nodiscard]] QStringList files() const {
        return QDir(cachesFolder() + QStringLiteral("/Brimlet/creatives")).entryList(QDir::Files);
    }
    [[nodiscard]] QJsonObject machineAt(const PlacementProcess& service, int speed = 1) const {
        return {{QStringLiteral("infoDictionary"),
                 QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}},
                {QStringLiteral("cachesFolder"), cachesFolder()},
                {QStringLiteral("speed"), speed}};
    }
    [[nodiscard]] static QJsonObject leftPill(SimulatorProcess& program) {
        return program.state().value(QStringLiteral("pills")).toArray().at(0).toObject();
    }
    [[nodiscard]] static bool hasPicture(SimulatorProcess& program) {
        return leftPill(program).value(QStringLiteral("hasImage")).toBool();
    }
    [[nodiscard]] QColor leftMark() const { return m_x.pixel(kLeftMark * scale()); }
    [[nodiscard]] QImage leftLine() const {
        return m_x.picture({kLeftLine.topLeft() * scale(), kLeftLine.size() * scale()});
    }
    [[nodiscard]] bool isLeftCapsuleDrawn() const {
        return m_x.pixel(QPoint(555, 13) * scale()).lightness() < 40;
    }

private Q_SLOTS:
    void initTestCase() {
        QVERIFY2(m_x.isConnected(), "this test needs script/desktop-session");
        m_folder.emplace();
        m_openedFile = m_folder->filePath(QStringLiteral("opened"));
        QCOMPARE(QProcess::execute(sourcePath(u"tests/support/session/recording-browser"),
                                   {m_openedFile}),
                 0);
    }
    void init() {
        QDir(cachesFolder()).removeRecursively();
        QFile::remove(m_openedFile);
        moveTo(QPoint(756, 600) * scale());
    }

    void aClickOpensItsBrandsPageOnceAndLeavesTheFocus() {
        Background background(Qt::ArrowCursor);
        QVERIFY(QTest::qWaitForWindowActive(&background));
        const xcb_window_t focus = m_x.focus();
        const PlacementProcess service;
        SimulatorProcess program(machineAt(service));
        QTRY_VERIFY_WITH_TIMEOUT(isLeftCapsuleDrawn(), kPatience);
        click(kLeftCapsule * scale());
        const QString left = service.root() + QStringLiteral("/brands/quiet-bicycle");
        QTRY_COMPARE_WITH_TIMEOUT(opened(), QStringList{left}, kPatience);
        click(kRightCapsule * scale());
        const QString right = service.root() + QStringLiteral("/brands/palindrome-tea");
        QTRY_COMPARE_WITH_TIMEOUT(opened(), (QStringList{left, right}), kPatience);
        QCOMPARE(m_x.focus(), focus);
        QVERIFY(background.isActive());
        QCOMPARE(background.clicks, 0);
    }

    void hoveringShowsTheHandAndLeavingTheArrow() {
        QImage hand;
        {
            Background other(Qt::PointingHandCursor);
            QVERIFY(QTest::qWaitForWindowActive(&other));
            hand = m_x.cursor();
        }
        Background background(Qt::ArrowCursor);
        QVERIFY(QTest::qWaitForWindowActive(&background));
        QTRY_VERIFY_WITH_TIMEOUT(m_x.cursor() != hand, kPatience);
        const QImage arrow = m_x.cursor();
        QVERIFY(!hand.isNull() && !arrow.isNull());

        const PlacementProcess service;
        SimulatorProcess program(machineAt(service));
        QTRY_VERIFY_WITH_TIMEOUT(isLeftCapsuleDrawn(), kPatience);
        for (const QPoint capsule : {kLeftCapsule, kRightCapsule}) {
            moveTo(capsule * scale());
            QTRY_COMPARE_WITH_TIMEOUT(m_x.cursor(), hand, kPatience);
            moveTo(QPoint(756, 600) * scale());
            QTRY_COMPARE_WITH_TIMEOUT(m_x.cursor(), arrow, kPatience);
        }
        // Into the gap between them, where the window takes no input.
        moveTo(kLeftCapsule * scale());
        QTRY_COMPARE_WITH_TIMEOUT(m_x.cursor(), hand, kPatience);
        moveTo(QPoint(664, 35) * scale());
        QTRY_COMPARE_WITH_TIMEOUT(m_x.cursor(), arrow, kPatience);
    }

    void aCreativeThatTheServiceChangesChangesOnScreen() {
        const PlacementProcess service;
        SimulatorProcess program(machineAt(service, 10));
        QTRY_VERIFY_WITH_TIMEOUT(hasPicture(program), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(!isAbout(leftMark(), kTea) && leftMark().saturation() > 60,
                                 kPatience);
        const QImage before = leftLine();
        service.setScenario(
            {{QStringLiteral("creatives"),
              QJsonArray{QJsonObject{
                  {QStringLiteral("slotId"), QStringLiteral("left")},
                  {QStringLiteral("brandName"), QStringLiteral("Another")},
                  {QStringLiteral("assetUrl"), QStringLiteral("/assets/palindrome-tea.png")},
                  {QStringLiteral("brandUrl"), QStringLiteral("/brands/palindrome-tea")}}}}});
        // The right slot is empty now, so the row has moved 36 points to the right.
        constexpr QPoint kMoved(36, 0);
        QTRY_VERIFY_WITH_TIMEOUT(isAbout(m_x.pixel((kLeftMark + kMoved) * scale()), kTea),
                                 kPatience);
        QVERIFY(m_x.picture({(kLeftLine.topLeft() + kMoved) * scale(),
                             kLeftLine.size() * scale()}) != before);
        click((kLeftCapsule + kMoved) * scale());
        QTRY_COMPARE_WITH_TIMEOUT(
            opened(), QStringList{service.root() + QStringLiteral("/brands/palindrome-tea")},
            kPatience);
    }

    void aBrandChangedWhileAdsAreHiddenReturnsWithItsOwnPicture() {
        const PlacementProcess service;
        const char* const first = "/assets/quiet-bicycle.png";
        service.setScenario(placementOf("First", first, false));
        SimulatorProcess program(machineAt(service, 10));
        QTRY_VERIFY_WITH_TIMEOUT(isLeftCapsuleDrawn() && leftMark().saturation() > 60, kPatience);
        QVERIFY(!isAbout(leftMark(), kTea));
        service.setScenario(placementOf("First", first, true));
        QTRY_VERIFY_WITH_TIMEOUT(!isLeftCapsuleDrawn(), kPatience);

        // The next picture is loaded while ads are hidden.
        const char* const second = "/assets/palindrome-tea.png";
        service.setScenario(placementOf("Second", second, true));
        QTRY_COMPARE_WITH_TIMEOUT(files().size(), 2, kPatience);
        QVERIFY(!program.isPanelShown());
        service.setScenario(placementOf("Second", second, false));
        QTRY_VERIFY_WITH_TIMEOUT(isLeftCapsuleDrawn(), kPatience);
        QVERIFY(isAbout(leftMark(), kTea));
    }

    void aBrandChangedWhileAdsAreHiddenNeverReturnsWithTheOldPicture() {
        const PlacementProcess service;
        const char* const first = "/assets/quiet-bicycle.png";
        service.setScenario(placementOf("First", first, false));
        SimulatorProcess program(machineAt(service, 10));
        QTRY_VERIFY_WITH_TIMEOUT(isLeftCapsuleDrawn() && hasPicture(program), kPatience);
        service.setScenario(placementOf("First", first, true));
        QTRY_VERIFY_WITH_TIMEOUT(!isLeftCapsuleDrawn(), kPatience);

        const auto withoutSecondPicture = [](bool isHidden) {
            QJsonObject scenario = placementOf("Second", "/assets/palindrome-tea.png", isHidden);
            scenario[QStringLiteral("endpoints")] =
                scenarioOf("/assets/palindrome-tea.png",
                           {{QStringLiteral("fault"), QStringLiteral("hang")}})
                    .value(QStringLiteral("endpoints"));
            return scenario;
        };
        service.setScenario(withoutSecondPicture(true));
        QTRY_VERIFY_WITH_TIMEOUT(
            service.requestLines().contains(QStringLiteral("GET /assets/palindrome-tea.png")),
            kPatience);
        QVERIFY(!program.isPanelShown());
        service.setScenario(withoutSecondPicture(false));
        QTRY_VERIFY_WITH_TIMEOUT(isLeftCapsuleDrawn(), kPatience);
        QVERIFY(leftMark().lightness() < 40);
        QVERIFY(!hasPicture(program));
    }

    void aHundredPollsFetchEachPictureOnce() {
        const PlacementProcess service;
        SimulatorProcess program(machineAt(service, 60));
        QTRY_VERIFY_WITH_TIMEOUT(service.requestLines().count(kDisplay) >= 100, 60'000);
        QCOMPARE(service.requestLines().count(kPicture), 1);
        QCOMPARE(service.requestLines().count(QStringLiteral("GET /assets/palindrome-tea.png")), 1);
        QCOMPARE(files().size(), 2);
        QVERIFY(hasPicture(program));
    }

    void pictureRequestsCarryNoToken() {
        const PlacementProcess service;
        SimulatorProcess program(machineAt(service, 60));
        (void)program.ask("save-token demo-host-token");
        // Another picture, asked for after heartbeats have gone out with the token.
        QTRY_VERIFY_WITH_TIMEOUT(
            service.requestLines().contains(QStringLiteral("POST /api/host/heartbeat")), kPatience);
        service.setScenario(
            {{QStringLiteral("creatives"),
              QJsonArray{QJsonObject{
                  {QStringLiteral("slotId"), QStringLiteral("left")},
                  {QStringLiteral("brandName"), QStringLiteral("Later")},
                  {QStringLiteral("assetUrl"), QStringLiteral("/assets/quiet-bicycle.png?2")}}}},
             {QStringLiteral("endpoints"),
              QJsonObject{{QStringLiteral("/api/display"),
                           QJsonObject{{QStringLiteral("headers"),
                                        QJsonObject{{QStringLiteral("Set-Cookie"),
                                                     QStringLiteral("a=b; Path=/")}}}}}}}});
        QTRY_COMPARE_WITH_TIMEOUT(service.requestLines().count(kPicture), 2, kPatience);
        for (const QJsonValue& value : service.requests()) {
            const QJsonObject request = value.toObject();
            if (request.value(QStringLiteral("path")).toString().startsWith(u"/assets/")) {
                QVERIFY(request.value(QStringLiteral("authorization")).isNull());
                QCOMPARE(request.value(QStringLiteral("headers")).toObject().keys(),
                         (QStringList{QStringLiteral("host"), QStringLiteral("user-agent")}));
            }
        }
    }

    void withoutItsPictureAPillShowsTheBrandsLetter_data() {
        QTest::addColumn<QJsonObject>("fault");
        const auto text = [](const char* body) {
            return QJsonObject{{QStringLiteral("text"), QString::fromUtf8(body)}};
        };
        QTest::newRow("not found") << QJsonObject{{QStringLiteral("status"), 404}};
        QTest::newRow("failing") << QJsonObject{{QStringLiteral("status"), 503}};
        QTest::newRow("a page") << text("<!DOCTYPE html><html><body>Log in</body></html>");
        QTest::newRow("a drawing") << text("<svg xmlns=\"http://www.w3.org/2000/svg\"/>");
        QTest::newRow("cut") << QJsonObject{{QStringLiteral("fault"), QStringLiteral("cut")}};
        QTest::newRow("closed") << QJsonObject{{QStringLiteral("fault"), QStringLiteral("close")}};
        QTest::newRow("sent elsewhere") << QJsonObject{
            {QStringLiteral("status"), 302},
            {QStringLiteral("headers"),
             QJsonObject{{QStringLiteral("Location"),
                          QStringLiteral("http://localhost.elsewhere.test/a.png")}}}};
        QTest::newRow("sent to a file") << QJsonObject{
            {QStringLiteral("status"), 302},
            {QStringLiteral("headers"),
             QJsonObject{{QStringLiteral("Location"),
                          QStringLiteral("file:///usr/share/pixmaps/debian-logo.png")}}}};
    }
    void withoutItsPictureAPillShowsTheBrandsLetter() {
        QFETCH(QJsonObject, fault);
        const PlacementProcess service;
        service.setScenario(scenarioOf("/assets/quiet-bicycle.png", fault));
        SimulatorProcess program(machineAt(service, 60));
        // After twenty polls it has been requested once, and nothing of it is kept. Where a kept
        // connection closes without a reply, HTTP sends the request again; four may be kept.
        QTRY_VERIFY_WITH_TIMEOUT(service.requestLines().count(kDisplay) >= 20, kPatience);
        const auto requests = service.requestLines().count(kPicture);
        QVERIFY(requests == 1 ||
                (requests >= 2 && requests <= 5 &&
                 fault.value(QStringLiteral("fault")).toString() == QStringLiteral("close")));
        QVERIFY(!hasPicture(program));
        QCOMPARE(files().size(), 1); // the other brand's
        QVERIFY(leftMark().lightness() < 40);
        QCOMPARE(program.statusLine(),
                 QStringLiteral("Ads on. Add your approved host token to qualify for payouts."));
        // Shown anew, it is tried again.
        service.setScenario({});
        program.edit({{QStringLiteral("screensAsleep"), true}});
        QTRY_VERIFY_WITH_TIMEOUT(!program.isPanelShown(), kPatience);
        program.edit({{QStringLiteral("screensAsleep"), false}});
        QTRY_VERIFY_WITH_TIMEOUT(hasPicture(program), kPatience);
        QCOMPARE(service.requestLines().count(kPicture), requests + 1);
    }

    void aRedirectThatTheLinkRuleAllowsIsFollowed() {
        const PlacementProcess service;
        service.setScenario(
            scenarioOf("/assets/quiet-bicycle.png",
                       {{QStringLiteral("status"), 302},
                        {QStringLiteral("headers"),
                         QJsonObject{{QStringLiteral("Location"),
                                      QStringLiteral("/assets/palindrome-tea.png")}}}}));
        SimulatorProcess program(machineAt(service));
        QTRY_VERIFY_WITH_TIMEOUT(isAbout(leftMark(), kTea), kPatience);
    }

    void twoRunsNameTheirFilesDifferently() {
        const PlacementProcess service;
        QStringList first;
        {
            SimulatorProcess program(machineAt(service));
            QTRY_VERIFY_WITH_TIMEOUT(files().size() == 2, kPatience);
            first = files();
        }
        SimulatorProcess program(machineAt(service));
        QTRY_COMPARE_WITH_TIMEOUT(files().size(), 4, kPatience);
        for (const QString& name : std::as_const(first)) {
            QVERIFY(files().contains(name));
        }
        QCOMPARE(service.requestLines().count(kPicture), 2);
    }

    void theTaglineScrollsAndTheBrandComesBack() {
        const PlacementProcess service;
        SimulatorProcess program(machineAt(service, 10));
        QTRY_VERIFY_WITH_TIMEOUT(isLeftCapsuleDrawn() && hasPicture(program), kPatience);
        const QImage brand = leftLine();
        const auto isScrolling = [&] {
            return leftPill(program).value(QStringLiteral("offsetOnScreen")).toInt() < 0;
        };
        QTRY_VERIFY_WITH_TIMEOUT(isScrolling(), kPatience);
        QVERIFY(leftLine() != brand);
        QTRY_COMPARE_WITH_TIMEOUT(leftLine(), brand, kPatience);
    }

    void reducedMotionKeepsTheBrandAndItsEndLetsItMove() {
        const PlacementProcess service;
        QJsonObject machine = machineAt(service, 60);
        machine[QStringLiteral("reduceMotion")] = true;
        SimulatorProcess program(machine);
        const auto showsTagline = [&] {
            return leftPill(program).value(QStringLiteral("showingTagline")).toBool();
        };
        // Twenty polls are a minute, in which the tagline would have come at least twice.
        bool wasShown = false;
        QTRY_VERIFY_WITH_TIMEOUT(
            (wasShown = wasShown || showsTagline(), service.requestLines().count(kDisplay) >= 20),
            kPatience);
        QVERIFY(!wasShown);
        program.edit({{QStringLiteral("reduceMotion"), false}});
        QTRY_VERIFY_WITH_TIMEOUT(showsTagline(), kPatience);
    }
};

BRIMLET_TEST(TestCapsules, QApplication)
#include "tst_capsules.moc"
