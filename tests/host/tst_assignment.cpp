#include "host/assignment.h"
#include "tests/support/testprogram.h"

#include <QTest>

#include <functional>

using namespace brimlet;

Q_DECLARE_METATYPE(std::function<void(Assignment&)>)
Q_DECLARE_METATYPE(std::function<void(SlotCreative&)>)

class TestAssignment final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theInitialAssignmentIsUnfilled() {
        for (const bool fromApplications : {false, true}) {
            const Assignment initial = initialAssignment(fromApplications);
            QCOMPARE(initial.weekStatus, QStringLiteral("unfilled"));
            QCOMPARE(initial.estimatedCents, 0);
            QCOMPARE(initial.pendingStipendCents, 0);
            QCOMPARE(initial.liveHostCount, 0);
            QCOMPARE(initial.liveDaysThisWeek, 0);
            QCOMPARE(initial.liveBucketsToday, 0);
            QCOMPARE(initial.liveBucketsNeeded, 4);
            QCOMPARE(initial.forceHide, false);
            QCOMPARE(initial.agreed, false);
            QCOMPARE(initial.fromApplications, fromApplications);
            QCOMPARE(initial.agreementText, QString());
            QVERIFY(!initial.left);
            QVERIFY(!initial.right);
        }
    }

    void assignmentsDifferInEachField_data() {
        using Change = std::function<void(Assignment&)>;
        QTest::addColumn<Change>("change");
        const auto text = QStringLiteral("x");
        QTest::newRow("weekStatus") << Change([=](Assignment& a) { a.weekStatus = text; });
        QTest::newRow("estimatedCents") << Change([](Assignment& a) { a.estimatedCents = 1; });
        QTest::newRow("pendingStipendCents")
            << Change([](Assignment& a) { a.pendingStipendCents = 1; });
        QTest::newRow("liveHostCount") << Change([](Assignment& a) { a.liveHostCount = 1; });
        QTest::newRow("liveDaysThisWeek") << Change([](Assignment& a) { a.liveDaysThisWeek = 1; });
        QTest::newRow("liveBucketsToday") << Change([](Assignment& a) { a.liveBucketsToday = 1; });
        QTest::newRow("liveBucketsNeeded")
            << Change([](Assignment& a) { a.liveBucketsNeeded = 1; });
        QTest::newRow("forceHide") << Change([](Assignment& a) { a.forceHide = true; });
        QTest::newRow("agreed") << Change([](Assignment& a) { a.agreed = true; });
        QTest::newRow("fromApplications")
            << Change([](Assignment& a) { a.fromApplications = true; });
        QTest::newRow("agreementText") << Change([=](Assignment& a) { a.agreementText = text; });
        QTest::newRow("left") << Change([](Assignment& a) { a.left.emplace(); });
        QTest::newRow("right") << Change([](Assignment& a) { a.right.emplace(); });
    }
    void assignmentsDifferInEachField() {
        QFETCH(std::function<void(Assignment&)>, change);
        const Assignment before = initialAssignment(false);
        Assignment after = before;
        QVERIFY(before == after);
        change(after);
        QVERIFY(before != after);
    }

    void creativesDifferInEachField_data() {
        using Change = std::function<void(SlotCreative&)>;
        QTest::addColumn<Change>("change");
        const auto text = QStringLiteral("x");
        const auto url = Url::fromString(u"https://a.test/");
        QTest::newRow("slotId") << Change([=](SlotCreative& c) { c.slotId = text; });
        QTest::newRow("brandName") << Change([=](SlotCreative& c) { c.brandName = text; });
        QTest::newRow("tagline") << Change([=](SlotCreative& c) { c.tagline = text; });
        QTest::newRow("assetURL") << Change([=](SlotCreative& c) { c.assetURL = url; });
        QTest::newRow("brandURL") << Change([=](SlotCreative& c) { c.brandURL = url; });
    }
    void creativesDifferInEachField() {
        QFETCH(std::function<void(SlotCreative&)>, change);
        std::optional<SlotCreative> before(std::in_place);
        std::optional<SlotCreative> after(std::in_place);
        QVERIFY(before == after);
        change(*after);
        QVERIFY(before != after);
        QVERIFY(std::optional<SlotCreative>() != after);
        QVERIFY(std::optional<SlotCreative>() == std::optional<SlotCreative>());
    }
};

BRIMLET_TEST(TestAssignment, brimlet::NoApplication)
#include "tst_assignment.moc"
