#pragma once

#include "tests/support/testpaths.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <algorithm>

namespace brimlet {

/// Adds the column "text" with rows of texts that break layouts.
inline void addHostileTexts() {
    using namespace Qt::StringLiterals;
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const QString& text) { QTest::newRow(name) << text; };
    row("nothing", {});
    row("markup", u"<h1>big</h1><img src='file:///etc/passwd'>"_s);
    row("the end tag of the tooltip's markup", u"</span><b>x"_s);
    row("ampersand", u"R&D &amp; &lt;b&gt; &"_s);
    row("placeholders", u"%1 %2 %n %L1 %%1"_s);
    row("tab and breaks", u"a\tb\nc\r\nd\u2028e\u2029f\vg\fh\u0085i"_s);
    row("NUL", QString::fromUtf16(u"a\0b", 3));
    row("only NUL", QString(3, QChar(0)));
    row("lone surrogates", QString(300, QChar(0xD800)));
    row("lone surrogates among blanks", QString::fromUtf16(u"\xD800 \xDC00 \xD800"));
    row("lone low surrogates", QString(300, QChar(0xDC00)) + u'x');
    row("no characters", u"\uFFFE\uFFFF\uFEFF"_s);
    row("right to left",
        u"\u0645\u0631\u062D\u0628\u0627 \u05E9\u05DC\u05D5\u05DD "_s.repeated(50));
    row("overrides", u"\u202Eabc\u202C \u2066x\u2069 \u2067y"_s);
    row("overrides without end", u"\u202E\u202D\u2067\u2068\u202B"_s.repeated(200) + u'x');
    row("5 000 marks", u'a' + QString(5'000, QChar(0x0301)));
    row("5 000 marks of nothing", QString(5'000, QChar(0x0489)));
    row("5 000 joined characters", u"\U0001F468\u200D"_s.repeated(5'000));
    row("a million letters", QString(1'000'000, u'W'));
    row("a million words", u"words "_s.repeated(166'667));
    row("a million blanks", QString(1'000'000, u' '));
    row("a million breaks", QString(1'000'000, u'\n'));
    row("a million ampersands", QString(1'000'000, u'&'));
    row("a million marks", QString(1'000'000, QChar(0x0301)));
    row("a million Arabic letters", QString(1'000'000, QChar(0x0628)));
    row("characters as wide as a sentence", QString(100, QChar(0xFDFD)));
}

/// Whether the text holds no line break and no other control character.
inline bool isOneLine(const QString& text) {
    return std::none_of(text.begin(), text.end(), [](QChar c) {
        return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
               c == QChar::ParagraphSeparator;
    });
}

/// Every line of the collection of naughty strings; empty where it is not installed.
inline QByteArrayList naughtyStrings() {
    const QDir folder(samplePath(u"strings"));
    QByteArrayList lines;
    for (const QString& name : folder.entryList(QDir::Files)) {
        QFile file(folder.filePath(name));
        if (file.open(QIODevice::ReadOnly)) {
            lines += file.readAll().split('\n');
        }
    }
    return lines;
}

/// Calls `check` with each of the naughty strings until the test fails. Skips the test where they
/// are not installed.
template <typename Check>
void checkNaughtyStrings(Check check) {
    const QByteArrayList texts = naughtyStrings();
    if (texts.isEmpty()) {
        QSKIP("there is no collection of texts at BRIMLET_CORPORA");
    }
    QVERIFY(texts.size() > 100);
    for (const QByteArray& text : texts) {
        check(QString::fromUtf8(text));
        if (QTest::currentTestFailed()) {
            qInfo("the text was %s", text.constData());
            return;
        }
    }
}

} // namespace brimlet
