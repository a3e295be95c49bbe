#include "platform/qt/serialworker.h"
#include "tests/support/testprogram.h"

#include <QElapsedTimer>
#include <QTest>

#include <algorithm>
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

void waitForStop(const std::stop_token& stop) {
    std::binary_semaphore stopped(0);
    const std::stop_callback onStop(stop, [&stopped] { stopped.release(); });
    stopped.acquire();
}

/// Milliseconds. Enough on a busy machine, and less than a worker takes that never gives up.
constexpr qint64 kPatience = 5000;

} // namespace

class SerialWorkerTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void jobsRunInOrder() {
        SerialWorker worker;
        const auto order = std::make_shared<std::vector<int>>();
        for (int i = 0; i < 100; ++i) {
            worker.post([order, i](const std::stop_token&) { order->push_back(i); });
        }
        QVERIFY(worker.waitUntil(in(5s)));
        QCOMPARE(order->size(), 100U);
        QVERIFY(std::is_sorted(order->begin(), order->end()));
    }

    void aJobStartsAgainAfterAllWereDone() {
        SerialWorker worker;
        const auto count = std::make_shared<int>(0);
        for (int i = 1; i <= 100; ++i) {
            worker.post([count](const std::stop_token&) { ++*count; });
            QVERIFY(worker.waitUntil(in(5s)));
            QCOMPARE(*count, i);
        }
    }

    void waitingEndsAtTheDeadline() {
        SerialWorker worker;
        std::stop_source stop = worker.post(waitForStop);
        QElapsedTimer timer;
        timer.start();
        QVERIFY(!worker.waitUntil(in(50ms)));
        QVERIFY(timer.elapsed() >= 50 && timer.elapsed() < kPatience);
        stop.request_stop();
        QVERIFY(worker.waitUntil(in(5s)));
    }

    void aJobStoppedInTheQueueIsSkipped() {
        SerialWorker worker;
        const auto hasRun = std::make_shared<std::atomic<bool>>(false);
        std::stop_source first = worker.post(waitForStop);
        worker.post([hasRun](const std::stop_token&) { *hasRun = true; }).request_stop();
        first.request_stop();
        QVERIFY(worker.waitUntil(in(5s)));
        QVERIFY(!*hasRun);
    }

    void theDestructorWaitsForJobsThatEndInTime() {
        std::optional<SerialWorker> worker(std::in_place);
        const auto count = std::make_shared<int>(0);
        for (int i = 0; i < 10; ++i) {
            worker->post([count](const std::stop_token&) { ++*count; });
        }
        worker.reset();
        QCOMPARE(*count, 10);
    }

    void theDestructorStopsAHangingJobAndDropsTheRest() {
        std::optional<SerialWorker> worker(std::in_place);
        const auto hasRun = std::make_shared<std::atomic<bool>>(false);
        const auto wasStopped = std::make_shared<std::atomic<bool>>(false);
        worker->post([wasStopped](const std::stop_token& stop) {
            waitForStop(stop);
            *wasStopped = true;
        });
        worker->post([hasRun](const std::stop_token&) { *hasRun = true; });
        QElapsedTimer timer;
        timer.start();
        worker.reset();
        QVERIFY(timer.elapsed() >= 700 && timer.elapsed() < kPatience);
        QTRY_VERIFY(*wasStopped);
        QTRY_COMPARE(hasRun.use_count(), 1);
        QVERIFY(!*hasRun);
    }

    void theDestructorAbandonsAJobThatIgnoresTheStopAndDropsTheRest() {
        std::optional<SerialWorker> worker(std::in_place);
        const auto mayEnd = std::make_shared<std::binary_semaphore>(0);
        const auto isDone = std::make_shared<std::atomic<bool>>(false);
        const auto hasRun = std::make_shared<std::atomic<bool>>(false);
        worker->post([mayEnd, isDone](const std::stop_token&) {
            mayEnd->acquire();
            *isDone = true;
        });
        worker->post([hasRun](const std::stop_token&) { *hasRun = true; });
        QElapsedTimer timer;
        timer.start();
        worker.reset();
        QVERIFY(timer.elapsed() >= 800 && timer.elapsed() < kPatience);
        mayEnd->release();
        QTRY_VERIFY(*isDone);
        QTRY_COMPARE(hasRun.use_count(), 1);
        QVERIFY(!*hasRun);
    }
};

BRIMLET_TEST(SerialWorkerTest, QCoreApplication)
#include "tst_serialworker.moc"
