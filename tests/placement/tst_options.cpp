#include "tests/support/testprogram.h"
#include "tools/placement/options.h"

#include <QtTest/QtTest>

#include <vector>

using namespace brimlet::placement;

namespace {

std::optional<Options> parsed(const QList<QByteArray>& words, std::string& error) {
    std::vector<const char*> arguments;
    for (const QByteArray& word : words) {
        arguments.push_back(word.constData());
    }
    return parseOptions(arguments, error);
}

} // namespace

class OptionsTest final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theDefaultPortIsTheOneBrimletAsks();
    void everyOptionIsRead_data();
    void everyOptionIsRead();
    void mistakesAreNamed_data();
    void mistakesAreNamed();
    void theHelpNamesEveryOption();
};

void OptionsTest::theDefaultPortIsTheOneBrimletAsks() {
    std::string error;
    const auto options = parsed({}, error);
    QVERIFY(options.has_value());
    QCOMPARE(options->port, 8791);
    QVERIFY(options->scenarioFile.empty());
    QVERIFY(options->logFile.empty());
    QVERIFY(!options->help);
    QVERIFY(!options->version);
}

void OptionsTest::everyOptionIsRead_data() {
    QTest::addColumn<QList<QByteArray>>("words");
    QTest::newRow("apart") << QList<QByteArray>{"--port", "0",     "--scenario", "s.json",
                                                "--log",  "l.log", "--help",     "--version"};
    QTest::newRow("joined") << QList<QByteArray>{"--version", "--help", "--log=l.log",
                                                 "--scenario=s.json", "--port=0"};
}

void OptionsTest::everyOptionIsRead() {
    QFETCH(QList<QByteArray>, words);
    std::string error;
    const auto options = parsed(words, error);
    QVERIFY2(options.has_value(), error.c_str());
    QCOMPARE(options->port, 0);
    QCOMPARE(options->scenarioFile, std::string("s.json"));
    QCOMPARE(options->logFile, std::string("l.log"));
    QVERIFY(options->help);
    QVERIFY(options->version);
}

void OptionsTest::mistakesAreNamed_data() {
    QTest::addColumn<QList<QByteArray>>("words");
    QTest::addColumn<QByteArray>("message");
    const QByteArray range = "--port must be a number from 0 to 65535, not ";
    QTest::newRow("unknown") << QList<QByteArray>{"--prot", "1"}
                             << QByteArray("unknown option --prot");
    QTest::newRow("not an option")
        << QList<QByteArray>{"8791"} << QByteArray("unknown option 8791");
    QTest::newRow("help with a value")
        << QList<QByteArray>{"--help=1"} << QByteArray("unknown option --help=1");
    QTest::newRow("no port") << QList<QByteArray>{"--port"} << QByteArray("--port needs a value");
    QTest::newRow("empty log") << QList<QByteArray>{"--log="} << QByteArray("--log needs a value");
    QTest::newRow("word") << QList<QByteArray>{"--port", "http"} << range + "http";
    QTest::newRow("too high") << QList<QByteArray>{"--port", "65536"} << range + "65536";
    QTest::newRow("negative") << QList<QByteArray>{"--port", "-1"} << range + "-1";
    QTest::newRow("with a tail") << QList<QByteArray>{"--port", "80x"} << range + "80x";
}

void OptionsTest::mistakesAreNamed() {
    QFETCH(QList<QByteArray>, words);
    QFETCH(QByteArray, message);
    std::string error;
    QVERIFY(!parsed(words, error));
    QCOMPARE(QByteArray::fromStdString(error), message);
}

void OptionsTest::theHelpNamesEveryOption() {
    for (const char* option : {"--port", "--scenario", "--log", "--help", "--version"}) {
        QVERIFY2(helpText().find(option) != std::string_view::npos, option);
    }
}

BRIMLET_TEST(OptionsTest, brimlet::NoApplication)
#include "tst_options.moc"
