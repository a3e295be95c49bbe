#include "host/hoststore.h"
#include "host/replyreader.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace brimlet;

namespace {

Json object(const QByteArray& text) {
    auto json = parseJson(text);
    if (!json) {
        qFatal("the test's own JSON is malformed: %s", text.constData());
    }
    return *json;
}

QByteArray valueRow(const QByteArray& value) {
    return "{\"key\":" + value + "}";
}

} // namespace

class TestReplyReading final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void integersAreWholeNumbersOfSixtyFourBits_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<bool>("isThere");
        QTest::addColumn<qint64>("number");
        const auto row = [](const char* value, bool isThere, qint64 number) {
            QTest::newRow(value) << QByteArray(value) << isThere << number;
        };
        row("1234", true, 1234);
        row("1234.0", true, 1234);
        row("1e3", true, 1000);
        row("12.5e1", true, 125);
        row("0", true, 0);
        row("1", true, 1);
        row("2", true, 2);
        row("-0", true, 0);
        row("-0.0", true, 0);
        row("-50", true, -50);
        row("9223372036854775807", true, std::numeric_limits<qint64>::max());
        row("-9223372036854775808", true, std::numeric_limits<qint64>::min());
        row("-9223372036854775808.0", true, std::numeric_limits<qint64>::min());
        row("9223372036854775807.0", true, std::numeric_limits<qint64>::max());
        row("9223372036854775807.5", false, 0);
        row("1234567890123456789.5", false, 0);
        row("1234567890123456789", true, 1234567890123456789);
        row("0.1234e4", true, 1234);
        row("123400e-2", true, 1234);
        row("123400e-3", false, 0);
        row("1000000000000000000000e-3", true, 1000000000000000000);
        row("0e999999999999", true, 0);
        row("1e-999999999999", false, 0);
        row("1E+2", true, 100);
        row("9223372036854775808", false, 0);
        row("9223372036854775808.0", false, 0);
        row("-9223372036854775809", false, 0);
        row("18446744073709551615", false, 0);
        row("18446744073709551616", false, 0);
        row("1e19", false, 0);
        row("1e308", false, 0);
        row("1e400", false, 0);
        row("-1e400", false, 0);
        row("1234.5", false, 0);
        row("1e-3", false, 0);
        row("\"1234\"", false, 0);
        row("\"\"", false, 0);
        row("null", false, 0);
        row("true", false, 0);
        row("false", false, 0);
        row("[]", false, 0);
        row("[1]", false, 0);
        row("{}", false, 0);
    }
    void integersAreWholeNumbersOfSixtyFourBits() {
        QFETCH(QByteArray, value);
        QFETCH(bool, isThere);
        const auto read = readInteger(object(valueRow(value)), "key");
        QCOMPARE(read.has_value(), isThere);
        QTEST(qint64{read.value_or(0)}, "number");
    }

    void booleansAreTrueFalseOneAndZero_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<int>("truth"); // -1: absent
        const auto row = [](const char* value, int truth) {
            QTest::newRow(value) << QByteArray(value) << truth;
        };
        row("true", 1);
        row("false", 0);
        row("1", 1);
        row("0", 0);
        row("1.0", 1);
        row("0.0", 0);
        row("2", -1);
        row("-1", -1);
        row("0.5", -1);
        row("1e400", -1);
        row("\"true\"", -1);
        row("null", -1);
        row("[]", -1);
        row("{}", -1);
    }
    void booleansAreTrueFalseOneAndZero() {
        QFETCH(QByteArray, value);
        const auto read = readBoolean(object(valueRow(value)), "key");
        QTEST(read ? int{*read} : -1, "truth");
    }

    void stringsAreOnlyStrings_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QString>("string"); // null: absent
        const auto row = [](const char* value, const QString& string) {
            QTest::newRow(value) << QByteArray(value) << string;
        };
        row("\"live\"", QStringLiteral("live"));
        row("\"\"", QStringLiteral(""));
        row("\"\\u20ac 5\"", QStringLiteral("€ 5"));
        row("\"\\ud83d\\ude00\"", QStringLiteral("😀"));
        row("\"a\\u0000b\"", QString::fromUtf16(u"a\0b", 3));
        // U+FEFF at the start of a JSON string is part of the text.
        row("\"\\ufefflive\"", QStringLiteral("\ufefflive"));
        row("3", QString());
        row("true", QString());
        row("null", QString());
        row("[\"a\"]", QString());
        row("{}", QString());
    }
    void stringsAreOnlyStrings() {
        QFETCH(QByteArray, value);
        QFETCH(QString, string);
        const auto read = readString(object(valueRow(value)), "key");
        QCOMPARE(read.has_value(), !string.isNull());
        QCOMPARE(read.value_or(QString()), string);
    }

    void urlsAreStringsThatParse_data() {
        QTest::addColumn<QByteArray>("value");
        QTest::addColumn<QString>("address"); // null: absent
        const auto row = [](const char* value, const QString& address) {
            QTest::newRow(value) << QByteArray(value) << address;
        };
        row("\"https://a.test/x\"", QStringLiteral("https://a.test/x"));
        row("\"https://a.test/x y\"", QStringLiteral("https://a.test/x%20y"));
        row("\"ftp://a.test\"", QStringLiteral("ftp://a.test"));
        row("\"relative\"", QStringLiteral("relative"));
        row("\"\"", QString());
        row("\"http://a.test:port/\"", QString());
        row("\"https://[::1\"", QString());
        row("7", QString());
        row("null", QString());
    }
    void urlsAreStringsThatParse() {
        QFETCH(QByteArray, value);
        const auto read = readUrl(object(valueRow(value)), "key");
        QTEST(read ? read->absoluteString() : QString(), "address");
    }

    void aMissingKeyIsAbsent() {
        const Json empty = object("{}");
        QVERIFY(!readInteger(empty, "key"));
        QVERIFY(!readBoolean(empty, "key"));
        QVERIFY(!readString(empty, "key"));
        QVERIFY(!readUrl(empty, "key"));
        QVERIFY(readCreatives(empty).empty());
    }

    void anEmptyCreativeObjectGivesAnEmptyCreative() {
        QCOMPARE(HostStore::parseCreative(object("{}")), SlotCreative());
    }

    void allFieldsOfACreativeAreRead() {
        const auto creative = HostStore::parseCreative(
            object("{\"slotId\":\"left\",\"brandName\":\"Acme\",\"copy\":\"Fresh\","
                   "\"assetUrl\":\"https://a.test/i.png\",\"brandUrl\":\"https://a.test/\"}"));
        QCOMPARE(creative.slotId, QStringLiteral("left"));
        QCOMPARE(creative.brandName, QStringLiteral("Acme"));
        QCOMPARE(creative.tagline, QStringLiteral("Fresh"));
        QCOMPARE(creative.assetURL->absoluteString(), QStringLiteral("https://a.test/i.png"));
        QCOMPARE(creative.brandURL->absoluteString(), QStringLiteral("https://a.test/"));
    }

    void keysThatEndInCapitalUrlAreIgnored() {
        const auto creative =
            HostStore::parseCreative(object(R"({"assetURL":"ftp:a","brandURL":"ftp:a"})"));
        QVERIFY(!creative.assetURL);
        QVERIFY(!creative.brandURL);
    }

    void copyComesBeforeTagline_data() {
        QTest::addColumn<QByteArray>("creative");
        QTest::addColumn<QString>("tagline");
        QTest::newRow("both copy and tagline: copy")
            << QByteArray(R"({"copy":"c","tagline":"t"})") << QStringLiteral("c");
        QTest::newRow("copy a number: tagline")
            << QByteArray(R"({"copy":3,"tagline":"t"})") << QStringLiteral("t");
        QTest::newRow("empty copy counts")
            << QByteArray(R"({"copy":"","tagline":"t"})") << QStringLiteral("");
        QTest::newRow("tagline alone") << QByteArray(R"({"tagline":"t"})") << QStringLiteral("t");
        QTest::newRow("tagline no string") << QByteArray(R"({"tagline":[]})") << QStringLiteral("");
    }
    void copyComesBeforeTagline() {
        QFETCH(QByteArray, creative);
        QTEST(HostStore::parseCreative(object(creative)).tagline, "tagline");
    }

    void anEmptyAssetUrlIsAbsent() {
        QVERIFY(!HostStore::parseCreative(object(R"({"assetUrl":""})")).assetURL);
    }

    void creativesAreAnArrayOfObjects_data() {
        QTest::addColumn<QByteArray>("creatives");
        QTest::addColumn<int>("count");
        QTest::newRow("empty") << QByteArray("[]") << 0;
        QTest::newRow("two") << QByteArray("[{},{}]") << 2;
        QTest::newRow("one element no object") << QByteArray(R"([{"slotId":"left"},3])") << 0;
        QTest::newRow("a null among them") << QByteArray(R"([{"slotId":"left"},null])") << 0;
        QTest::newRow("a map") << QByteArray(R"({"left":{}})") << 0;
        QTest::newRow("a string") << QByteArray(R"("left")") << 0;
        QTest::newRow("null") << QByteArray("null") << 0;
    }
    void creativesAreAnArrayOfObjects() {
        QFETCH(QByteArray, creatives);
        const auto read = readCreatives(object("{\"creatives\":" + creatives + "}"));
        QTEST(static_cast<int>(read.size()), "count");
    }

    void theFirstCreativeOfASlotIsTaken() {
        const auto creatives = readCreatives(object(
            R"({"creatives":[{"slotId":"Left","brandName":"0"},{"slotId":"\ufeffleft"},
                {"slotId":"left","brandName":"1"},{"slotId":"left","brandName":"2"},{}]})"));
        QCOMPARE(creatives.size(), std::size_t{5});
        const auto left = creativeOfSlot(creatives, QLatin1StringView("left"));
        QVERIFY(left);
        QCOMPARE(left->brandName, QStringLiteral("1"));
        QVERIFY(!creativeOfSlot(creatives, QLatin1StringView("right")));
    }

    void tenThousandCreativesAreRead() {
        QByteArray list;
        for (int i = 0; i < 10'000; ++i) {
            list += R"({"slotId":"x"},)";
        }
        const auto read = readCreatives(object("{\"creatives\":[" + list + "{}]}"));
        QCOMPARE(read.size(), std::size_t{10'001});
    }

    void jsonIsReadStrictly_data() {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<bool>("isValid");
        const auto row = [](const char* body, bool isValid) {
            QTest::newRow(body) << QByteArray(body) << isValid;
        };
        row("{}", true);
        row("[]", true);
        row("3", true);
        row("\"x\"", true);
        row("null", true);
        row(" {\"a\":1}\n", true);
        row("1e400", true);
        row("[1e400,\"1e400 \\\" 1e400\",{\"a\":-2E+999}]", true);
        row("[01e400]", false);
        row("[1e400.5]", false);
        row("[1e400", false);
        row("[+1e400]", false);
        row("", false);
        row("   ", false);
        row("{", false);
        row("{\"a\":1,}", false);
        row("{'a':1}", false);
        row("{} {}", false);
        row("// x\n{}", false);
        row("NaN", false);
        row("[1,]", false);
        row("\"\xff\"", false);
        row("\"\\ud800\"", false);
        row("<html></html>", false);
    }
    void jsonIsReadStrictly() {
        QFETCH(QByteArray, body);
        QTEST(parseJson(body).has_value(), "isValid");
    }

    void aNumberBeyondADoubleAffectsOnlyItsOwnField() {
        const Json reply = object(R"({"estimatedCents":1e400,"weekStatus":"live","a":"1e400"})");
        QVERIFY(!readInteger(reply, "estimatedCents"));
        QCOMPARE(readString(reply, "weekStatus").value_or(QString()), QStringLiteral("live"));
        QCOMPARE(readString(reply, "a").value_or(QString()), QStringLiteral("1e400"));
    }

    void ofEqualKeysTheLastOneCounts() {
        QCOMPARE(readInteger(object(R"({"a":1,"a":2})"), "a").value_or(0), 2);
        QVERIFY(!readInteger(object(R"({"a":1,"a":null})"), "a"));
    }

    void aByteOrderMarkBeforeTheTextIsSkipped() {
        QCOMPARE(readInteger(object("\xef\xbb\xbf{\"a\":1}"), "a").value_or(0), 1);
    }

    void aMillionKeysAreRead() {
        QByteArray text = "{";
        for (int i = 0; i < 1'000'000; ++i) {
            text += '"' + QByteArray::number(i) + "\":1,";
        }
        QCOMPARE(readInteger(object(text + "\"last\":7}"), "last").value_or(0), 7);
    }

    void aFieldOfACreativeWithTheWrongTypeHasItsDefault_data() {
        QTest::addColumn<QByteArray>("value"); // empty: the key is missing
        QTest::newRow("missing") << QByteArray();
        for (const char* value : {"null", "true", "1", "1.5", "[]", "{}", "[\"a\"]"}) {
            QTest::newRow(value) << QByteArray(value);
        }
    }
    void aFieldOfACreativeWithTheWrongTypeHasItsDefault() {
        QFETCH(QByteArray, value);
        for (const char* key : {"slotId", "brandName", "copy", "tagline", "assetUrl", "brandUrl"}) {
            const QByteArray text = value.isEmpty()
                                        ? QByteArray("{}")
                                        : '{' + ('"' + QByteArray(key)) + "\":" + value + '}';
            QCOMPARE(HostStore::parseCreative(object(text)), SlotCreative());
        }
    }

    void aBodyIsAnObjectOtherJsonOrNoJson_data() {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("kind");
        QTest::newRow("object") << QByteArray("{}") << int(ReplyKind::Object);
        QTest::newRow("array") << QByteArray("[{}]") << int(ReplyKind::NotAnObject);
        QTest::newRow("null") << QByteArray("null") << int(ReplyKind::NotAnObject);
        QTest::newRow("empty") << QByteArray() << int(ReplyKind::NoJson);
        QTest::newRow("cut") << QByteArray("{\"weekStatus\":") << int(ReplyKind::NoJson);
    }
    void aBodyIsAnObjectOtherJsonOrNoJson() {
        QFETCH(QByteArray, body);
        QFETCH(int, kind);
        ReplyReader reader;
        QCOMPARE(int(reader.read(body)->kind), kind);
        QCOMPARE(int(reader.read(body)->kind), kind);
    }

    void theSameBytesAreParsedOnce() {
        const QByteArray body("{\"weekStatus\":\"live\",\"estimatedCents\":5}");
        ReplyReader reader;
        const auto first = reader.read(body);
        QCOMPARE(first->fields.weekStatus, std::optional(QStringLiteral("live")));
        QCOMPARE(first->fields.estimatedCents, std::optional<std::int64_t>(5));
        QVERIFY(!first->fields.agreed);
        QCOMPARE(reader.read(QByteArray(body.constData(), body.size())), first);

        const auto second = reader.read(QByteArray(body).replace('5', '6'));
        QCOMPARE(second->fields.estimatedCents, std::optional<std::int64_t>(6));
        QCOMPARE(first->fields.estimatedCents, std::optional<std::int64_t>(5));
        QVERIFY(reader.read(body) != first);
    }

    void aVeryLongReplyIsParsedEachTime() {
        const QByteArray body = "{\"weekStatus\":\"" + QByteArray(65'536, 'x') + "\"}";
        ReplyReader reader;
        const auto first = reader.read(body);
        QCOMPARE(first->fields.weekStatus->size(), 65'536);
        const auto again = reader.read(body);
        QVERIFY(again != first);
        QCOMPARE(again->fields.weekStatus, first->fields.weekStatus);
        QCOMPARE(int(reader.read(QByteArray())->kind), int(ReplyKind::NoJson));
    }

    void aNulByteDoesNotEndTheText() {
        QVERIFY(!parseJson(QByteArray("{}\0", 3)));
        QVERIFY(!parseJson(QByteArray("{}\0}", 4)));
    }

    void deepNestingIsParsed() {
        constexpr int kDepth = 100'000;
        QVERIFY(parseJson(QByteArray(kDepth, '[') + QByteArray(kDepth, ']')));
        QVERIFY(!parseJson(QByteArray(kDepth, '[')));
    }

    void theSampleFilesAreAcceptedOrRejected() {
        const QDir folder(samplePath(u"json"));
        const QStringList names = folder.entryList({QStringLiteral("*.json")}, QDir::Files);
        if (names.isEmpty()) {
            QSKIP("no sample files: the folder BRIMLET_CORPORA/json is absent");
        }
        for (const QString& name : names) {
            QFile file(folder.filePath(name));
            QVERIFY(file.open(QIODevice::ReadOnly));
            const bool isValid = parseJson(file.readAll()).has_value();
            if (name.startsWith(QLatin1StringView("y_"))) {
                QVERIFY2(isValid, qPrintable(name));
            } else if (name.startsWith(QLatin1StringView("n_"))) {
                QVERIFY2(!isValid, qPrintable(name));
            }
        }
    }
};

BRIMLET_TEST(TestReplyReading, brimlet::NoApplication)
#include "tst_replyreading.moc"
