#include "tests/support/fakeclock.h"
#include "tests/support/fakehttpclient.h"
#include "tests/support/httpcontract.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;
using namespace Qt::StringLiterals;

namespace {

class FakePeer final : public HttpPeer {
public:
    HttpClient& client() override { return *m_client; }
    void dropClient() override {
        m_log = log();
        m_client.reset();
    }
    Url url(const QString& path) const override {
        return Url::fromString(u"http://127.0.0.1:8791"_s + path).value();
    }
    void answer(const QString& path, int status, const QByteArray& body) override {
        m_client->answer(path, status, body);
    }
    void answerTagged(const QString& path, const QByteArray& body) override {
        answer(path, 200, body);
    }
    void hang(const QString& path) override { m_client->hang(path); }
    QStringList log() const override { return m_client ? m_client->log() : m_log; }
    void pass(std::chrono::milliseconds time) override { m_clock.advance(time); }

private:
    FakeClock m_clock;
    std::optional<FakeHttpClient> m_client{std::in_place, m_clock};
    QStringList m_log;
};

} // namespace

class TestHttpFake final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void init() { QTest::failOnWarning(QRegularExpression(u"."_s)); }

    void itKeepsTheContract_data() { addHttpContractRows(); }
    void itKeepsTheContract() {
        FakePeer peer;
        runHttpContractRow(peer);
    }
};

BRIMLET_TEST(TestHttpFake, QCoreApplication)
#include "tst_httpfake.moc"
