#include "tests/app/waylandapplication.h"
#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"
#include "tests/support/xserver.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDir>
#include <QFile>
#include <QMouseEvent>
#include <QRasterWindow>
#include <QTest>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();
const QString kLeftPage = QStringLiteral("https://left.test/");
const QString kRightPage = QStringLiteral("https://right.test/page");

/// Mutter's pointer, over the session bus. Positions are in points of a screen with one output.
class MutterPointer final {
public:
    MutterPointer() {
        const QDBusMessage made =
            call(QStringLiteral("/org/gnome/Mutter/RemoteDesktop"), {}, "CreateSession");
        m_session = made.arguments().value(0).value<QDBusObjectPath>().path();
        callSession("Start");
        callSession("NotifyPointerMotionRelative", {-9999.0, -9999.0});
    }

    /// The events are on their way when this returns.
    void click(QPoint position) {
        constexpr int kLeftButton = 0x110;
        const QPointF step = position - m_position;
        m_position = position;
        callSession("NotifyPointerMotionRelative", {step.x(), step.y()});
        callSession("NotifyPointerButton", {kLeftButton, true});
        callSession("NotifyPointerButton", {kLeftButton, false});
    }

private:
    static QDBusMessage call(const QString& path, const QString& interface, const char* method,
                             const QVariantList& arguments = {}) {
        const QString name = QStringLiteral("org.gnome.Mutter.RemoteDesktop");
        auto message = QDBusMessage::createMethodCall(name, path, name + interface,
                                                      QString::fromLatin1(method));
        message.setArguments(arguments);
        const QDBusMessage reply = QDBusConnection::sessionBus().call(message);
        if (reply.type() != QDBusMessage::ReplyMessage) {
            qFatal("%s: %s", method, qPrintable(reply.errorMessage()));
        }
        return reply;
    }
    void callSession(const char* method, const QVariantList& arguments = {}) const {
        (void)call(m_session, QStringLiteral(".Session"), method, arguments);
    }

    QString m_session;
    QPoint m_position;
};

/// A full-screen window of a Wayland program.
class Film final : public QRasterWindow {
public:
    Film() { showFullScreen(); }
    QList<QPoint> clicks;

protected:
    void mousePressEvent(QMouseEvent* event) override { clicks << event->position().toPoint(); }
};

QJsonObject creative(const char* slot, const QString& brand, const QString& page) {
    return {{QStringLiteral("slotId"), QString::fromLatin1(slot)},
            {QStringLiteral("brandName"), brand},
            {QStringLiteral("brandUrl"), page}};
}

void show(const PlacementProcess& service, const QString& brand) {
    service.setScenario(
        {{QStringLiteral("creatives"),
          QJsonArray{creative("left", brand, kLeftPage), creative("right", brand, kRightPage)}}});
}

QString leftBrand(SimulatorProcess& program) {
    const QJsonObject week = program.state().value(QStringLiteral("assignment")).toObject();
    return week.value(QStringLiteral("left"))
        .toObject()
        .value(QStringLiteral("brandName"))
        .toString();
}

} // namespace

/// The overlay's X11 window over the windows of Wayland programs, in mutter.
class TestWithoutLayerShell final : public QObject {
    Q_OBJECT

    /// In the session's own folder: the last pages may be opened after the test.
    [[nodiscard]] static QString openedFile() {
        return QDir::home().filePath(QStringLiteral("opened"));
    }
    [[nodiscard]] static QStringList opened() {
        QFile file(openedFile());
        return file.open(QIODevice::ReadOnly)
                   ? QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts)
                   : QStringList();
    }

private Q_SLOTS:
    void initTestCase() {
        QCOMPARE(qEnvironmentVariable("BRIMLET_SESSION_DISPLAY"), QStringLiteral("mutter"));
        QCOMPARE(QProcess::execute(sourcePath(u"tests/support/session/recording-browser"),
                                   {openedFile()}),
                 0);
    }

    void onlyClicksOnTheCapsulesAreTheirs() {
        Film film;
        QVERIFY(QTest::qWaitForWindowExposed(&film));
        const PlacementProcess service;
        show(service, QStringLiteral("A brand"));
        SimulatorProcess program({{QStringLiteral("infoDictionary"),
                                   QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}},
                                  {QStringLiteral("drawNotch"), false},
                                  {QStringLiteral("speed"), 10}});
        const XServer x;
        const auto isClickable = [&x] {
            const auto window = x.windowNamed("Brimlet");
            return window && x.isMapped(*window) && !x.inputShape(*window).empty();
        };
        QTRY_VERIFY_WITH_TIMEOUT(isClickable(), kPatience);

        // The film gets the clicks until the compositor shows the capsules.
        MutterPointer pointer;
        QTRY_VERIFY_WITH_TIMEOUT((pointer.click({604, 13}), opened().contains(kLeftPage)),
                                 kPatience);
        QTRY_VERIFY_WITH_TIMEOUT((pointer.click({908, 13}), opened().contains(kRightPage)),
                                 kPatience);
        // Mutter goes by the shape of a new window until the window is painted again.
        for (const char* const name : {"First brand", "Second brand", "Third brand"}) {
            const QString brand = QString::fromLatin1(name);
            show(service, brand);
            QTRY_COMPARE_WITH_TIMEOUT(leftBrand(program), brand, kPatience);
            film.clicks.clear();
            // Beside the capsules, below them, and below the notch.
            const QList<QPoint> beside{{545, 13}, {967, 13}, {604, 30}, {908, 30}, {756, 36}};
            for (const QPoint position : beside) {
                pointer.click(position);
            }
            QTRY_COMPARE_WITH_TIMEOUT(film.clicks, beside, kPatience);
        }
    }

    void aClickOnTheEmptyDesktopClosesThePanel() {
        const PlacementProcess service;
        SimulatorProcess program({{QStringLiteral("infoDictionary"),
                                   QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}},
                                  {QStringLiteral("drawNotch"), false}});
        const XServer x;
        const auto panel = [&] {
            const auto window = x.shownWindow(program.pid(), QStringLiteral("Brimlet panel"));
            return window ? window->geometry : QRect();
        };
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        QCOMPARE(program.startAgain(), 0);
        QTRY_VERIFY_WITH_TIMEOUT(panel().isValid(), kPatience);
        MutterPointer pointer;
        pointer.click(panel().center());
        QVERIFY(program.state().value(QStringLiteral("isMenuOpen")).toBool());
        // Once the compositor shows the window that takes the click.
        QTRY_VERIFY_WITH_TIMEOUT((pointer.click({200, 700}), panel().isNull()), kPatience);
    }
};

BRIMLET_TEST(TestWithoutLayerShell, WaylandApplication)
#include "tst_withoutlayershell.moc"
