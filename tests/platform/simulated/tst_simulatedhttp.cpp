#include "platform/simulated/simulatedhttpclient.h"
#include "platform/starttask.h"
#include "tests/support/fakehttpclient.h"
#include "tests/support/testprogram.h"

#include <QTest>

#include <memory>
#include <vector>

using namespace brimlet;
using namespace std::chrono_literals;

/// Cancels its request when it is destroyed, and counts the requests.
class CancellingClient final : public HttpClient {
public:
    explicit CancellingClient(int& sent)
        : m_sent(sent) {}
    ~CancellingClient() override { m_outcome.resolve(HttpError::Cancelled); }
    Q_DISABLE_COPY_MOVE(CancellingClient)

    [[nodiscard]] QCoro::Task<HttpResult> send(HttpRequest /*request*/) override {
        ++m_sent;
        const Deferred<HttpResult> outcome = m_outcome;
        HttpResult result = co_await outcome;
        co_return result;
    }

private:
    int& m_sent;
    Deferred<HttpResult> m_outcome;
};

class TestSimulatedHttp final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void timeoutsShrinkWithTheSpeed_data() {
        QTest::addColumn<double>("speed");
        QTest::addColumn<std::chrono::milliseconds>("asked");
        QTest::addColumn<std::chrono::milliseconds>("given");
        QTest::newRow("real speed") << 1.0 << 60'000ms << 60'000ms;
        QTest::newRow("sixty times") << 60.0 << 60'000ms << 1000ms;
        QTest::newRow("a quarter of a second remains") << 1000.0 << 60'000ms << 250ms;
        QTest::newRow("what was shorter stays") << 1000.0 << 100ms << 100ms;
    }
    void timeoutsShrinkWithTheSpeed() {
        QFETCH(double, speed);
        QFETCH(std::chrono::milliseconds, asked);
        QFETCH(std::chrono::milliseconds, given);
        FakeClock clock;
        auto real = std::make_unique<FakeHttpClient>(clock);
        const FakeHttpClient& service = *real;
        SimulatedHttpClient client(std::move(real), speed);
        HttpRequest request{Url::fromString(u"http://127.0.0.1/").value()};
        request.timeout = asked;
        startTask([](HttpClient& http, HttpRequest one) -> QCoro::Task<> {
            (void)co_await http.send(std::move(one));
        }(client, request));
        QCOMPARE(service.requests().at(0).timeout, given);
    }

    void destructionCancelsPendingAndFollowingRequests() {
        int sent = 0;
        auto client =
            std::make_unique<SimulatedHttpClient>(std::make_unique<CancellingClient>(sent), 1.0);
        std::vector<HttpResult> results;
        startTask([](HttpClient& http, std::vector<HttpResult>& all) -> QCoro::Task<> {
            const HttpRequest request{Url::fromString(u"http://127.0.0.1/").value()};
            for (int i = 0; i < 2; ++i) {
                HttpResult result = co_await http.send(request);
                all.push_back(std::move(result));
            }
        }(*client, results));
        QVERIFY(results.empty());
        client.reset();
        QCOMPARE(results.size(), 2U);
        QCOMPARE(sent, 1); // none through the client being destroyed
        for (const HttpResult& result : results) {
            QCOMPARE(std::get<HttpError>(result), HttpError::Cancelled);
        }
    }
};

BRIMLET_TEST(TestSimulatedHttp, brimlet::NoApplication)
#include "tst_simulatedhttp.moc"
