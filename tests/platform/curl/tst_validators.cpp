#include "platform/curl/validators.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

class TestValidators final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void onlyAWellFormedEtagCounts_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("counts");
        QTest::newRow("strong") << QByteArray("\"a1-b2\"") << true;
        QTest::newRow("weak") << QByteArray("W/\"a1\"") << true;
        QTest::newRow("empty quotes") << QByteArray("\"\"") << true;
        QTest::newRow("comma inside") << QByteArray("\"a,b\"") << true;
        QTest::newRow("256 bytes") << '"' + QByteArray(254, 'x') + '"' << true;
        QTest::newRow("257 bytes") << '"' + QByteArray(255, 'x') + '"' << false;
        QTest::newRow("weak, 256 bytes") << "W/\"" + QByteArray(252, 'x') + '"' << true;
        QTest::newRow("weak, 257 bytes") << "W/\"" + QByteArray(253, 'x') + '"' << false;
        QTest::newRow("nothing") << QByteArray() << false;
        QTest::newRow("no quotes") << QByteArray("a1") << false;
        QTest::newRow("one quote") << QByteArray("\"") << false;
        QTest::newRow("not closed") << QByteArray("\"a1") << false;
        QTest::newRow("not opened") << QByteArray("a1\"") << false;
        QTest::newRow("quote inside") << QByteArray("\"a\"b\"") << false;
        QTest::newRow("two in one") << QByteArray("\"a\", \"b\"") << false;
        QTest::newRow("star") << QByteArray("*") << false;
        QTest::newRow("lower mark") << QByteArray("w/\"a\"") << false;
        QTest::newRow("mark alone") << QByteArray("W/") << false;
        QTest::newRow("mark twice") << QByteArray("W/W/\"a\"") << false;
        QTest::newRow("blank inside") << QByteArray("\"a b\"") << false;
        QTest::newRow("tab inside") << QByteArray("\"a\tb\"") << false;
        QTest::newRow("NUL inside") << QByteArray("\"a\0b\"", 5) << false;
        QTest::newRow("line feed inside") << QByteArray("\"a\nb\"") << false;
        QTest::newRow("carriage return inside") << QByteArray("\"a\rb\"") << false;
        QTest::newRow("DEL inside") << QByteArray("\"a\x7F\"") << false;
        QTest::newRow("not ASCII") << QByteArray("\"\xC3\xA9\"") << false;
    }

    void onlyAWellFormedEtagCounts() {
        QFETCH(const QByteArray, value);
        QFETCH(const bool, counts);
        Validators validators;
        validators.add("eTAG", value);
        QCOMPARE(validators.etag(), counts ? value : QByteArray());
        QCOMPARE(validators.mayKeep(), counts);
    }

    void onlyAPrintableDateCounts_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("counts");
        QTest::newRow("date") << QByteArray("Sat, 01 Aug 2026 10:00:00 GMT") << true;
        QTest::newRow("256 bytes") << QByteArray(256, 'x') << true;
        QTest::newRow("257 bytes") << QByteArray(257, 'x') << false;
        QTest::newRow("nothing") << QByteArray() << false;
        QTest::newRow("line break") << QByteArray("Sat\r\nX: y") << false;
        QTest::newRow("NUL") << QByteArray("a\0b", 3) << false;
        QTest::newRow("not ASCII") << QByteArray("\xC3\xA9") << false;
    }

    void onlyAPrintableDateCounts() {
        QFETCH(const QByteArray, value);
        QFETCH(const bool, counts);
        Validators validators;
        validators.add("Last-Modified", value);
        QCOMPARE(validators.lastModified(), counts ? value : QByteArray());
        QCOMPARE(validators.mayKeep(), counts);
    }

    void aValidatorGivenTwiceIsIgnored() {
        Validators validators;
        validators.add("ETag", "\"a\"");
        validators.add("etag", "\"a\"");
        validators.add("ETag", "\"a\"");
        validators.add("Last-Modified", "then");
        validators.add("Last-Modified", "now");
        QCOMPARE(validators.etag(), QByteArray());
        QCOMPARE(validators.lastModified(), QByteArray());
        QVERIFY(!validators.mayKeep());
    }

    void theServiceMayForbidKeepingAReply_data() {
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("mayKeep");
        QTest::newRow("no-store") << QByteArray("Cache-Control") << QByteArray("no-store") << false;
        QTest::newRow("in a list")
            << QByteArray("cache-control") << QByteArray("private,  No-Store ,max-age=0") << false;
        QTest::newRow("with an argument")
            << QByteArray("Cache-Control") << QByteArray("no-store=x") << false;
        QTest::newRow("no-cache") << QByteArray("Cache-Control") << QByteArray("no-cache") << true;
        QTest::newRow("max-age") << QByteArray("Cache-Control") << QByteArray("max-age=0") << true;
        QTest::newRow("a longer word")
            << QByteArray("Cache-Control") << QByteArray("no-stores") << true;
        QTest::newRow("varies with anything") << QByteArray("Vary") << QByteArray("*") << false;
        QTest::newRow("varies, in a list")
            << QByteArray("vary") << QByteArray("Accept, *") << false;
        QTest::newRow("varies with a header")
            << QByteArray("Vary") << QByteArray("Authorization") << true;
    }

    void theServiceMayForbidKeepingAReply() {
        QFETCH(const QByteArray, name);
        QFETCH(const QByteArray, value);
        Validators validators;
        validators.add("ETag", "\"a\"");
        validators.add(name, value);
        QTEST(validators.mayKeep(), "mayKeep");
        validators.add(name, "other");
        QTEST(validators.mayKeep(), "mayKeep");
    }

    void a304WithAnotherValidatorDisagrees_data() {
        QTest::addColumn<QByteArray>("keptTag");
        QTest::addColumn<QByteArray>("keptDate");
        QTest::addColumn<QByteArray>("tag");
        QTest::addColumn<QByteArray>("date");
        QTest::addColumn<bool>("agrees");
        const QByteArray a = "\"a\"";
        const QByteArray none;
        QTest::newRow("no validator") << a << none << none << none << true;
        QTest::newRow("the same") << a << none << a << none << true;
        QTest::newRow("the same, but weak") << a << none << "W/" + a << none << true;
        QTest::newRow("weak kept") << "W/" + a << none << a << none << true;
        QTest::newRow("another") << a << none << QByteArray("\"b\"") << none << false;
        QTest::newRow("another date aside")
            << a << QByteArray("then") << a << QByteArray("now") << true;
        QTest::newRow("the same date")
            << none << QByteArray("then") << none << QByteArray("then") << true;
        QTest::newRow("another date")
            << none << QByteArray("then") << none << QByteArray("now") << false;
        QTest::newRow("no date") << none << QByteArray("then") << a << none << true;
    }

    void a304WithAnotherValidatorDisagrees() {
        QFETCH(const QByteArray, keptTag);
        QFETCH(const QByteArray, keptDate);
        QFETCH(const QByteArray, tag);
        QFETCH(const QByteArray, date);
        Validators kept;
        kept.add("ETag", keptTag);
        kept.add("Last-Modified", keptDate);
        Validators reply;
        reply.add("ETag", tag);
        reply.add("Last-Modified", date);
        QTEST(reply.agreesWith(kept), "agrees");
    }
};

BRIMLET_TEST(TestValidators, QCoreApplication)
#include "tst_validators.moc"
