#include "platform/onceperturn.h"
#include "tests/support/testprogram.h"

#include <QTest>

#include <memory>

using namespace brimlet;

class TestOncePerTurn final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void workScheduledSeveralTimesIsDoneOnceInALaterTurn() {
        int done = 0;
        OncePerTurn work([&done] { ++done; });
        QVERIFY(!work.isDue());
        for (int i = 0; i < 3; ++i) {
            work.schedule();
            QVERIFY(work.isDue());
        }
        QCOMPARE(done, 0);
        QCoreApplication::processEvents();
        QCOMPARE(done, 1);
        QVERIFY(!work.isDue());
        QCoreApplication::processEvents();
        QCOMPARE(done, 1);
    }

    void workThatIsDoneCanBeScheduledAgain() {
        int done = 0;
        OncePerTurn work([&done] { ++done; });
        for (int turn = 1; turn <= 2; ++turn) {
            work.schedule();
            QCoreApplication::processEvents();
            QCOMPARE(done, turn);
        }
    }

    void workMayScheduleItself() {
        int done = 0;
        OncePerTurn* self = nullptr;
        OncePerTurn work([&] {
            if (++done == 1) {
                self->schedule();
            }
        });
        self = &work;
        work.schedule();
        QTRY_COMPARE(done, 2);
        QVERIFY(!work.isDue());
    }

    void destroyedBeforeItsTurnItDoesNothing() {
        int done = 0;
        auto work = std::make_unique<OncePerTurn>([&done] { ++done; });
        work->schedule();
        work.reset();
        QCoreApplication::processEvents();
        QCOMPARE(done, 0);
    }

    void itIsASlotAndDestroyedWithItsParent() {
        int done = 0;
        QObject sender;
        auto parent = std::make_unique<QObject>();
        auto* const work = new OncePerTurn([&done] { ++done; }, parent.get());
        connect(&sender, &QObject::objectNameChanged, work, &OncePerTurn::schedule);
        sender.setObjectName(QStringLiteral("first"));
        sender.setObjectName(QStringLiteral("second"));
        QCoreApplication::processEvents();
        QCOMPARE(done, 1);
        sender.setObjectName(QStringLiteral("third"));
        parent.reset();
        QCoreApplication::processEvents();
        QCOMPARE(done, 1);
    }
};

BRIMLET_TEST(TestOncePerTurn, QCoreApplication)
#include "tst_onceperturn.moc"
