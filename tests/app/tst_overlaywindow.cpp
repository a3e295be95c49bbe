#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QApplication>
#include <QFile>
#include <QMouseEvent>
#include <QRasterWindow>
#include <QTemporaryDir>
#include <QTest>

#include <optional>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();
constexpr QRect kPanel(542, 0, 428, 40);
constexpr QPoint kLeftCapsule = QPoint(542 + 8 + 54, 13);

/// X server pixels per point.
int scale() {
    return qMax(1, qEnvironmentVariableIntValue("QT_SCALE_FACTOR"));
}

/// A full-screen window, like a film's, that records its clicks.
class FullScreenWindow final : public QRasterWindow {
public:
    QList<QPoint> clicks;

protected:
    void mousePressEvent(QMouseEvent* event) override {
        clicks << event->globalPosition().toPoint();
    }
};

void click(QPoint at) {
    QProcess::execute(QStringLiteral("xdotool"),
                      {QStringLiteral("mousemove"), QString::number(at.x() * scale()),
                       QString::number(at.y() * scale()), QStringLiteral("click"),
                       QStringLiteral("1")});
}

} // namespace

/// The overlay's window among other windows of a real desktop.
class TestOverlayWindow final : public QObject {
    Q_OBJECT

    XServer m_x;
    std::optional<QTemporaryDir> m_folder;
    QString m_openedFile;

    [[nodiscard]] QByteArray opened() const {
        QFile file(m_openedFile);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    [[nodiscard]] bool isShown() const {
        const auto window = m_x.windowNamed("Brimlet");
        return window && m_x.isMapped(*window);
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

    void itIsAboveAFullScreenWindowAndNeverTakesFocus() {
        FullScreenWindow film;
        film.showFullScreen();
        QVERIFY(QTest::qWaitForWindowActive(&film));
        const auto focus = static_cast<xcb_window_t>(film.winId());
        QTRY_COMPARE_WITH_TIMEOUT(m_x.focus(), focus, kPatience); // a moment after Qt's own word

        const PlacementProcess service;
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        QTRY_VERIFY_WITH_TIMEOUT(isShown(), kPatience);
        const auto window = m_x.windowNamed("Brimlet");
        QTRY_COMPARE_WITH_TIMEOUT(m_x.inputShape(*window).empty(), false, kPatience);
        QTRY_VERIFY_WITH_TIMEOUT(m_x.pixel(QPoint(555, 13) * scale()).lightness() < 40, kPatience);
        QCOMPARE(m_x.focus(), focus);
        QCOMPARE(m_x.geometry(*window), QRect(kPanel.topLeft() * scale(), kPanel.size() * scale()));

        // A click on a capsule opens its page and does not reach the film.
        click(kLeftCapsule);
        QTRY_VERIFY_WITH_TIMEOUT(!opened().isEmpty(), kPatience);
        const QString page = program.panel()
                                 .value(QStringLiteral("left"))
                                 .toObject()
                                 .value(QStringLiteral("brandURL"))
                                 .toString();
        QVERIFY2(opened().contains(page.toUtf8()), opened().constData());
        QVERIFY(film.clicks.isEmpty());
        QCOMPARE(m_x.focus(), focus);

        // Everything beside the capsules belongs to the film: above, the corners, the notch's gap,
        // between, below and the sides.
        const QList<QPoint> beside{{550, 0},  {551, 2},  {545, 13}, {700, 5},  {756, 13},
                                   {660, 35}, {968, 13}, {658, 13}, {853, 13}, {604, 30}};
        for (const QPoint& at : beside) {
            QVERIFY(kPanel.contains(at));
            click(at);
        }
        QTRY_COMPARE_WITH_TIMEOUT(film.clicks, beside, kPatience);
        QCOMPARE(opened().count('\n'), 1);
        QVERIFY(film.isActive());
    }

    void aHiddenPanelTakesNoClicks() {
        const PlacementProcess service;
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        QTRY_VERIFY_WITH_TIMEOUT(isShown(), kPatience);
        FullScreenWindow film;
        film.showFullScreen();
        QVERIFY(QTest::qWaitForWindowActive(&film));
        (void)program.ask("pause");
        QTRY_VERIFY_WITH_TIMEOUT(!isShown(), kPatience);
        const auto window = m_x.windowNamed("Brimlet");
        QTRY_VERIFY_WITH_TIMEOUT(m_x.inputShape(*window).empty(), kPatience);
        click(kLeftCapsule);
        QTRY_COMPARE_WITH_TIMEOUT(film.clicks, QList<QPoint>{kLeftCapsule}, kPatience);
    }

    void aCapsuleWithARefusedLinkLetsClicksThrough() {
        const PlacementProcess service;
        const auto creative = [](const char* slot, const char* link) {
            return QJsonObject{{QStringLiteral("slotId"), QString::fromLatin1(slot)},
                               {QStringLiteral("brandName"), QStringLiteral("Brand")},
                               {QStringLiteral("brandUrl"), QString::fromLatin1(link)}};
        };
        service.setScenario({{QStringLiteral("creatives"),
                              QJsonArray{creative("left", "http://elsewhere.test/"),
                                         creative("right", "https://elsewhere.test/")}}});
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        QTRY_VERIFY_WITH_TIMEOUT(isShown(), kPatience);
        const auto window = m_x.windowNamed("Brimlet");
        QTRY_VERIFY_WITH_TIMEOUT(!m_x.inputShape(*window).empty(), kPatience);
        for (const QRect& part : m_x.inputShape(*window)) {
            QVERIFY(part.left() >= 312 * scale()); // the right capsule alone
        }
    }
};

BRIMLET_TEST(TestOverlayWindow, QApplication)
#include "tst_overlaywindow.moc"
