#include "platform/simulated/simulatedhttpclient.h"
#include "platform/starttask.h"
#include "tests/support/fakehttpclient.h"

#include <QTest>

using namespace brimlet;
using namespace std::chrono_literals;

class TestSimulatedHttp final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aRequestsTimeShrinksWithTheSpeed_data() {
        QTest::addColumn<double>("speed");
        QTest::addColumn<std::chrono::milliseconds>("asked");
        QTest::addColumn<std::chrono::milliseconds>("given");
        QTest::newRow("real speed") << 1.0 << 60'000ms << 60'000ms;
        QTest::newRow("sixty times") << 60.0 << 60'000ms << 1000ms;
        QTest::newRow("a quarter of a second remains") << 1000.0 << 60'000ms << 250ms;
        QTest::newRow("what was shorter stays") << 1000.0 << 100ms << 100ms;
    }
    void aRequestsTimeShrinksWithTheSpeed() {
        QFETCH(double, speed);
        QFETCH(std::chrono::milliseconds, asked);
        QFETCH(std::chrono::milliseconds, given);
        FakeClock clock;
        FakeHttpClient real(clock);
        SimulatedHttpClient client(real, speed);
        HttpRequest request{Url::fromString(u"http://127.0.0.1/").value()};
        request.timeout = asked;
        startTask([](HttpClient& http, HttpRequest one) -> QCoro::Task<> {
            (void)co_await http.send(std::move(one));
        }(client, request));
        QCOMPARE(real.requests().at(0).timeout, given);
    }
};

QTEST_APPLESS_MAIN(TestSimulatedHttp)
#include "tst_simulatedhttp.moc"
