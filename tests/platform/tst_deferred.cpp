#include "platform/deferred.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

QCoro::Task<> store(Deferred<int> value, int& target) {
    target = co_await value;
}

} // namespace

class TestDeferred final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void resolvingResumesTheWaitingTaskAtOnce() {
        const Deferred<int> value;
        int seen = 0;
        const auto task = store(value, seen);
        QCOMPARE(seen, 0);
        value.resolve(7);
        QCOMPARE(seen, 7);
        QVERIFY(task.isReady());
    }

    void aResolvedValueIsNotWaitedFor() {
        const Deferred<int> value;
        value.resolve(7);
        int seen = 0;
        const auto task = store(value, seen);
        QCOMPARE(seen, 7);
    }

    void theFirstResolutionCounts() {
        const Deferred<int> value;
        int seen = 0;
        const auto task = store(value, seen);
        value.resolve(7);
        value.resolve(8);
        QCOMPARE(seen, 7);
    }

    void copiesShareTheValue() {
        int seen = 0;
        std::optional<Deferred<int>> first(std::in_place);
        const Deferred<int> second = *first;
        const auto task = store(second, seen);
        first->resolve(7);
        first.reset();
        QCOMPARE(seen, 7);
        QVERIFY(second.isResolved());
    }
};

BRIMLET_TEST(TestDeferred, brimlet::NoApplication)
#include "tst_deferred.moc"
