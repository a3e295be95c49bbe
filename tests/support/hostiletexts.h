#pragma once

#include "tests/support/testpaths.h"

#include <QDir>
#include <QFile>
#include <QTest>

#include <optional>

namespace brimlet {

/// Adds rows of hostile texts to the test's column "text".
inline void addHostileTexts() {
    QTest::addColumn<QString>("text");
    const auto row = [](const char* name, const QString& text) { QTest::newRow(name) << text; };
    row("nothing", {});
    row("markup", u"<h1>big</h1><img src='file:///etc/passwd'>"_qs);
    row("the tooltip's own end", u"</span><b>x"_qs);
    row("ampersand", u"R&D &amp; &lt;b&gt; &"_qs);
    row("places", u"%1 %2 %n %L1 %%1"_qs);
    row("tab and breaks", u"a\tb\nc\r\nd\u2028e\u2029f\vg\fh\u0085i"_qs);
    row("NUL", QString::fromUtf16(u"a\0b", 3));
    row("lone surrogates", QString(300, QChar(0xD800)));
    row("lone low surrogates", QString(300, QChar(0xDC00)) + u'x');
    row("no characters", u"\uFFFE\uFFFF\uFEFF"_qs);
    row("right to left",
        u"\u0645\u0631\u062D\u0628\u0627 \u05E9\u05DC\u05D5\u05DD "_qs.repeated(50));
    row("overrides", u"\u202Eabc\u202C \u2066x\u2069 \u2067y"_qs);
    row("overrides without end", u"\u202E\u202D\u2067\u2068\u202B"_qs.repeated(200) + u'x');
    row("5 000 marks", u'a' + QString(5'000, QChar(0x0301)));
    row("5 000 marks of nothing", QString(5'000, QChar(0x0489)));
    row("5 000 joined", u"\U0001F468\u200D"_qs.repeated(5'000));
    row("a million letters", QString(1'000'000, u'W'));
    row("a million words", u"words "_qs.repeated(166'667));
    row("a million blanks", QString(1'000'000, u' '));
    row("a million breaks", QString(1'000'000, u'\n'));
    row("a million ampersands", QString(1'000'000, u'&'));
    row("a million marks", QString(1'000'000, QChar(0x0301)));
    row("a million Arabic letters", QString(1'000'000, QChar(0x0628)));
    row("as wide as a sentence", QString(100, QChar(0xFDFD)));
}

/// Every line of the collection of naughty strings; none where the collection is not installed.
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

} // namespace brimlet
