#include "creative/boundedmarks.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;
using namespace Qt::StringLiterals;

class TestBoundedMarks final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void noMoreThanThirtyMarksFollowOneAnother_data() {
        QTest::addColumn<QString>("text");
        QTest::addColumn<QString>("bounded");
        const auto row = [](const char* name, const QString& text, const QString& bounded) {
            QTest::newRow(name) << text << bounded;
        };
        const QString marks(30, QChar(0x0301));
        row("nothing", {}, {});
        row("plain", u"abc"_s, u"abc"_s);
        row("just below", u'a' + marks.first(29) + u'b', u'a' + marks.first(29) + u'b');
        row("at the limit", u'a' + marks + u'b', u'a' + marks + u'b');
        row("just above", u'a' + marks + QChar(0x0302) + u'b', u'a' + marks + u'b');
        row("far above", u'a' + QString(5'000, QChar(0x0301)), u'a' + marks);
        row("two runs", u'a' + marks + marks + u'b' + marks + marks, u'a' + marks + u'b' + marks);
        row("marks of two units", u"\U0001D165"_s.repeated(31), u"\U0001D165"_s.repeated(30));
        row("marks alone", marks + marks, marks);
        row("lone surrogates", QString(100, QChar(0xD800)), QString(100, QChar(0xD800)));
        const QString vowels = u"\u0915\u093F"_s.repeated(100);
        row("a script that is written with marks", vowels, vowels);
    }
    void noMoreThanThirtyMarksFollowOneAnother() {
        QFETCH(QString, text);
        QTEST(withBoundedMarks(text), "bounded");
    }

    void aTextWithFewMarksIsNotCopied() {
        const QString text(5, u'a');
        QVERIFY(withBoundedMarks(text).isSharedWith(text));
    }
};

BRIMLET_TEST(TestBoundedMarks, brimlet::NoApplication)
#include "tst_boundedmarks.moc"
