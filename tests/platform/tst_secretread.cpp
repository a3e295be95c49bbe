#include "platform/qt/secretread.h"
#include "tests/support/testprogram.h"

#include <QSignalSpy>
#include <QTest>

#include <atomic>
#include <memory>
#include <optional>
#include <semaphore>
#include <vector>

using namespace brimlet;
using namespace std::chrono_literals;

Q_DECLARE_METATYPE(brimlet::SecretResult)

namespace {

const SecretResult kValue = QByteArray("value");
const SecretResult kNotFound = SecretError::NotFound;
const SecretResult kLocked = SecretError::Locked;
const SecretResult kUnavailable = SecretError::Unavailable;
const SecretResult kTimedOut = SecretError::TimedOut;

[[nodiscard]] SerialWorker::Deadline in(std::chrono::milliseconds time) {
    return std::chrono::steady_clock::now() + time;
}

/// Gives these results in turn, then the last one again and again.
class Results final {
public:
    explicit Results(std::vector<SecretResult> results)
        : m_state(std::make_shared<State>(std::move(results))) {}

    SecretResult operator()(const std::stop_token& /*stop*/) const {
        const std::size_t call = m_state->calls++;
        return m_state->results.at(qMin(call, m_state->results.size() - 1));
    }
    [[nodiscard]] std::size_t calls() const { return m_state->calls; }

private:
    struct State final {
        const std::vector<SecretResult> results;
        std::atomic<std::size_t> calls = 0;
        explicit State(std::vector<SecretResult> all)
            : results(std::move(all)) {}
    };
    std::shared_ptr<State> m_state;
};

} // namespace

class SecretReadTest final : public QObject {
    Q_OBJECT

    SerialWorker m_worker;
    std::vector<SecretResult> m_late;

    [[nodiscard]] SecretStore::LateAnswer late() {
        return [this](const SecretResult& result) { m_late.push_back(result); };
    }
    /// Until a read under way has been taken note of.
    void settle() {
        QVERIFY(m_worker.waitUntil(in(5s)));
        QCoreApplication::processEvents();
    }

private Q_SLOTS:
    void init() { m_late.clear(); }

    void whatTheCallerWaitedForIsNotPassedOn() {
        const Results results({kValue});
        SecretRead read(m_worker, results, late());
        QCOMPARE(read.readUntil(in(5s)), kValue);
        settle();
        QCOMPARE(m_late.size(), 0U);
        QCOMPARE(results.calls(), 1U);
    }

    void anAnswerAfterTheDeadlineIsPassedOn() {
        const auto mayEnd = std::make_shared<std::binary_semaphore>(0);
        SecretRead read(
            m_worker,
            [mayEnd](const std::stop_token&) {
                mayEnd->acquire();
                return kValue;
            },
            late());
        QCOMPARE(read.readUntil(in(20ms)), kTimedOut);
        mayEnd->release();
        QTRY_COMPARE(m_late, std::vector{kValue});
    }

    void readingAgainPassesOnAnAnswerOnce_data() {
        QTest::addColumn<SecretResult>("first");
        QTest::addColumn<SecretResult>("second");
        QTest::addColumn<bool>("isPassedOn");
        QTest::newRow("locked, then unlocked") << kLocked << kValue << true;
        QTest::newRow("locked, then nothing there") << kLocked << kNotFound << true;
        QTest::newRow("no store, then one") << kUnavailable << kValue << true;
        QTest::newRow("no store, then a locked one") << kUnavailable << kLocked << false;
        QTest::newRow("still locked") << kLocked << kLocked << false;
    }
    void readingAgainPassesOnAnAnswerOnce() {
        QFETCH(const SecretResult, first);
        QFETCH(const SecretResult, second);
        QFETCH(const bool, isPassedOn);
        SecretRead read(m_worker, Results({first, second}), late());
        QCOMPARE(read.readUntil(in(5s)), first);
        for (int i = 0; i < 3; ++i) {
            read.readAgain();
            settle();
        }
        QCOMPARE(m_late, isPassedOn ? std::vector{second} : std::vector<SecretResult>());
    }

    void aReadThatTimesOutIsRepeated() {
        const Results results({kUnavailable, kTimedOut, kTimedOut, kValue});
        SecretRead read(m_worker, results, late());
        QCOMPARE(read.readUntil(in(5s)), kUnavailable);
        read.readAgain();
        QTRY_COMPARE(m_late, std::vector{kValue});
        QCOMPARE(results.calls(), 4U);
    }

    void aChangeDuringAReadLeadsToOneMore() {
        const Results results({kUnavailable, kUnavailable, kValue});
        SecretRead read(m_worker, results, late());
        QCOMPARE(read.readUntil(in(5s)), kUnavailable);
        read.readAgain();
        read.readAgain();
        read.readAgain();
        QTRY_COMPARE(m_late, std::vector{kValue});
        QCOMPARE(results.calls(), 3U);
    }

    void aLockedStoreIsReported() {
        SecretRead read(m_worker, Results({kUnavailable, kLocked}), late());
        const QSignalSpy locked(&read, &SecretRead::locked);
        QCOMPARE(read.readUntil(in(5s)), kUnavailable);
        QCOMPARE(locked.size(), 0);
        read.readAgain();
        QTRY_COMPARE(locked.size(), 1);
    }

    void aHundredFailuresAreEnough() {
        const Results results({kUnavailable});
        SecretRead read(m_worker, results, late());
        QCOMPARE(read.readUntil(in(5s)), kUnavailable);
        for (int i = 0; i < 200; ++i) {
            read.readAgain();
            settle();
        }
        QCOMPARE(results.calls(), 101U); // the one that was waited for does not count
    }

    void aStoreThatStaysLockedIsReadAtEveryChange() {
        const Results results({kLocked});
        SecretRead read(m_worker, results, late());
        QCOMPARE(read.readUntil(in(5s)), kLocked);
        for (int i = 0; i < 200; ++i) {
            read.readAgain();
            settle();
        }
        QCOMPARE(results.calls(), 201U);
    }

    void anIgnoredAnswerIsNotPassedOn() {
        SecretRead read(m_worker, Results({kLocked, kValue}), late());
        QCOMPARE(read.readUntil(in(5s)), kLocked);
        read.readAgain();
        read.ignoreAnswer();
        settle();
        read.readAgain();
        settle();
        QCOMPARE(m_late.size(), 0U);
    }

    void aReadThatIsGoneIsStopped() {
        const auto wasStopped = std::make_shared<std::atomic<bool>>(false);
        std::optional<SecretRead> read(
            std::in_place, m_worker,
            [wasStopped](const std::stop_token& stop) -> SecretResult {
                std::binary_semaphore stopped(0);
                const std::stop_callback onStop(stop, [&stopped] { stopped.release(); });
                stopped.acquire();
                *wasStopped = true;
                return kValue;
            },
            late());
        QCOMPARE(read->readUntil(in(20ms)), kTimedOut);
        read.reset();
        settle();
        QVERIFY(*wasStopped);
        QCOMPARE(m_late.size(), 0U);
    }
};

BRIMLET_TEST(SecretReadTest, QCoreApplication)
#include "tst_secretread.moc"
