#include "platform/linux/appledisplay.h"
#include "tests/platform/linux/kernelfolder.h"
#include "tests/support/testprogram.h"

#include <QRegularExpression>
#include <QTest>

using namespace brimlet;

Q_DECLARE_METATYPE(std::optional<bool>)

namespace {

const QString panelName = QStringLiteral("eDP-1");
constexpr std::optional<bool> kUnknown;

QByteArrayList machine(const char* model) {
    return {model, "apple,t6000", "apple,arm-platform"};
}

QRectF toQt(const Rect& rect) {
    return {rect.x, rect.y, rect.width, rect.height};
}

} // namespace

class AppleDisplayTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(QStringLiteral(".?"))); }

    void everyModelHasItsNotch_data() {
        QTest::addColumn<QSizeF>("shown"); // in points, at scale 2
        QTest::addColumn<QSizeF>("hidden");
        QTest::addColumn<double>("gapStart");
        QTest::addColumn<double>("gapEnd");
        QTest::addColumn<double>("height");
        const auto rows = [](std::initializer_list<const char*> models, QSizeF shown, QSizeF hidden,
                             double gapStart, double gapEnd, double height) {
            for (const char* const model : models) {
                QTest::newRow(model) << shown << hidden << gapStart << gapEnd << height;
            }
        };
        rows({"apple,j314s", "apple,j314c", "apple,j414s", "apple,j414c", "apple,j504",
              "apple,j514s", "apple,j514c", "apple,j514m"},
             {1512, 982}, {1512, 945}, 664, 848, 32);
        rows({"apple,j316s", "apple,j316c", "apple,j416s", "apple,j416c", "apple,j516s",
              "apple,j516c", "apple,j516m"},
             {1728, 1117}, {1728, 1080}, 772, 956, 32);
        rows({"apple,j413", "apple,j613"}, {1280, 832}, {1280, 800}, 558.75, 721.25, 28);
        rows({"apple,j415", "apple,j615"}, {1440, 932}, {1440, 900}, 638.75, 801.25, 28);
    }

    void everyModelHasItsNotch() {
        QFETCH(const QSizeF, shown);
        QFETCH(const QSizeF, hidden);
        QFETCH(const double, gapStart);
        QFETCH(const double, gapEnd);
        QFETCH(const double, height);
        const auto panel = notchedPanel(machine(QTest::currentDataTag()));
        QVERIFY(panel);
        const auto strips =
            notchStrips(*panel, kUnknown, panelName, {0, 0, shown.width(), shown.height()});
        QVERIFY(strips);
        QCOMPARE(toQt(strips->left), QRectF(0, shown.height() - height, gapStart, height));
        QCOMPARE(toQt(strips->right),
                 QRectF(gapEnd, shown.height() - height, shown.width() - gapEnd, height));
        QVERIFY(!notchStrips(*panel, kUnknown, panelName, {0, 0, hidden.width(), hidden.height()}));
    }

    void otherMachinesHaveNoNotch_data() {
        QTest::addColumn<QByteArrayList>("compatible");
        for (const char* const model : {"apple,j293", "apple,j313", "apple,j493"}) {
            QTest::newRow(model) << machine(model);
        }
        QTest::newRow("desktop") << machine("apple,j274");
        QTest::newRow("unknown") << machine("apple,j999");
        QTest::newRow("begins like a known one") << machine("apple,j413x");
        QTest::newRow("known one begins like it") << machine("apple,j31");
        QTest::newRow("other letter case") << machine("Apple,J314s");
        QTest::newRow("other maker") << QByteArrayList{"acme,j314s", "acme,board"};
        QTest::newRow("empty name") << QByteArrayList{QByteArray()};
        QTest::newRow("no device tree") << QByteArrayList();
    }

    void otherMachinesHaveNoNotch() {
        QFETCH(const QByteArrayList, compatible);
        QVERIFY(!notchedPanel(compatible));
    }

    void theScreenAndTheDriverDecide_data() {
        QTest::addColumn<std::optional<bool>>("showNotch");
        QTest::addColumn<QString>("connector");
        QTest::addColumn<QSizeF>("size");
        QTest::addColumn<bool>("isThere");
        const QSizeF shown(1512, 982);
        const QSizeF hidden(1512, 945);
        const auto row = [](const char* name, std::optional<bool> showNotch, const char* connector,
                            QSizeF size, bool isThere) {
            QTest::newRow(name) << showNotch << QString::fromLatin1(connector) << size << isThere;
        };
        row("shown, the driver silent", kUnknown, "eDP-1", shown, true);
        row("shown, the driver agrees", true, "eDP-1", shown, true);
        row("shown, but off", false, "eDP-1", shown, false);
        row("hidden, the driver silent", kUnknown, "eDP-1", hidden, false);
        row("hidden, but on", true, "eDP-1", hidden, false);
        row("hidden and off", false, "eDP-1", hidden, false);
        row("another embedded connector", true, "eDP2", shown, true);
        row("older XWayland", true, "XWAYLAND0", shown, true);
        row("older XWayland, tenth screen", kUnknown, "XWAYLAND10", shown, true);
        row("older XWayland, hidden", true, "XWAYLAND0", hidden, false);
        row("XWayland without a number", true, "XWAYLAND", shown, false);
        row("XWayland and more", true, "XWAYLAND0-1", shown, false);
        row("external screen", true, "HDMI-A-1", shown, false);
        row("no name", true, "", shown, false);
        row("turned", true, "eDP-1", shown.transposed(), false);
        row("turned, hidden", true, "eDP-1", hidden.transposed(), false);
        row("16:10", true, "eDP-1", {1920, 1200}, false);
        row("16:9", true, "eDP-1", {1920, 1080}, false);
        row("3:2", true, "eDP-1", {1500, 1000}, false);
        row("scaled down a lot", true, "eDP-1", {800, 520}, true);
        row("scaled by 1.5", true, "eDP-1", {2016, 1309}, true);
        row("not scaled", true, "eDP-1", {3024, 1964}, true);
        row("one percent too high", true, "eDP-1", {1512, 993}, false);
        row("one percent too low", true, "eDP-1", {1512, 971}, false);
        row("empty", true, "eDP-1", {0, 0}, false);
        row("without height", true, "eDP-1", {1512, 0}, false);
    }

    void theScreenAndTheDriverDecide() {
        QFETCH(const std::optional<bool>, showNotch);
        QFETCH(const QString, connector);
        QFETCH(const QSizeF, size);
        QFETCH(const bool, isThere);
        const auto panel = notchedPanel(machine("apple,j314s"));
        QVERIFY(panel);
        const auto strips =
            notchStrips(*panel, showNotch, connector, {0, 0, size.width(), size.height()});
        QCOMPARE(strips.has_value(), isThere);
    }

    void theGapIsTheNotchAtEveryScale_data() {
        QTest::addColumn<QByteArray>("model");
        for (const char* const model : {"apple,j314s", "apple,j316s", "apple,j413", "apple,j415"}) {
            QTest::newRow(model) << QByteArray(model);
        }
    }

    void theGapIsTheNotchAtEveryScale() {
        QFETCH(const QByteArray, model);
        const auto panel = notchedPanel({model});
        QVERIFY(panel);
        for (int width = 800; width <= panel->width; ++width) {
            const double scale = static_cast<double>(width) / panel->width;
            const int height = qRound(panel->height * scale);
            const double yScale = static_cast<double>(height) / panel->height;
            const auto strips =
                notchStrips(*panel, kUnknown, panelName,
                            {0, 0, static_cast<double>(width), static_cast<double>(height)});
            QVERIFY2(strips, qPrintable(QString::number(width)));
            const double start = (panel->width - panel->notchWidth) / 2.0 * scale;
            const double end = (panel->width + panel->notchWidth) / 2.0 * scale;
            QCOMPARE(strips->left.maxX(), start);
            QCOMPARE(strips->right.minX(), end);
            QCOMPARE(strips->left.height, panel->notchHeight * yScale);
            QCOMPARE(strips->right.maxX(), static_cast<double>(width));
            QCOMPARE(strips->left.maxY(), static_cast<double>(height));
        }
    }

    void theStripsMoveWithTheScreen() {
        const auto panel = notchedPanel(machine("apple,j314s"));
        QVERIFY(panel);
        const auto strips = notchStrips(*panel, kUnknown, panelName, {-1512, 300, 1512, 982});
        QVERIFY(strips);
        QCOMPARE(toQt(strips->left), QRectF(-1512, 1250, 664, 32));
        QCOMPARE(toQt(strips->right), QRectF(-664, 1250, 664, 32));
    }

    void theDeviceTreeIsRead_data() {
        QTest::addColumn<QByteArray>("content");
        QTest::addColumn<QByteArrayList>("names");
        const auto bytes = [](const char* text) { return QByteArray(text).replace('|', '\0'); };
        QTest::newRow("as the kernel gives it")
            << bytes("apple,j314s|apple,t6000|apple,arm-platform|")
            << QByteArrayList{"apple,j314s", "apple,t6000", "apple,arm-platform"};
        QTest::newRow("one") << bytes("apple,j413|") << QByteArrayList{"apple,j413"};
        QTest::newRow("the last one cut off")
            << bytes("apple,j314s|apple,t60") << QByteArrayList{"apple,j314s"};
        QTest::newRow("no zero byte") << bytes("apple,j314s") << QByteArrayList();
        QTest::newRow("empty") << QByteArray() << QByteArrayList();
    }

    void theDeviceTreeIsRead() {
        QFETCH(const QByteArray, content);
        QFETCH(const QByteArrayList, names);
        KernelFolder kernel;
        QVERIFY(kernel.setCompatible(content));
        QCOMPARE(readCompatible(kernel.path()), names);
    }

    void aLongDeviceTreeIsReadInPart() {
        KernelFolder kernel;
        const QByteArray name = QByteArray("apple,j314s").append('\0');
        QVERIFY(kernel.setCompatible(name.repeated(100000)));
        const QByteArrayList names = readCompatible(kernel.path());
        QCOMPARE(names.size(), 4096 / name.size());
        QCOMPARE(names.last(), QByteArray("apple,j314s"));
        QVERIFY(kernel.setCompatible(QByteArray(1000000, 'x')));
        QCOMPARE(readCompatible(kernel.path()), QByteArrayList());
    }

    void missingFilesGiveNoValue() {
        const KernelFolder kernel;
        QCOMPARE(readCompatible(kernel.path()), QByteArrayList());
        QCOMPARE(readShowNotch(kernel.path()), kUnknown);
        QCOMPARE(readModel(kernel.path()), QByteArray());
        QCOMPARE(readDescribedPanel(kernel.path()), DescribedPanel());
        QCOMPARE(readCompatible(QStringLiteral("/nowhere")), QByteArrayList());
        QCOMPARE(readShowNotch(QStringLiteral("/nowhere")), kUnknown);
        // A folder where a file should be.
        QVERIFY(QDir(kernel.path()).mkpath(QStringLiteral("proc/device-tree/compatible")));
        QCOMPARE(readCompatible(kernel.path()), QByteArrayList());
    }

    void theModelsNameAndPanelAreRead() {
        KernelFolder kernel;
        QVERIFY(kernel.setModel("Apple MacBook Air (13-inch, M2, 2022)"));
        QCOMPARE(readModel(kernel.path()), QByteArray("Apple MacBook Air (13-inch, M2, 2022)"));
        QVERIFY(kernel.setPanel(290, 189, 64));
        QCOMPARE(readDescribedPanel(kernel.path()), (DescribedPanel{290, 189, 64}));
    }

    void aPanelThatIsDescribedInPart() {
        const KernelFolder kernel;
        const auto write = [&kernel](const char* name, const QByteArray& content) {
            return writeFile(kernel.path() + QStringLiteral("/proc/device-tree/") +
                                 QLatin1StringView(name),
                             content);
        };
        QVERIFY(write("soc/dcp/panel/height-mm", QByteArray("\0\0\0\xbd", 4)));
        QVERIFY(write("soc/dcp/apple,notch-height", "64"));
        QVERIFY(write("aliases/dcp", "soc/dcp"));
        QCOMPARE(readDescribedPanel(kernel.path()), DescribedPanel());
        QVERIFY(write("aliases/dcp", QByteArray("/soc/dcp\0", 9)));
        QCOMPARE(readDescribedPanel(kernel.path()), (DescribedPanel{0, 189, 0}));
    }

    void theDriversSettingIsRead_data() {
        QTest::addColumn<QByteArray>("driver");
        QTest::addColumn<QByteArray>("older");
        QTest::addColumn<std::optional<bool>>("showNotch");
        const auto row = [](const char* name, const char* driver, const char* older,
                            std::optional<bool> showNotch) {
            QTest::newRow(name) << QByteArray(driver) << QByteArray(older) << showNotch;
        };
        row("Y", "Y\n", "", true);
        row("1", "1\n", "", true);
        row("y", "y", "", true);
        row("N", "N\n", "", false);
        row("0", "0\n", "", false);
        row("n", "n", "", false);
        row("older driver, Y", "", "Y\n", true);
        row("older driver, N", "", "N\n", false);
        row("both, the newer counts", "N\n", "Y\n", false);
        row("the newer says nothing known", "maybe\n", "1\n", true);
        row("neither", "", "", kUnknown);
        row("nothing known", "2\n", "yes\n", kUnknown);
    }

    void theDriversSettingIsRead() {
        QFETCH(const QByteArray, driver);
        QFETCH(const QByteArray, older);
        QFETCH(const std::optional<bool>, showNotch);
        KernelFolder kernel;
        QVERIFY(driver.isEmpty() || kernel.setShowNotch(driver));
        QVERIFY(older.isEmpty() || kernel.setShowNotch(older, QStringLiteral("apple_dcp")));
        QCOMPARE(readShowNotch(kernel.path()), showNotch);
    }
};

BRIMLET_TEST(AppleDisplayTest, brimlet::NoApplication)
#include "tst_appledisplay.moc"
