#include "tests/support/testprogram.h"
#include "tools/fleet/options.h"

#include <QTest>

using namespace brimlet::fleet;
using namespace std::chrono_literals;

namespace {

const QStringList kLeast = {u"--hosts"_qs, u"5"_qs, u"--root"_qs, u"http://127.0.0.1:8791"_qs};

std::optional<Options> parsed(const QStringList& arguments) {
    QString error;
    return parseOptions(arguments, error);
}

} // namespace

class TestFleetOptions final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void hostsAndRootAreEnough() {
        const auto options = parsed(kLeast);
        QVERIFY(options.has_value());
        QCOMPARE(options->hosts, 5);
        QCOMPARE(options->root, u"http://127.0.0.1:8791"_qs);
        QCOMPARE(options->spread.count(), 3);
        QCOMPARE(options->measured.count(), 30);
        QVERIFY(!options->hasToken());
        QVERIFY(options->tokenOf(3).isEmpty());
        QVERIFY(options->jsonFile.isEmpty());
    }

    void everyOptionIsTakenInBothForms_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("two words") << QStringList{
            u"--hosts"_qs,        u"20000"_qs, u"--root"_qs,    u"HTTPS://service.example/base/"_qs,
            u"--spread"_qs,       u"0"_qs,     u"--seconds"_qs, u"90"_qs,
            u"--token-prefix"_qs, u"h-"_qs,    u"--json"_qs,    u"out.json"_qs};
        QTest::newRow("one word") << QStringList{
            u"--hosts=20000"_qs,     u"--root=HTTPS://service.example/base/"_qs,
            u"--spread=0"_qs,        u"--seconds=90"_qs,
            u"--token-prefix=h-"_qs, u"--json=out.json"_qs};
    }

    void everyOptionIsTakenInBothForms() {
        QFETCH(const QStringList, arguments);
        const auto options = parsed(arguments);
        QVERIFY(options.has_value());
        QCOMPARE(options->hosts, 20'000);
        QCOMPARE(options->root, u"HTTPS://service.example/base"_qs); // paths begin with a slash
        QCOMPARE(options->spread.count(), 0);
        QCOMPARE(options->measured.count(), 90);
        QCOMPARE(options->tokenOf(0), "h-0");
        QCOMPARE(options->tokenOf(19'999), "h-19999");
        QCOMPARE(options->jsonFile, u"out.json"_qs);
    }

    void allHostsHaveTheToken() {
        const auto options = parsed(kLeast + QStringList{u"--token"_qs, u"secret"_qs});
        QVERIFY(options.has_value());
        QCOMPARE(options->tokenOf(0), "secret");
        QCOMPARE(options->tokenOf(7), "secret");
    }

    void helpAndVersionNeedNothingElse() {
        QVERIFY(parsed({u"--help"_qs}).value_or(Options()).help);
        QVERIFY(parsed({u"--version"_qs}).value_or(Options()).version);
    }

    void theHelpNamesEveryOption() {
        for (const char* name : {"--hosts", "--root", "--spread", "--seconds", "--token ",
                                 "--token-prefix", "--json", "--help", "--version"}) {
            QVERIFY2(helpText().contains(name), name);
        }
    }

    void aWrongOptionIsNamed_data() {
        QTest::addColumn<QStringList>("arguments"); // after the least
        QTest::addColumn<QString>("error");
        const QString hosts = u"--hosts must be a number from 1 to 20000, not "_qs;
        const QString root = u"--root must be an http or https address with a host, not "_qs;
        for (const QString& number : {u"0"_qs, u"-1"_qs, u"20001"_qs, u"+5"_qs, u"1e3"_qs, u"5 "_qs,
                                      u"99999999999"_qs, u"many"_qs}) {
            QTest::addRow("hosts %s", qPrintable(number))
                << QStringList{u"--hosts"_qs, number} << hosts + number;
        }
        for (const QString& address :
             {u"service.example"_qs, u"ftp://service.example"_qs, u"http:///api"_qs, u"http://"_qs,
              u"/api"_qs, u"http://a.example/?b"_qs, u"http://a.example/#b"_qs}) {
            QTest::addRow("root %s", qPrintable(address))
                << QStringList{u"--root"_qs, address} << root + address;
        }
        QTest::newRow("spread") << QStringList{u"--spread=-1"_qs}
                                << u"--spread must be a number from 0 to 86400, not -1"_qs;
        QTest::newRow("seconds") << QStringList{u"--seconds=0"_qs}
                                 << u"--seconds must be a number from 1 to 86400, not 0"_qs;
        QTest::newRow("both tokens")
            << QStringList{u"--token=a"_qs, u"--token-prefix=b"_qs}
            << u"only one of --token and --token-prefix can be given, once"_qs;
        QTest::newRow("no value") << QStringList{u"--token"_qs} << u"--token needs a value"_qs;
        QTest::newRow("empty value") << QStringList{u"--json="_qs} << u"--json needs a value"_qs;
        QTest::newRow("unknown") << QStringList{u"--host=5"_qs} << u"unknown option --host=5"_qs;
        QTest::newRow("a word") << QStringList{u"hosts"_qs} << u"unknown option hosts"_qs;
    }

    void aWrongOptionIsNamed() {
        QFETCH(const QStringList, arguments);
        QFETCH(const QString, error);
        QString complaint;
        QVERIFY(!parseOptions(kLeast + arguments, complaint));
        QCOMPARE(complaint, error);
    }

    void aMissingOptionIsNamed() {
        QString complaint;
        QVERIFY(!parseOptions({}, complaint));
        QCOMPARE(complaint, u"--hosts is missing"_qs);
        QVERIFY(!parseOptions({u"--hosts"_qs, u"5"_qs}, complaint));
        QCOMPARE(complaint, u"--root is missing"_qs);
    }
};

BRIMLET_TEST(TestFleetOptions, QCoreApplication)
#include "tst_options.moc"
