#include "tests/support/hostfixture.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

constexpr qint64 kLargest = std::numeric_limits<qint64>::max();
constexpr qint64 kSmallest = std::numeric_limits<qint64>::min();

/// A JSON value, and what a field of each type reads from it.
struct Value final {
    const char* name;
    QByteArray text;
    std::optional<qint64> whole{};
    std::optional<bool> truth{};
    std::optional<QString> string{};
};

/// A missing key, and every kind of JSON value.
std::vector<Value> values() {
    return {{.name = "missing", .text = {}},
            {.name = "null", .text = "null"},
            {.name = "true", .text = "true", .truth = true},
            {.name = "false", .text = "false", .truth = false},
            {.name = "0", .text = "0", .whole = 0, .truth = false},
            {.name = "1", .text = "1", .whole = 1, .truth = true},
            {.name = "1.0", .text = "1.0", .whole = 1, .truth = true},
            {.name = "2", .text = "2", .whole = 2},
            {.name = "-1", .text = "-1", .whole = -1},
            {.name = "whole", .text = "1234", .whole = 1234},
            {.name = "whole with a point", .text = "1234.0", .whole = 1234},
            {.name = "whole with a power", .text = "1234e0", .whole = 1234},
            {.name = "fraction", .text = "1234.5"},
            {.name = "1e400", .text = "1e400"},
            {.name = "-1e400", .text = "-1e400"},
            {.name = "2^63-1", .text = "9223372036854775807", .whole = kLargest},
            {.name = "2^63", .text = "9223372036854775808"},
            {.name = "-2^63", .text = "-9223372036854775808", .whole = kSmallest},
            {.name = "-2^63-1", .text = "-9223372036854775809"},
            {.name = "text", .text = R"("text")", .string = QStringLiteral("text")},
            {.name = "a number as text", .text = R"("1234")", .string = QStringLiteral("1234")},
            {.name = "true as text", .text = R"("true")", .string = QStringLiteral("true")},
            {.name = "empty text", .text = R"("")", .string = QStringLiteral("")},
            {.name = "array", .text = R"(["text"])"},
            {.name = "array of numbers", .text = "[1]"},
            {.name = "empty array", .text = "[]"},
            {.name = "object", .text = R"({"text":"text"})"},
            {.name = "empty object", .text = "{}"}};
}

/// A reply with that value in the field, or without the field for the missing value.
QByteArray replyWith(const char* key, const Value& value) {
    return value.text.isEmpty() ? QByteArray("{}")
                                : "{\"" + QByteArray(key) + "\":" + value.text + '}';
}

/// A store after a reply with a value other than the default in each field.
struct FullStore final {
    FullStore() {
        host.keepToken("t");
        store = host.makeStore();
        host.http.answer(QStringLiteral("/api/host/me"), 200,
                         R"({"creatives":[{"slotId":"left"},{"slotId":"right"}],
                             "weekStatus":"live","estimatedCents":11,"pendingStipendCents":12,
                             "liveHostCount":13,"liveDaysThisWeek":14,"liveBucketsToday":15,
                             "liveBucketsNeeded":16,"forceHide":true,"agreed":true,
                             "fromApplications":false,"agreementText":"terms"})");
        startTask(store->refreshEstimate());
    }

    const Assignment& afterHostReply(const QByteArray& body) {
        host.http.answer(QStringLiteral("/api/host/me"), 200, body);
        startTask(store->refreshEstimate());
        return store->assignment();
    }
    const Assignment& afterDisplayReply(const QByteArray& body) {
        host.http.answer(QStringLiteral("/api/display"), 200, body);
        startTask(store->refreshDisplay());
        return store->assignment();
    }

    HostFixture host;
    std::shared_ptr<HostStore> store;
};

} // namespace

/// Each field of each reply with each kind of value: the field has the value or its default, and no
/// other field changes.
class TestReplyFields final : public QObject {
    Q_OBJECT

    static void addRows(const std::vector<const char*>& fields) {
        QTest::addColumn<QByteArray>("field");
        QTest::addColumn<int>("value");
        const auto all = values();
        for (const char* field : fields) {
            for (std::size_t i = 0; i < all.size(); ++i) {
                QTest::addRow("%s: %s", field, all.at(i).name)
                    << QByteArray(field) << static_cast<int>(i);
            }
        }
    }
    static Value fetchedValue() {
        QFETCH(int, value);
        return values().at(static_cast<std::size_t>(value));
    }

private Q_SLOTS:
    void aFieldOfADisplayReplyHasItsValueOrDefault_data() {
        addRows({"weekStatus", "forceHide", "creatives", "estimatedCents", "agreed",
                 "agreementText", "fromApplications"});
    }
    void aFieldOfADisplayReplyHasItsValueOrDefault() {
        QFETCH(QByteArray, field);
        const Value value = fetchedValue();
        FullStore full;
        Assignment expected = full.store->assignment();
        expected.left.reset();
        expected.right.reset();
        expected.weekStatus = field == "weekStatus"
                                  ? value.string.value_or(QStringLiteral("unfilled"))
                                  : QStringLiteral("unfilled");
        expected.forceHide = field == "forceHide" && value.truth.value_or(false);
        QCOMPARE(full.afterDisplayReply(replyWith(field.constData(), value)), expected);
    }

    void aFieldOfAHostReplyHasItsValueOrDefault_data() {
        addRows({"weekStatus", "estimatedCents", "pendingStipendCents", "liveHostCount",
                 "liveDaysThisWeek", "liveBucketsToday", "liveBucketsNeeded", "forceHide", "agreed",
                 "fromApplications", "agreementText", "creatives"});
    }
    void aFieldOfAHostReplyHasItsValueOrDefault() {
        QFETCH(QByteArray, field);
        const Value value = fetchedValue();
        FullStore full;
        Assignment expected = initialAssignment(true);
        expected.agreementText = QStringLiteral("terms"); // kept where a reply has none
        const auto whole = [&](const char* key, std::int64_t& number) {
            number = field == key ? value.whole.value_or(number) : number;
        };
        const auto truth = [&](const char* key, bool& isTrue) {
            isTrue = field == key ? value.truth.value_or(isTrue) : isTrue;
        };
        const auto string = [&](const char* key, QString& text) {
            text = field == key ? value.string.value_or(text) : text;
        };
        string("weekStatus", expected.weekStatus);
        whole("estimatedCents", expected.estimatedCents);
        whole("pendingStipendCents", expected.pendingStipendCents);
        whole("liveHostCount", expected.liveHostCount);
        whole("liveDaysThisWeek", expected.liveDaysThisWeek);
        whole("liveBucketsToday", expected.liveBucketsToday);
        whole("liveBucketsNeeded", expected.liveBucketsNeeded);
        truth("forceHide", expected.forceHide);
        truth("agreed", expected.agreed);
        truth("fromApplications", expected.fromApplications);
        string("agreementText", expected.agreementText);
        QCOMPARE(full.afterHostReply(replyWith(field.constData(), value)), expected);
    }

    void aFieldOfACreativeHasItsValueOrDefault_data() {
        addRows({"slotId", "brandName", "copy", "tagline", "assetUrl", "brandUrl"});
    }
    void aFieldOfACreativeHasItsValueOrDefault() {
        QFETCH(QByteArray, field);
        const Value value = fetchedValue();
        SlotCreative expected;
        expected.slotId = QStringLiteral("left");
        const bool hasSlot = field != "slotId"; // no value in the table is a valid slot
        if (field == "brandName") {
            expected.brandName = value.string.value_or(QString());
        } else if (field == "copy" || field == "tagline") {
            expected.tagline = value.string.value_or(QString());
        } else if (field == "assetUrl") {
            expected.assetURL = Url::fromString(value.string.value_or(QString()));
        } else if (field == "brandUrl") {
            expected.brandURL = Url::fromString(value.string.value_or(QString()));
        }
        QByteArray creative = replyWith(field.constData(), value);
        if (hasSlot) {
            creative.chop(1);
            creative += (creative.size() > 1 ? "," : "") + QByteArray("\"slotId\":\"left\"}");
        }
        const QByteArray reply = "{\"creatives\":[" + creative + "]}";
        FullStore full;
        const auto shown = hasSlot ? std::optional(expected) : std::nullopt;
        QCOMPARE(full.afterHostReply(reply).left, shown);
        QVERIFY(!full.store->assignment().right);
        QCOMPARE(full.afterDisplayReply("{}").left, std::nullopt);
        QCOMPARE(full.afterDisplayReply(reply).left, shown);
    }
};

BRIMLET_TEST(TestReplyFields, QCoreApplication)
#include "tst_replyfields.moc"
