#include "tests/service/prism.h"
#include "tests/support/processes.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QFile>
#include <QJsonArray>
#include <QTest>

using namespace brimlet;

namespace {

constexpr int kPatience = 20'000; // milliseconds
constexpr int kSpeed = 20;

/// docs/service/sample.py on a free port.
class SampleProcess final {
public:
    SampleProcess() {
        m_process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        m_process.start(QStringLiteral("python3"),
                        {sourcePath(u"docs/service/sample.py"), QStringLiteral("0")});
        while (m_process.waitForReadyRead(kPatience) && !m_process.canReadLine()) {
        }
        m_root = QString::fromUtf8(m_process.readLine()).section(u' ', -1).trimmed();
    }
    ~SampleProcess() {
        m_process.kill();
        m_process.waitForFinished();
    }
    SampleProcess(const SampleProcess&) = delete;
    SampleProcess& operator=(const SampleProcess&) = delete;

    [[nodiscard]] const QString& root() const { return m_root; }

private:
    QProcess m_process;
    QString m_root;
};

} // namespace

/// The sample service and the whole program.
class TestSample final : public QObject {
    Q_OBJECT

    /// A host joins, signs and earns at the service.
    static void join(const QString& root) {
        QVERIFY(root.startsWith(QStringLiteral("http://127.0.0.1:")));
        SimulatorProcess program({{QStringLiteral("infoDictionary"),
                                   QJsonObject{{QStringLiteral("BrimletAPIURL"), root}}},
                                  {QStringLiteral("secretStore"), QStringLiteral("memory")},
                                  {QStringLiteral("speed"), kSpeed}});
        QTRY_VERIFY_WITH_TIMEOUT(program.isPanelShown(), kPatience);
        const auto pills = [&program] {
            return program.state().value(QStringLiteral("pills")).toArray();
        };
        const auto hasPicture = [](const QJsonValue& pill) {
            return pill.toObject().value(QStringLiteral("hasImage")).toBool();
        };
        QTRY_VERIFY_WITH_TIMEOUT(pills().size() == 2 && hasPicture(pills().first()) &&
                                     hasPicture(pills().last()),
                                 kPatience);
        (void)program.ask("save-token another-token");
        QTRY_COMPARE_WITH_TIMEOUT(program.statusLine(),
                                  QStringLiteral("Server rejected the host token."), kPatience);
        (void)program.ask("save-token demo-host-token");
        QTRY_VERIFY_WITH_TIMEOUT(
            program.statusLine().startsWith(QStringLiteral("Sign the host agreement.")), kPatience);
        (void)program.ask("agree");
        QTRY_VERIFY_WITH_TIMEOUT(
            program.statusLine().startsWith(QStringLiteral("Ads on. This week ~€0.")), kPatience);
        (void)program.ask("pause");
        QTRY_VERIFY_WITH_TIMEOUT(
            program.statusLine().startsWith(QStringLiteral("Ads off. This week ~€0.")), kPatience);
        QVERIFY(!program.isPanelShown());
    }

private Q_SLOTS:
    void itHasAtMostEightyLines() {
        QFile file(sourcePath(u"docs/service/sample.py"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QVERIFY(file.readAll().count('\n') <= 80);
    }

    void theProgramShowsIt() {
        const SampleProcess service;
        join(service.root());
    }

    void itKeepsToTheDocument() {
        const SampleProcess service;
        PrismProcess proxy({QStringLiteral("proxy"), serviceDocument(), service.root()});
        if (!proxy.missing().isEmpty()) {
            QSKIP(qPrintable(proxy.missing()));
        }
        join(proxy.root());
        const PrismProcess::Judgement& judgement = proxy.judgement();
        QCOMPARE(judgement.deviations.join(u'\n'), QString());
        QVERIFY(judgement.unchanged > 0);
    }
};

BRIMLET_TEST(TestSample, QCoreApplication)
#include "tst_sample.moc"
