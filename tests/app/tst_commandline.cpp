#include "app/commandline.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QTest>

using namespace brimlet;

namespace {

struct Ended final {
    int exitCode = -1;
    QString out;
    QString err;
};

Ended run(const QString& program, const QStringList& arguments) {
    // Qt warns of a missing runtime folder.
    const QTemporaryDir runtimeFolder;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("XDG_RUNTIME_DIR"), runtimeFolder.path());
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(programPath(program), arguments);
    process.waitForFinished();
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            QString::fromUtf8(process.readAllStandardOutput()),
            QString::fromUtf8(process.readAllStandardError())};
}

QByteArray bytesOf(const QString& program) {
    QFile file(programPath(program));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

/// As QStringLiteral keeps it.
QByteArray utf16(const char* text) {
    const QString wide = QString::fromLatin1(text);
    return {reinterpret_cast<const char*>(wide.utf16()), wide.size() * 2};
}

} // namespace

class TestCommandLine final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void helpAndVersionArePrinted_data() {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QString>("option");
        QTest::addColumn<QString>("text");
        const auto brimlet = QStringLiteral("brimlet");
        const auto simulator = QStringLiteral("brimlet-simulator");
        QTest::newRow("help") << brimlet << QStringLiteral("--help") << QStringLiteral("Usage:");
        QTest::newRow("version") << brimlet << QStringLiteral("--version")
                                 << QStringLiteral("brimlet 0.1.0\n");
        QTest::newRow("help names the requests")
            << brimlet << QStringLiteral("--help") << QStringLiteral("--pause ");
        QTest::newRow("help names the diagnosis")
            << brimlet << QStringLiteral("--help") << QStringLiteral("--diagnose ");
        QTest::newRow("simulator's help")
            << simulator << QStringLiteral("--help") << QStringLiteral("--machine <file>");
        QTest::newRow("simulator's version") << simulator << QStringLiteral("--version")
                                             << QStringLiteral("brimlet-simulator 0.1.0\n");
    }
    void helpAndVersionArePrinted() {
        QFETCH(QString, program);
        QFETCH(QString, option);
        QFETCH(QString, text);
        const Ended ended = run(program, {option});
        QCOMPARE(ended.exitCode, 0);
        QVERIFY2(ended.out.contains(text), qPrintable(ended.out));
        QCOMPARE(ended.err, QString());
    }

    void mistakesEndWithAUsageLine_data() {
        QTest::addColumn<QString>("program");
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<QString>("complaint");
        const auto brimlet = QStringLiteral("brimlet");
        const auto simulator = QStringLiteral("brimlet-simulator");
        QTest::newRow("unknown option")
            << brimlet << QStringList{QStringLiteral("--bogus")} << QStringLiteral("bogus");
        QTest::newRow("the self-test is a Mac's")
            << brimlet << QStringList{QStringLiteral("--self-test")} << QStringLiteral("self-test");
        QTest::newRow("the product takes no machine file")
            << brimlet << QStringList{QStringLiteral("--machine"), QStringLiteral("x.json")}
            << QStringLiteral("machine");
        QTest::newRow("two requests at once")
            << brimlet << QStringList{QStringLiteral("--pause"), QStringLiteral("--quit")}
            << QStringLiteral("One request at a time.");
        QTest::newRow("open and closed at once")
            << brimlet << QStringList{QStringLiteral("--open"), QStringLiteral("--autostart")}
            << QStringLiteral("One request at a time.");
        QTest::newRow("a start and a request")
            << brimlet << QStringList{QStringLiteral("--autostart"), QStringLiteral("--quit")}
            << QStringLiteral("One request at a time.");
        QTest::newRow("a diagnosis and a request")
            << brimlet << QStringList{QStringLiteral("--diagnose"), QStringLiteral("--quit")}
            << QStringLiteral("One request at a time.");
        QTest::newRow("the simulator has no diagnosis")
            << simulator << QStringList{QStringLiteral("--diagnose")} << QStringLiteral("diagnose");
        QTest::newRow("a request and an argument")
            << brimlet << QStringList{QStringLiteral("--pause"), QStringLiteral("24")}
            << QStringLiteral("'24'");
        QTest::newRow("a request with a value")
            << brimlet << QStringList{QStringLiteral("--pause=24")} << QStringLiteral("pause");
        QTest::newRow("the simulator takes requests on its console only")
            << simulator << QStringList{QStringLiteral("--quit")} << QStringLiteral("quit");
        QTest::newRow("unknown argument")
            << brimlet << QStringList{QStringLiteral("file")} << QStringLiteral("'file'");
        QTest::newRow("simulator without a machine")
            << simulator << QStringList() << QStringLiteral("A machine file is needed.");
        QTest::newRow("simulator with an unknown option")
            << simulator << QStringList{QStringLiteral("--bogus")} << QStringLiteral("bogus");
    }
    void mistakesEndWithAUsageLine() {
        QFETCH(QString, program);
        QFETCH(QStringList, arguments);
        QFETCH(QString, complaint);
        const Ended ended = run(program, arguments);
        QCOMPARE(ended.exitCode, 2);
        QVERIFY2(ended.err.contains(complaint), qPrintable(ended.err));
        QVERIFY2(ended.err.contains(QStringLiteral("Usage: %1 ").arg(program)),
                 qPrintable(ended.err));
        QCOMPARE(ended.out, QString());
    }

    void theProductCannotReadADescribedMachine() {
        const QByteArray product = bytesOf(QStringLiteral("brimlet"));
        const QByteArray simulator = bytesOf(QStringLiteral("brimlet-simulator"));
        QVERIFY(product.contains("BRIMLET_DISPLAY_LOST"));
        for (const char* const key : {"auxiliaryTopLeftArea", "builtIn", "drawNotch"}) {
            QVERIFY2(simulator.contains(utf16(key)), key);
            QVERIFY2(!product.contains(utf16(key)), key);
        }
    }

    void noVariableOfItsOwnChangesWhatTheProductFinds() {
        const QByteArray product = bytesOf(QStringLiteral("brimlet"));
        const QRegularExpression variable(QStringLiteral("BRIMLET_[A-Z_]+"));
        QStringList names;
        auto found = variable.globalMatch(QString::fromLatin1(product));
        while (found.hasNext()) {
            names << found.next().captured();
        }
        names.removeDuplicates();
        // Continues a pause after the display server has ended.
        QCOMPARE(names, QStringList(QStringLiteral("BRIMLET_DISPLAY_LOST")));
        QVERIFY(!product.contains(utf16("BRIMLET_")));
    }

    void theReasonOfTheStartIsRead_data() {
        QTest::addColumn<QStringList>("options");
        QTest::addColumn<StartReason>("reason");
        QTest::newRow("plainly") << QStringList() << StartReason::ByHand;
        QTest::newRow("to open the panel")
            << QStringList{QStringLiteral("--open")} << StartReason::Open;
        QTest::newRow("with the session")
            << QStringList{QStringLiteral("--autostart")} << StartReason::Session;
    }
    void theReasonOfTheStartIsRead() {
        QFETCH(QStringList, options);
        CommandLine commandLine;
        options.prepend(QStringLiteral("brimlet"));
        QVERIFY(!readCommandLine(options, Program::Linux, commandLine));
        QTEST(commandLine.reason, "reason");
        QVERIFY(!commandLine.request);
    }

    void validOptionsOnAMacAreRead_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::addColumn<bool>("isSelfTestWanted");
        QTest::addColumn<bool>("isPauseAsked");
        QTest::newRow("plainly") << QStringList() << false << false;
        QTest::newRow("with the process serial number")
            << QStringList{QStringLiteral("-psn_0_12345")} << false << false;
        QTest::newRow("to test itself")
            << QStringList{QStringLiteral("--self-test")} << true << false;
        QTest::newRow("to ask for a pause")
            << QStringList{QStringLiteral("--pause")} << false << true;
    }
    void validOptionsOnAMacAreRead() {
        QFETCH(QStringList, arguments);
        CommandLine commandLine;
        arguments.prepend(QStringLiteral("brimlet"));
        QVERIFY(!readCommandLine(arguments, Program::Mac, commandLine));
        QTEST(commandLine.isSelfTestWanted, "isSelfTestWanted");
        QTEST(commandLine.request == InstanceRequest::Pause, "isPauseAsked");
    }

    void mistakesOnAMacGiveExitCodeTwo_data() {
        QTest::addColumn<QStringList>("arguments");
        QTest::newRow("an argument") << QStringList{QStringLiteral("file")};
        QTest::newRow("unknown option") << QStringList{QStringLiteral("--bogus")};
        QTest::newRow("two requests at once")
            << QStringList{QStringLiteral("--self-test"), QStringLiteral("--quit")};
        QTest::newRow("the diagnosis is Linux's") << QStringList{QStringLiteral("--diagnose")};
        QTest::newRow("the session's start is Linux's")
            << QStringList{QStringLiteral("--autostart")};
    }
    void mistakesOnAMacGiveExitCodeTwo() {
        QFETCH(QStringList, arguments);
        CommandLine commandLine;
        arguments.prepend(QStringLiteral("brimlet"));
        QCOMPARE(readCommandLine(arguments, Program::Mac, commandLine), std::optional(2));
    }

    void aMissingMachineFileEndsWithAClearLine() {
        const Ended ended = run(QStringLiteral("brimlet-simulator"),
                                {QStringLiteral("--machine"), QStringLiteral("/no/such.json")});
        QCOMPARE(ended.exitCode, 2);
        QCOMPARE(ended.err,
                 QStringLiteral("brimlet-simulator: /no/such.json: No such file or directory\n"));
    }

    void aMalformedMachineFileEndsWithAClearLine() {
        const QTemporaryDir folder;
        QFile file(folder.filePath(QStringLiteral("m.json")));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write("{\"displays\": 3}");
        file.close();
        const Ended ended = run(QStringLiteral("brimlet-simulator"),
                                {QStringLiteral("--machine"), file.fileName()});
        QCOMPARE(ended.exitCode, 2);
        QCOMPARE(ended.err, QStringLiteral("brimlet-simulator: %1: \"displays\" must be a list of "
                                           "objects\n")
                                .arg(file.fileName()));
    }
};

BRIMLET_TEST(TestCommandLine, QCoreApplication)
#include "tst_commandline.moc"
