#include "platform/linux/serialworker.h"

#include <QElapsedTimer>
#include <QTest>

#include <atomic>
#include <memory>
#include <optional>
#include <semaphore>
#include <vector>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

[[nodiscard]] SerialWorker::Deadline in(std::chrono::milliseconds time) {
    return std::chrono::steady_clock::now() + time;
}

void waitForCancellation(GCancellable* cancellable) {
    GPollFD descriptor{};
    if (g_cancellable_make_pollfd(cancellable, &descriptor) != FALSE) {
        g_poll(&descriptor, 1, -1);
        g_cancellable_release_fd(cancellable);
    }
}

} // namespace

class SerialWorkerTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void jobsRunInTheOrderTheyCame() {
        SerialWorker worker;
        const auto order = std::make_shared<std::vector<int>>();
        for (int i = 0; i < 100; ++i) {
            worker.post([order, i](GCancellable*) { order->push_back(i); });
        }
        QVERIFY(worker.run([order](GCancellable*) { order->push_back(100); }, in(5s)));
        QCOMPARE(order->size(), 101U);
        QVERIFY(std::is_sorted(order->begin(), order->end()));
    }

    void aJobStartsAgainAfterAllWereDone() {
        SerialWorker worker;
        const auto count = std::make_shared<int>(0);
        for (int i = 1; i <= 100; ++i) {
            QVERIFY(worker.run([count](GCancellable*) { ++*count; }, in(5s)));
            QCOMPARE(*count, i);
        }
    }

    void aRunThatDoesNotEndIsCancelledAtItsDeadline() {
        SerialWorker worker;
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!worker.run(waitForCancellation, in(50ms)));
        QVERIFY(timer.elapsed() >= 50);
        QVERIFY(worker.run([](GCancellable*) {}, in(5s)));
    }

    void aRunThatNeverBeganHasNoEffect() {
        SerialWorker worker;
        const auto gate = std::make_shared<std::binary_semaphore>(0);
        const auto hasRun = std::make_shared<std::atomic<bool>>(false);
        worker.post([gate](GCancellable*) { gate->acquire(); });
        QVERIFY(!worker.run([hasRun](GCancellable*) { *hasRun = true; }, in(20ms)));
        gate->release();
        QVERIFY(worker.run([](GCancellable*) {}, in(5s)));
        QVERIFY(!*hasRun);
    }

    void jobsThatEndInTimeAreWaitedFor() {
        std::optional<SerialWorker> worker(std::in_place);
        const auto count = std::make_shared<int>(0);
        for (int i = 0; i < 10; ++i) {
            worker->post([count](GCancellable*) { ++*count; });
        }
        worker.reset();
        QCOMPARE(*count, 10);
    }

    void aHangingJobIsCancelledAndTheRestDropped() {
        std::optional<SerialWorker> worker(std::in_place);
        const auto hasRun = std::make_shared<std::atomic<bool>>(false);
        const auto wasCancelled = std::make_shared<std::atomic<bool>>(false);
        worker->post([wasCancelled](GCancellable* cancellable) {
            waitForCancellation(cancellable);
            *wasCancelled = true;
        });
        worker->post([hasRun](GCancellable*) { *hasRun = true; });
        QElapsedTimer timer;
        timer.start();
        worker.reset();
        QVERIFY(timer.elapsed() >= 700 && timer.elapsed() < 900);
        QVERIFY(*wasCancelled);
        QVERIFY(!*hasRun);
    }

    void aJobThatHeedsNothingIsLeftBehind() {
        std::optional<SerialWorker> worker(std::in_place);
        const auto gate = std::make_shared<std::binary_semaphore>(0);
        const auto isDone = std::make_shared<std::atomic<bool>>(false);
        worker->post([gate, isDone](GCancellable*) {
            gate->acquire();
            *isDone = true;
        });
        QElapsedTimer timer;
        timer.start();
        worker.reset();
        QVERIFY(timer.elapsed() >= 800 && timer.elapsed() < 1000);
        gate->release();
        QTRY_VERIFY(*isDone);
    }
};

QTEST_GUILESS_MAIN(SerialWorkerTest)
#include "tst_serialworker.moc"
