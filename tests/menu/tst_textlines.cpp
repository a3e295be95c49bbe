#include "menu/textlines.h"
#include "tests/support/testprogram.h"

#include <QFontDatabase>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QTest>

using namespace brimlet;

namespace {

QFont font() {
    QFont font = QGuiApplication::font();
    font.setPixelSize(11);
    return font;
}

std::vector<TextSpan> wrapped(const QString& text, int width) {
    WrappedText whole;
    wrapText(whole, text, font(), width);
    return whole.lines;
}

QStringList linesOf(const QString& text, int width) {
    QStringList lines;
    for (const TextSpan& line : wrapped(text, width)) {
        lines << text.mid(line.start, line.length);
    }
    return lines;
}

} // namespace

class TestTextLines final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void breaksBecomeLineFeedsAndControlsBlanks_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("plain");
        const auto row = [](const char* name, const QString& text, const QString& plain) {
            QTest::newRow(name) << text << plain;
        };
        row("nothing", QString(), QString());
        row("words", QStringLiteral("a b"), QStringLiteral("a b"));
        row("line feed", QStringLiteral("a\nb"), QStringLiteral("a\nb"));
        row("carriage return", QStringLiteral("a\rb"), QStringLiteral("a\nb"));
        row("both", QStringLiteral("a\r\n\r\nb"), QStringLiteral("a\n\nb"));
        row("separators", QStringLiteral("a\u2028b\u2029c"), QStringLiteral("a\nb\nc"));
        row("tabulator and bell", QStringLiteral("a\tb\ac"), QStringLiteral("a b c"));
        row("null", QStringLiteral("a") + QChar(QChar::Null) + QStringLiteral("b"),
            QStringLiteral("a b"));
        row("C1", QStringLiteral("a\u0085b"), QStringLiteral("a b"));
    }
    void breaksBecomeLineFeedsAndControlsBlanks() {
        QFETCH(QString, text);
        QFETCH(QString, plain);
        QCOMPARE(wrappableText(text), plain);
    }

    void wordsStayWholeWhereTheyCan() {
        const QStringList lines = linesOf(QStringLiteral("one two three four five six"), 60);
        QVERIFY(lines.size() > 1);
        for (const QString& line : lines) {
            QVERIFY(QStringLiteral("one two three four five six ").contains(line.trimmed() + u' '));
            QVERIFY(QFontMetricsF(font()).horizontalAdvance(line.trimmed()) <= 60);
        }
        QCOMPARE(lines.join(QString()), QStringLiteral("one two three four five six"));
    }

    void aWordWiderThanALineIsBroken() {
        const QString word(200, u'W');
        const QStringList lines = linesOf(word, 100);
        QVERIFY(lines.size() > 10);
        QCOMPARE(lines.join(QString()), word);
        for (const QString& line : lines) {
            QVERIFY(QFontMetricsF(font()).horizontalAdvance(line) <= 100);
        }
    }

    void eachParagraphStartsALine() {
        QCOMPARE(linesOf(QStringLiteral("one\n\ntwo\n"), 100),
                 (QStringList{QStringLiteral("one"), QString(), QStringLiteral("two"), QString()}));
        QCOMPARE(linesOf(QString(), 100), QStringList{QString()});
    }

    void eachParagraphHasItsOwnDirection() {
        const auto lines = wrapped(QStringLiteral("left\nשלום עולם"), 200);
        QCOMPARE(lines.size(), std::size_t{2});
        QVERIFY(!lines.at(0).isRightToLeft);
        QVERIFY(lines.at(1).isRightToLeft);
    }

    void aParagraphAsLongAsAPieceHasNoEmptyLineAfterIt() {
        // Around the size of a piece. Blanks never fill a second line.
        for (const int length : {2047, 2048, 2049, 4096}) {
            const QString text = QString(length, u' ') + QStringLiteral("\nend");
            const QStringList lines = linesOf(text, 288);
            QCOMPARE(lines.join(QString()).size(), length + 3);
            QVERIFY(!lines.contains(QString()));
            QCOMPARE(lines.last(), QStringLiteral("end"));
        }
    }

    void aLongParagraphBreaksAsIfWrappedInOnePiece() {
        // Longer than a piece, so that it is wrapped in several.
        QString text;
        for (int i = 0; text.size() < 20'000; ++i) {
            text += QStringLiteral("word%1 ").arg(i * i);
        }
        const QStringList lines = linesOf(text, 288);
        QCOMPARE(lines.join(QString()), text);
        const QFontMetricsF metrics(font());
        for (qsizetype i = 0; i + 1 < lines.size(); ++i) {
            QVERIFY(metrics.horizontalAdvance(lines.at(i).trimmed()) <= 288);
            // The next line's first word would not have fitted.
            const QString more = lines.at(i) + lines.at(i + 1).section(u' ', 0, 0);
            QVERIFY2(metrics.horizontalAdvance(more) > 286, qPrintable(more));
        }
    }

    void itStopsAfterTheWantedLinesAndContinues_data() {
        QTest::addColumn<QString>("text");
        QTest::newRow("one paragraph") << QStringLiteral("some words ").repeated(3000);
        QTest::newRow("many paragraphs") << QStringLiteral("some words\n").repeated(3000);
        QTest::newRow("both") << QStringLiteral("שלום some words ").repeated(700) + u'\n' +
                                     QStringLiteral("words ").repeated(900);
        QTest::newRow("one word") << QString(30'000, u'W');
    }
    void itStopsAfterTheWantedLinesAndContinues() {
        QFETCH(QString, text);
        WrappedText growing;
        wrapText(growing, text, font(), 288, 7);
        QVERIFY(growing.lines.size() >= 7);
        // One piece of two thousand characters, not the whole text.
        QVERIFY(growing.lines.size() < 120);
        QVERIFY(!growing.isWhole(text));
        while (!growing.isWhole(text)) {
            const std::size_t before = growing.lines.size();
            wrapText(growing, text, font(), 288, before + 1);
            QVERIFY(growing.lines.size() > before);
        }
        QCOMPARE(growing.lines, wrapped(text, 288));
    }

    void linesOfVeryManyCharactersAreMadeAFewAtATime() {
        const QString text(1'000'000, u' ');
        WrappedText growing;
        wrapText(growing, text, font(), 288, 300);
        // The minimum of lines, from a part of the text.
        QVERIFY(growing.lines.size() >= 20 && growing.lines.size() < 40);
        QVERIFY(growing.next < 65'536);
        int calls = 1;
        for (; !growing.isWhole(text); ++calls) {
            const std::size_t before = growing.lines.size();
            wrapText(growing, text, font(), 288, before + 300);
            QVERIFY(growing.lines.size() > before);
        }
        QVERIFY(calls > 10);
    }

    void oddTextsEndAndStayInRange() {
        const QString zalgo = QStringLiteral("Z") + QString(5000, QChar(0x0321));
        for (const QString& text :
             {zalgo, QString(5000, QChar(0x200B)), QString(5000, QChar(0x202E)),
              QString(3000, QChar(0xD800)), QString(5000, u' '), QString(5000, u'\n')}) {
            for (const int width : {1, 60, 288}) {
                qsizetype total = 0;
                for (const TextSpan& line : wrapped(text, width)) {
                    QVERIFY(line.start >= 0 && line.start + line.length <= text.size());
                    total += line.length;
                }
                QVERIFY(total <= text.size());
            }
        }
    }

    void noShortLineRemains_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<int>("letters"); // the width
        QTest::addColumn<QStringList>("lines");
        const auto row = [](const char* name, int letters, const char* text,
                            const QStringList& lines) {
            QTest::newRow(name) << QString::fromUtf8(text) << letters << lines;
        };
        row("broken at a sign", 51, "Recorded 2/4 live windows today · 3 live days this week",
            {QStringLiteral("Recorded 2/4 live windows today ·"),
             QStringLiteral("3 live days this week")});
        row("broken at a comma", 51,
            "Sign the host agreement. Pay is an estimate, not a guarantee.",
            {QStringLiteral("Sign the host agreement. Pay is an estimate,"),
             QStringLiteral("not a guarantee.")});
        row("broken between words", 40, "Words without any sign between the first and last",
            {QStringLiteral("Words without any sign between the"),
             QStringLiteral("first and last")});
        row("three lines", 20, "abcdef ghijkl mnopqr abcdef ghijkl mnopqr end",
            {QStringLiteral("abcdef ghijkl"), QStringLiteral("mnopqr abcdef"),
             QStringLiteral("ghijkl mnopqr end")});
        row("long enough already", 40, "Not changed, although there is a comma before the end",
            {QStringLiteral("Not changed, although there is a comma"),
             QStringLiteral("before the end")});
        row("one line", 40, "Estimate, not a guarantee",
            {QStringLiteral("Estimate, not a guarantee")});
        row("no other break", 20, "abcdefghijklmnopqrst end",
            {QStringLiteral("abcdefghijklmnopqrst"), QStringLiteral("end")});
        row("a word wider than a line", 20, "abcdefghijklmnopqrstu end",
            {QStringLiteral("abcdefghijklmnopqrst"), QStringLiteral("u end")});
        // One character to the eye, wider than the line.
        const QString cluster(40, QChar(0x1100));
        row("a character wider than a line", 8,
            (QStringLiteral("a ") + cluster).toUtf8().constData(), {QStringLiteral("a"), cluster});
        row("another paragraph", 20, "abcdef ghijkl\nend",
            {QStringLiteral("abcdef ghijkl"), QStringLiteral("end")});
    }
    void noShortLineRemains() {
        QFETCH(QString, text);
        QFETCH(int, letters);
        QFETCH(QStringList, lines);
        const QFont font = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        const QFontMetricsF metrics(font);
        QCOMPARE(metrics.horizontalAdvance(u'i'), metrics.horizontalAdvance(u'M'));
        const int width = qCeil(metrics.horizontalAdvance(QString(letters, u'M')));
        WrappedText wrapped;
        wrapText(wrapped, text, font, width);
        balanceLines(wrapped, text, font, width);
        QVERIFY(wrapped.isWhole(text));
        QStringList found;
        for (const TextSpan& line : wrapped.lines) {
            found << text.mid(line.start, line.length).trimmed();
        }
        QCOMPARE(found, lines);
    }
};

BRIMLET_TEST(TestTextLines, QGuiApplication)
#include "tst_textlines.moc"
