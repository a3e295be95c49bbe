#include "tests/support/testprogram.h"
#include "tools/fleet/options.h"

#include <QTest>

using namespace brimlet::fleet;
using namespace Qt::StringLiterals;
using namespace std::chrono_literals;

namespace {

const QStringList kLeast = {u"--hosts"_s, u"5"_s, u"--root"_s, u"http://127.0.0.1:8791"_s};

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
        QCOMPARE(options->root, u"http://127.0.0.1:8791"_s);
        QCOMPARE(options->spread.count(), 3);
        QCOMPARE(options->measured.count(), 30);
        QVERIFY(!options->hasToken());
        QVERIFY(options->tokenOf(3).isEmpty());
        QVERIFY(options->jsonFile.isEmpty());
    }

    void everyOptionIsTakenInBothForms_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("two words") << QStringList{
            u"--hosts"_s,        u"20000"_s, u"--root"_s,    u"HTTPS://service.example/base/"_s,
            u"--spread"_s,       u"0"_s,     u"--seconds"_s, u"90"_s,
            u"--token-prefix"_s, u"h-"_s,    u"--json"_s,    u"out.json"_s};
        QTest::newRow("one word") << QStringList{
            u"--hosts=20000"_s,     u"--root=HTTPS://service.example/base/"_s,
            u"--spread=0"_s,        u"--seconds=90"_s,
            u"--token-prefix=h-"_s, u"--json=out.json"_s};
    }

    void everyOptionIsTakenInBothForms() {
        QFETCH(const QStringList, arguments);
        const auto options = parsed(arguments);
        QVERIFY(options.has_value());
        QCOMPARE(options->hosts, 20'000);
        QCOMPARE(options->root, u"HTTPS://service.example/base"_s); // paths begin with a slash
        QCOMPARE(options->spread.count(), 0);
        QCOMPARE(options->measured.count(), 90);
        QCOMPARE(options->tokenOf(0), "h-0");
        QCOMPARE(options->tokenOf(19'999), "h-19999");
        QCOMPARE(options->jsonFile, u"out.json"_s);
    }

    void allHostsHaveTheToken() {
        const auto options = parsed(kLeast + QStringList{u"--token"_s, u"secret"_s});
        QVERIFY(options.has_value());
        QCOMPARE(options->tokenOf(0), "secret");
        QCOMPARE(options->tokenOf(7), "secret");
    }

    void helpAndVersionNeedNothingElse() {
        QVERIFY(parsed({u"--help"_s}).value_or(Options()).help);
        QVERIFY(parsed({u"--version"_s}).value_or(Options()).version);
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
        const QString hosts = u"--hosts must be a number from 1 to 20000, not "_s;
        const QString root = u"--root must be an http or https address with a host, not "_s;
        for (const QString& number : {u"0"_s, u"-1"_s, u"20001"_s, u"+5"_s, u"1e3"_s, u"5 "_s,
                                      u"99999999999"_s, u"many"_s}) {
            QTest::addRow("hosts %s", qPrintable(number))
                << QStringList{u"--hosts"_s, number} << hosts + number;
        }
        for (const QString& address :
             {u"service.example"_s, u"ftp://service.example"_s, u"http:///api"_s, u"http://"_s,
              u"/api"_s, u"http://a.example/?b"_s, u"http://a.example/#b"_s}) {
            QTest::addRow("root %s", qPrintable(address))
                << QStringList{u"--root"_s, address} << root + address;
        }
        QTest::newRow("spread") << QStringList{u"--spread=-1"_s}
                                << u"--spread must be a number from 0 to 86400, not -1"_s;
        QTest::newRow("seconds") << QStringList{u"--seconds=0"_s}
                                 << u"--seconds must be a number from 1 to 86400, not 0"_s;
        QTest::newRow("both tokens")
            << QStringList{u"--token=a"_s, u"--token-prefix=b"_s}
            << u"only one of --token and --token-prefix can be given, once"_s;
        QTest::newRow("no value") << QStringList{u"--token"_s} << u"--token needs a value"_s;
        QTest::newRow("empty value") << QStringList{u"--json="_s} << u"--json needs a value"_s;
        QTest::newRow("unknown") << QStringList{u"--host=5"_s} << u"unknown option --host=5"_s;
        QTest::newRow("a word") << QStringList{u"hosts"_s} << u"unknown option hosts"_s;
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
        QCOMPARE(complaint, u"--hosts is missing"_s);
        QVERIFY(!parseOptions({u"--hosts"_s, u"5"_s}, complaint));
        QCOMPARE(complaint, u"--root is missing"_s);
    }
};

BRIMLET_TEST(TestFleetOptions, QCoreApplication)
#include "tst_options.moc"
