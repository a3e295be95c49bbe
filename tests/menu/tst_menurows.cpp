#include "menu/menurows.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

Assignment quietWeek() {
    Assignment week;
    week.agreed = true;
    week.fromApplications = true;
    return week;
}

SlotCreative brand(const char* slot) {
    SlotCreative creative;
    creative.slotId = QString::fromLatin1(slot);
    return creative;
}

} // namespace

class TestMenuRows final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void eachRowHasItsCondition_data() {
        QTest::addColumn<bool>("hasNotch");
        QTest::addColumn<bool>("hasLeft");
        QTest::addColumn<bool>("hasRight");
        QTest::addColumn<bool>("agreed");
        QTest::addColumn<bool>("fromApplications");
        QTest::addColumn<qint64>("hosts");
        QTest::addColumn<qint64>("cents");
        for (const bool notch : {true, false}) {
            for (const bool left : {true, false}) {
                for (const bool right : {true, false}) {
                    for (const bool agreed : {true, false}) {
                        for (const bool applications : {true, false}) {
                            for (const qint64 hosts : {-1, 0, 1, 2}) {
                                for (const qint64 cents : {-1, 0, 1, 1500}) {
                                    QTest::addRow("notch %d left %d right %d agreed %d "
                                                  "applications %d hosts %lld cents %lld",
                                                  notch, left, right, agreed, applications, hosts,
                                                  cents)
                                        << notch << left << right << agreed << applications << hosts
                                        << cents;
                                }
                            }
                        }
                    }
                }
            }
        }
    }
    void eachRowHasItsCondition() {
        QFETCH(bool, hasNotch);
        QFETCH(bool, hasLeft);
        QFETCH(bool, hasRight);
        QFETCH(bool, agreed);
        QFETCH(bool, fromApplications);
        QFETCH(qint64, hosts);
        QFETCH(qint64, cents);
        Assignment week = quietWeek();
        if (hasLeft) {
            week.left = brand("left");
        }
        if (hasRight) {
            week.right = brand("right");
        }
        week.agreed = agreed;
        week.fromApplications = fromApplications;
        week.liveHostCount = hosts;
        week.pendingStipendCents = cents;
        const MenuRows rows = menuRows(week, hasNotch);
        QCOMPARE(rows.notchedOnly, !hasNotch);
        QCOMPARE(rows.moveToApplications, !fromApplications);
        QCOMPARE(rows.leftPanel, hasLeft);
        QCOMPARE(rows.rightPanel, hasRight);
        QCOMPARE(rows.noBrand, !(hasLeft || hasRight));
        QCOMPARE(rows.split, hosts > 0);
        QCOMPARE(rows.banked, cents > 0);
        QCOMPARE(rows.agreement, !agreed);
    }
};

BRIMLET_TEST(TestMenuRows, QCoreApplication)
#include "tst_menurows.moc"
