#include "tests/app/waylandapplication.h"
#include "tests/app/waylandscreen.h"
#include "tests/support/testprogram.h"
#include "tests/support/wayland/panel.h"
#include "tests/support/wayland/seat.h"

#include <QFile>
#include <QFontMetrics>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QRasterWindow>
#include <QTemporaryDir>
#include <QToolTip>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <limits>
#include <optional>

using namespace brimlet;
using namespace brimlet::WaylandScreen;

namespace {

/// A full-screen window in one colour, like a film's, that records what reaches it.
class Film final : public QRasterWindow {
public:
    explicit Film(const QColor& colour = kBackground)
        : m_colour(colour) {
        showFullScreen();
    }
    void setColour(const QColor& colour) {
        m_colour = colour;
        update();
    }
    QList<QPoint> clicks;
    QString typed;

protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter(this).fillRect(QRect(QPoint(), size()), m_colour);
    }
    void mousePressEvent(QMouseEvent* event) override { clicks << event->position().toPoint(); }
    void keyPressEvent(QKeyEvent* event) override { typed += event->text(); }

private:
    QColor m_colour;
};

/// The rectangle around the pixels that are not of that colour; empty when there are none.
QRect differing(const QImage& picture, const QColor& colour) {
    QRect box;
    for (int y = 0; y < picture.height(); ++y) {
        for (int x = 0; x < picture.width(); ++x) {
            if (!isAbout(picture.pixelColor(x, y), colour)) {
                box |= QRect(x, y, 1, 1);
            }
        }
    }
    return box;
}

} // namespace

/// The capsules over other windows of a Wayland desktop.
class TestWaylandOverlay final : public QObject {
    Q_OBJECT

    desktop::Seat m_seat;
    QTemporaryDir m_folder;
    PlacementProcess m_service;
    std::optional<Program> m_program;
    std::optional<Film> m_film;

    [[nodiscard]] QString openedFile() const { return m_folder.filePath(QStringLiteral("opened")); }
    [[nodiscard]] QStringList opened() const {
        QFile file(openedFile());
        return file.open(QIODevice::ReadOnly)
                   ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)
                   : QStringList();
    }
    void setScenario(const QJsonArray& creatives, bool isHidden = false) const {
        m_service.setScenario(
            {{QStringLiteral("creatives"), creatives}, {QStringLiteral("forceHide"), isHidden}});
    }
    /// A key press that reaches the film.
    [[nodiscard]] bool hasKeyboard(const char* key) {
        m_film->typed.clear();
        m_seat.type(key);
        return QTest::qWaitFor([&] { return m_film->typed == QLatin1String(key); }, kPatience);
    }
    /// The pointer and what is around it, without the tooltip below.
    [[nodiscard]] static QImage around(QPoint position) {
        return desktop::picture(QRect(position - QPoint(8, 8), QSize(22, 22)), true);
    }
    /// The rectangle of the tooltip below the capsules, in pixels; empty when there is none.
    [[nodiscard]] static QRect tooltip() {
        return differing(desktop::picture({400, 26, 712, 54}), kBackground);
    }
    /// How different the two are where they are most alike, perhaps a pixel or two apart: at a
    /// fractional scale programs round the place of the pointer differently.
    [[nodiscard]] static int difference(const QImage& a, const QImage& b) {
        constexpr int kApart = 2;
        int least = std::numeric_limits<int>::max();
        for (int dx = -kApart; dx <= kApart; ++dx) {
            for (int dy = -kApart; dy <= kApart; ++dy) {
                int sum = 0;
                for (int y = kApart; y < a.height() - kApart; ++y) {
                    for (int x = kApart; x < a.width() - kApart; ++x) {
                        sum += std::abs(qGray(a.pixel(x, y)) - qGray(b.pixel(x + dx, y + dy)));
                    }
                }
                least = std::min(least, sum);
            }
        }
        return least;
    }
    [[nodiscard]] static bool isRather(const QImage& picture, const QImage& expected,
                                       const QImage& other) {
        return 3 * difference(picture, expected) < 2 * difference(picture, other);
    }

private Q_SLOTS:
    void initTestCase() {
        QCOMPARE(QProcess::execute(sourcePath(u"tests/support/session/recording-browser"),
                                   {openedFile()}),
                 0);
        setScenario(referenceCreatives());
        m_seat.moveTo({756, 600});
        m_program.emplace(m_service);
    }
    void init() {
        QFile::remove(openedFile());
        m_seat.moveTo({756, 600});
        m_film.emplace();
        QTRY_VERIFY_WITH_TIMEOUT(m_film->isActive(), kPatience);
        if (!desktop::canTakePictures()) {
            const QByteArray test = QTest::currentTestFunction();
            if (!test.startsWith("aClick") && !test.startsWith("aPress") &&
                !test.startsWith("aTouch")) {
                QSKIP("this compositor gives no pictures of its screen");
            }
            QTRY_VERIFY_WITH_TIMEOUT(m_program->isShown(), kPatience);
            return;
        }
        QTRY_VERIFY_WITH_TIMEOUT(isCapsuleInFront(), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(isAbout(pixel({545, 13}), kBackground), kPatience);
    }
    void cleanup() {
        m_film.reset();
        setScenario(referenceCreatives());
        if (m_program) {
            QCOMPARE(m_program->protocolErrors(), QByteArrayList());
        }
    }

    void theyAreDrawnWithoutAnXServer() {
        QTRY_VERIFY_WITH_TIMEOUT(looksLikeTheReference(scale()), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(m_program->isNative(), kPatience);
    }

    void aClickOpensItsPageOnceAndLeavesTheKeyboard() {
        QVERIFY(hasKeyboard("a"));
        m_seat.click(kLeftCapsule);
        const QStringList left{QStringLiteral("https://left.test/")};
        QTRY_COMPARE_WITH_TIMEOUT(opened(), left, kPatience);
        QVERIFY(hasKeyboard("b"));
        m_seat.click(kRightCapsule);
        const QStringList both =
            left + QStringList{QStringLiteral("https://www.another-brand.test/page")};
        QTRY_COMPARE_WITH_TIMEOUT(opened(), both, kPatience);
        QVERIFY(hasKeyboard("c"));
        QVERIFY(m_film->isActive());

        // What is beside the capsules belongs to the film: above, the corners, the notch's gap,
        // between, below and the sides.
        const QList<QPoint> beside{{550, 0},  {551, 2},  {545, 13}, {700, 5},  {756, 13},
                                   {660, 35}, {968, 13}, {658, 13}, {853, 13}, {604, 30}};
        for (const QPoint& at : beside) {
            m_seat.click(at);
        }
        QTRY_COMPARE_WITH_TIMEOUT(m_film->clicks, beside, kPatience);
        QCOMPARE(opened(), both);
    }

    void aPressThatLeavesTheCapsuleOpensNothing() {
        m_seat.moveTo(kLeftCapsule);
        m_seat.press();
        m_seat.moveTo({604, 35});
        m_seat.release();
        m_seat.click(kRightCapsule);
        const QStringList right{QStringLiteral("https://www.another-brand.test/page")};
        QTRY_COMPARE_WITH_TIMEOUT(opened(), right, kPatience);
    }

    void aTouchOpensThePage() {
        if (!m_seat.hasTouch()) {
            QSKIP("this compositor offers tests no touch screen");
        }
        m_seat.tap(kRightCapsule);
        QTRY_COMPARE_WITH_TIMEOUT(
            opened(), QStringList{QStringLiteral("https://www.another-brand.test/page")},
            kPatience);
        m_seat.tap({604, 35});
        QTRY_COMPARE_WITH_TIMEOUT(m_film->clicks, (QList<QPoint>{{604, 35}}), kPatience);
        QVERIFY(hasKeyboard("a"));
    }

    void aPanelIsBehindThem() {
        m_film.reset(); // full-screen windows are in front of panels
        const desktop::Panel panel(30, Qt::green, desktop::Panel::Space::Reserved);
        QTRY_COMPARE_WITH_TIMEOUT(pixel({545, 13}), QColor(Qt::green), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(isCapsuleInFront(), kPatience);
        m_seat.click(kLeftCapsule);
        QTRY_COMPARE_WITH_TIMEOUT(opened(), QStringList{QStringLiteral("https://left.test/")},
                                  kPatience);
    }

    void hoveringShowsTheHandAndLeavingTheArrow() {
        // The film gets the colour of the capsules, so that only the pointers differ.
        const QColor capsule = pixel(kInLeftCapsule);
        const QPoint empty(640, 14); // of the left capsule, beside its text, and on a whole pixel
        setScenario({QJsonObject{{QStringLiteral("slotId"), QStringLiteral("left")},
                                 {QStringLiteral("brandName"), QStringLiteral("I")},
                                 {QStringLiteral("brandUrl"), QStringLiteral("https://i.test/")}},
                     referenceCreatives().at(1)});
        m_film->setColour(capsule);
        QTRY_VERIFY_WITH_TIMEOUT(isAbout(pixel({640, 300}), capsule), kPatience);
        const QPoint below(640, 300);
        m_seat.moveTo(below);
        QTRY_VERIFY_WITH_TIMEOUT(!differing(around(below), capsule).isEmpty(), kPatience);
        const QImage arrow = around(below);
        m_film->setCursor(Qt::PointingHandCursor);
        QTRY_VERIFY_WITH_TIMEOUT(around(below) != arrow, kPatience);
        const QImage hand = around(below);
        m_film->setCursor(Qt::ArrowCursor);
        m_seat.moveTo(empty);
        QTRY_VERIFY_WITH_TIMEOUT(isRather(around(empty), hand, arrow), kPatience);
        m_seat.moveTo(below);
        QTRY_VERIFY_WITH_TIMEOUT(isRather(around(below), arrow, hand), kPatience);
        QVERIFY(hasKeyboard("a"));
    }

    void hoveringShowsThePagesAddress() {
        QCOMPARE(tooltip(), QRect());
        m_seat.moveTo(kLeftCapsule);
        QTRY_VERIFY_WITH_TIMEOUT(!tooltip().isEmpty(), kPatience);
        // Its width shows which address it is.
        const auto isOf = [](const char* address) {
            const int letters =
                QFontMetrics(QToolTip::font()).horizontalAdvance(QLatin1String(address));
            return std::abs(tooltip().width() - (letters + 18) * scale()) < 16 * scale();
        };
        QTRY_VERIFY_WITH_TIMEOUT(isOf("left.test"), kPatience);
        m_seat.moveTo(kRightCapsule);
        QTRY_VERIFY_WITH_TIMEOUT(isOf("www.another-brand.test"), kPatience);
        QVERIFY(hasKeyboard("a"));
        m_seat.moveTo({756, 600});
        QTRY_COMPARE_WITH_TIMEOUT(tooltip(), QRect(), kPatience);
    }

    void hiddenTheyTakeNoClicks_data() {
        QTest::addColumn<bool>("isByTheService");
        QTest::newRow("the service") << true;
        QTest::newRow("sleeping screens") << false;
    }
    void hiddenTheyTakeNoClicks() {
        QFETCH(bool, isByTheService);
        const auto setHidden = [&](bool isHidden) {
            if (isByTheService) {
                setScenario(referenceCreatives(), isHidden);
            } else {
                (*m_program)->edit({{QStringLiteral("screensAsleep"), isHidden}});
            }
        };
        setHidden(true);
        QTRY_VERIFY_WITH_TIMEOUT(isBackgroundInFront(), kPatience);
        m_seat.click(kLeftCapsule);
        QTRY_COMPARE_WITH_TIMEOUT(m_film->clicks, QList<QPoint>{kLeftCapsule}, kPatience);
        setHidden(false);
        QTRY_VERIFY_WITH_TIMEOUT(isCapsuleInFront(), kPatience);
        m_seat.click(kLeftCapsule);
        QTRY_COMPARE_WITH_TIMEOUT(opened(), QStringList{QStringLiteral("https://left.test/")},
                                  kPatience);
        QCOMPARE(m_film->clicks.size(), 1);
    }

    void aCreativeThatTheServiceChangesChangesOnScreen() {
        const QColor tea(0xd8, 0x5a, 0x3a); // the background of that brand's picture
        constexpr QPoint kMark(542 + 36 + 8 + 7 + 1, 1 + 4 + 1); // alone, the pill is further right
        setScenario(
            {QJsonObject{{QStringLiteral("slotId"), QStringLiteral("left")},
                         {QStringLiteral("brandName"), QStringLiteral("Another")},
                         {QStringLiteral("assetUrl"), QStringLiteral("/assets/palindrome-tea.png")},
                         {QStringLiteral("brandUrl"), QStringLiteral("https://another.test/")}}});
        QTRY_VERIFY_WITH_TIMEOUT(isAbout(pixel(kMark), tea), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(isAbout(pixel(kRightCapsule + QPoint(40, 0)), kBackground),
                                 kPatience);
        m_seat.click(kRightCapsule + QPoint(40, 0));
        QTRY_COMPARE_WITH_TIMEOUT(m_film->clicks.size(), 1, kPatience);
        m_seat.click(kLeftCapsule + QPoint(36, 0));
        QTRY_COMPARE_WITH_TIMEOUT(opened(), QStringList{QStringLiteral("https://another.test/")},
                                  kPatience);
    }

    void aLongTextScrolls() {
        QJsonObject creative = referenceCreatives().at(0).toObject();
        creative[QStringLiteral("tagline")] = QStringLiteral("Home before the bell rings");
        setScenario({creative, referenceCreatives().at(1)});
        QTRY_VERIFY_WITH_TIMEOUT(!looksLikeTheReference(scale()), kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(looksLikeTheReference(scale()), kPatience);
    }

    void theProgramEndsWhileItIsHovered() {
        m_seat.moveTo(kLeftCapsule);
        QTRY_VERIFY_WITH_TIMEOUT(!tooltip().isEmpty(), kPatience);
        QCOMPARE((*m_program)->endBySignal(SIGTERM), 0);
        QTRY_VERIFY_WITH_TIMEOUT(isBackgroundInFront(), kPatience);
        QCOMPARE(m_program->protocolErrors(), QByteArrayList());
        m_program.emplace(m_service);
        QTRY_VERIFY_WITH_TIMEOUT(isCapsuleInFront(), kPatience);
    }

    // The last: ads return after a day.
    void pausedTheyTakeNoClicks() {
        (void)(*m_program)->ask("pause");
        QTRY_VERIFY_WITH_TIMEOUT(isBackgroundInFront(), kPatience);
        m_seat.click(kLeftCapsule);
        QTRY_COMPARE_WITH_TIMEOUT(m_film->clicks, QList<QPoint>{kLeftCapsule}, kPatience);
        QCOMPARE(opened(), QStringList());
    }

    void cleanupTestCase() {
        QCOMPARE((*m_program)->endBySignal(SIGTERM), 0);
        QCOMPARE(m_program->protocolErrors(), QByteArrayList());
    }
};

BRIMLET_TEST(TestWaylandOverlay, WaylandApplication)
#include "tst_waylandoverlay.moc"
