#include "creative/marqueetext.h"
#include "tests/support/testprogram.h"

#include <QCoreApplication>
#include <QProcess>
#include <QTest>

#include <cmath>
#include <limits>

using namespace brimlet;
using namespace std::chrono_literals;

class TestMarqueeText final : public QObject {
    Q_OBJECT

    /// Whether this program, run again for one of the cases of `die`, ends with the expected error.
    static bool isFatal(const char* what) {
        QProcess program;
        program.start(QCoreApplication::applicationFilePath(),
                      {QStringLiteral("--die"), QString::fromLatin1(what)});
        program.waitForFinished();
        return program.exitStatus() == QProcess::CrashExit &&
               program.readAllStandardError().contains("out of range");
    }

private Q_SLOTS:
    void withABlankBrandTheUntrimmedTaglineRests_data() {
        QTest::addColumn<QString>("brand");
        QTest::addColumn<QString>("tagline");
        QTest::addColumn<QString>("resting");
        QTest::addColumn<QString>("swapped");
        const auto row = [](const char* name, const char* brand, const char* tagline,
                            const char* resting, const char* swapped) {
            QTest::newRow(name) << QString::fromUtf8(brand) << QString::fromUtf8(tagline)
                                << QString::fromUtf8(resting) << QString::fromUtf8(swapped);
        };
        row("both", "Acme", "Fresh", "Acme", "Fresh");
        row("blanks around the brand", " \tAcme\n", "Fresh", "Acme", "Fresh");
        row("blank brand", "  ", "Hello", "Hello", "Hello");
        row("blank brand, blanks around the tagline", "  ", " Hello ", " Hello ", "Hello");
        row("no-break and wide blanks", "\u00a0\u3000", "Hello", "Hello", "Hello");
        row("both empty", "", "", "", "");
        row("only a brand", "Acme", " ", "Acme", "");
    }
    void withABlankBrandTheUntrimmedTaglineRests() {
        QFETCH(QString, brand);
        QFETCH(QString, tagline);
        QTEST(restingText(brand, tagline), "resting");
        QTEST(lineText(brand, tagline, false), "resting");
        QTEST(lineText(brand, tagline, true), "swapped");
    }

    void theTaskIDContainsAllThatTheLoopDependsOn_data() {
        QTest::addColumn<double>("container");
        QTest::addColumn<double>("tagline");
        QTest::addColumn<bool>("reduceMotion");
        QTest::addColumn<QString>("id");
        const QString start = QStringLiteral("Acme|Fresh every day|");
        QTest::newRow("truncated")
            << 180.7 << 211.2 << false << start + QStringLiteral("180|211|false");
        QTest::newRow("before measuring")
            << 0.0 << 0.0 << false << start + QStringLiteral("0|0|false");
        QTest::newRow("reduce motion")
            << 73.0 << 10.0 << true << start + QStringLiteral("73|10|true");
        QTest::newRow("toward zero") << -0.9 << 0.9 << false << start + QStringLiteral("0|0|false");
        QTest::newRow("negative") << -1.9 << 1.0 << false << start + QStringLiteral("-1|1|false");
        QTest::newRow("largest") << 0x1.fffffffffffffp62 << -0x1p63 << false
                                 << start + QStringLiteral(
                                                "9223372036854774784|-9223372036854775808|false");
    }
    void theTaskIDContainsAllThatTheLoopDependsOn() {
        QFETCH(double, container);
        QFETCH(double, tagline);
        QFETCH(bool, reduceMotion);
        QTEST(marqueeTaskID(QStringLiteral("Acme"), QStringLiteral("Fresh every day"), container,
                            tagline, reduceMotion),
              "id");
    }

    void theTaskIDContainsTheTextsUntrimmed() {
        QCOMPARE(marqueeTaskID(QStringLiteral(" A "), QStringLiteral("\nB|"), 1, 2, false),
                 QStringLiteral(" A |\nB||1|2|false"));
    }

    void theLastReportedWidthCounts() {
        double width = WidthKey::defaultValue;
        QCOMPARE(width, 0.0);
        WidthKey::reduce(width, 90);
        WidthKey::reduce(width, 73);
        QCOMPARE(width, 73.0);
        double text = TextWidthKey::defaultValue;
        TextWidthKey::reduce(text, 211);
        TextWidthKey::reduce(text, 0);
        QCOMPARE(text, 0.0);
    }

    void overflowIsNeverNegative() {
        QCOMPARE(overflowWidth(133, 73), 60.0);
        QCOMPARE(overflowWidth(73, 73), 0.0);
        QCOMPARE(overflowWidth(12, 73), 0.0);
    }

    void sleepsAreWholeNanosecondsAndNeverNegative() {
        QCOMPARE(sleepLength(16.0), std::chrono::nanoseconds(16s));
        QCOMPARE(sleepLength(0.35), std::chrono::nanoseconds(350ms));
        QCOMPARE(sleepLength(2.8), std::chrono::nanoseconds(2800ms));
        QCOMPARE(sleepLength(0), 0ns);
        QCOMPARE(sleepLength(-3), 0ns);
        QCOMPARE(sleepLength(-std::numeric_limits<double>::infinity()), 0ns);
        // The clock counts half as far as 64 bits.
        QCOMPARE(sleepLength(1e10), std::chrono::nanoseconds::max());
    }

    void valuesOutOfRangeEndTheProgram_data() {
        QTest::addColumn<QByteArray>("what");
        for (const char* what :
             {"width-nan", "width-infinite", "width-too-large", "width-too-small", "sleep-infinite",
              "sleep-nan", "sleep-too-long"}) {
            QTest::newRow(what) << QByteArray(what);
        }
    }
    void valuesOutOfRangeEndTheProgram() {
        QFETCH(QByteArray, what);
        QVERIFY(isFatal(what.constData()));
    }

    void untrustedTextsAreMadeOneLine_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("line");
        const auto row = [](const char* name, const char16_t* text, const char16_t* line) {
            QTest::newRow(name) << QString::fromUtf16(text) << QString::fromUtf16(line);
        };
        row("plain", u"Fresh every day", u"Fresh every day");
        row("line break", u"a\nb\r\nc", u"a b  c");
        row("tab", u"a\tb", u"a b");
        row("line and paragraph separator", u"a\u2028b\u2029c", u"a b c");
        row("control characters", u"a\u0001b\u0085c\u007fd", u"a b c d");
        row("markup", u"<b>&amp;</b>", u"<b>&amp;</b>");
        row("percent and ampersand", u"%1 & %s", u"%1 & %s");
        row("outer blanks stay", u" a ", u" a ");
        row("marks of direction stay", u"\u202eabc", u"\u202eabc");
    }
    void untrustedTextsAreMadeOneLine() {
        QFETCH(QString, text);
        QTEST(singleLine(text), "line");
    }

    void aVeryLongTextIsCutBetweenCharacters() {
        const QString flag = QStringLiteral("\U0001F1EA\U0001F1FA"); // four units
        QCOMPARE(singleLine(QString(1024, u'a')).size(), 1024);
        QCOMPARE(singleLine(QString(1025, u'a')).size(), 1024);
        QCOMPARE(singleLine(QString(1022, u'a') + flag), QString(1022, u'a'));
        QCOMPARE(singleLine(QString(1020, u'a') + flag + u'b'), QString(1020, u'a') + flag);
        // A single character that long is cut inside.
        QCOMPARE(singleLine(QStringLiteral("\U0001F468\u200D").repeated(5000)).size(), 1024);
        // Runs of marks are bounded.
        QCOMPARE(singleLine(u'a' + QString(5000, QChar(0x301))).size(), 31);
        QCOMPARE(singleLine(QString(1'000'000, u'x')).size(), 1024);
    }
};

namespace {

/// Does what must end the program; returns only if it does not.
int die(int /*argc*/, char* argv[]) {
    const QByteArray what = argv[1];
    const double infinite = std::numeric_limits<double>::infinity();
    const auto width = [](double value) { (void)marqueeTaskID({}, {}, value, 0, false); };
    if (what == "width-nan") {
        width(std::nan(""));
    } else if (what == "width-infinite") {
        width(infinite);
    } else if (what == "width-too-large") {
        width(0x1p63);
    } else if (what == "width-too-small") {
        width(-0x1.0000000000001p63);
    } else if (what == "sleep-infinite") {
        (void)sleepLength(infinite);
    } else if (what == "sleep-nan") {
        (void)sleepLength(std::nan(""));
    } else if (what == "sleep-too-long") {
        (void)sleepLength(18446744073.709552);
    }
    return 0;
}

} // namespace

BRIMLET_TEST(TestMarqueeText, QCoreApplication)
BRIMLET_TEST_CHILD("--die", die)

#include "tst_marqueetext.moc"
