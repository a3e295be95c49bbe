#include "app/commandline.h"

#include <QCommandLineParser>

#include <cstdio>

namespace brimlet {
namespace {

void print(FILE* stream, const QString& text) {
    std::fputs(text.toUtf8().constData(), stream);
}

QString nameOf(Program program) {
    return program == Program::Simulator ? QStringLiteral("brimlet-simulator")
                                         : QStringLiteral("brimlet");
}

QString optionsOf(Program program) {
    switch (program) {
    case Program::Mac:
        return QStringLiteral("[--pause | --quit | --self-test | --help | --version]");
    case Program::Simulator:
        return QStringLiteral("--machine FILE [--console]");
    case Program::Linux:
        break;
    }
    return QStringLiteral("[--open | --autostart | --pause | --quit | --diagnose | --help | "
                          "--version]");
}

/// macOS may pass the process serial number, e.g. "-psn_0_12345", to a downloaded program that is
/// opened for the first time.
QStringList withoutProcessNumber(QStringList arguments) {
    arguments.removeIf(
        [](const QString& argument) { return argument.startsWith(QStringLiteral("-psn_")); });
    return arguments;
}

} // namespace

QStringList argumentsOf(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
    }
    return arguments;
}

std::optional<int> readCommandLine(const QStringList& arguments, Program program,
                                   CommandLine& commandLine) {
    const bool isSimulator = program == Program::Simulator;
    const bool isMac = program == Program::Mac;
    QCommandLineParser parser;
    parser.setApplicationDescription(
        isSimulator ? QStringLiteral("Runs Brimlet on a machine described in a file.")
                    : QStringLiteral("Shows the week's brands beside the camera notch."));
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Print this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Print the version."));
    const QCommandLineOption machine(QStringLiteral("machine"),
                                     QStringLiteral("The machine to run on, a JSON file."),
                                     QStringLiteral("file"));
    const QCommandLineOption console(
        QStringLiteral("console"),
        QStringLiteral("Read commands from standard input and answer in JSON lines."));
    const QCommandLineOption open(
        QStringLiteral("open"),
        QStringLiteral("Open the panel, of the running program if there is one."));
    const QCommandLineOption autostart(
        QStringLiteral("autostart"),
        QStringLiteral("Start with the panel closed, even without a tray; for sessions."));
    const QCommandLineOption pause(
        QStringLiteral("pause"),
        QStringLiteral("Have the running program pause ads for 24 hours."));
    const QCommandLineOption quit(QStringLiteral("quit"),
                                  QStringLiteral("Have the running program quit."));
    const QCommandLineOption selfTest(
        QStringLiteral("self-test"),
        QStringLiteral("Tell what the overlay panel and the screens are like, and end."));
    const QCommandLineOption diagnose(
        QStringLiteral("diagnose"),
        QStringLiteral("Print what Brimlet finds in the system and the desktop, for bug reports."));
    parser.addOptions({help, version});
    parser.addOptions(isSimulator ? QList{machine, console}
                      : isMac     ? QList{pause, quit, selfTest}
                                  : QList{open, autostart, pause, quit, diagnose});
    const bool isParsed = parser.parse(isMac ? withoutProcessNumber(arguments) : arguments);
    const auto refuse = [program](const QString& complaint) {
        print(stderr, QStringLiteral("%1: %2\nUsage: %1 %3\n")
                          .arg(nameOf(program), complaint, optionsOf(program)));
        return 2;
    };
    if (!isParsed) {
        return refuse(parser.errorText());
    }
    if (parser.isSet(help)) {
        print(stdout,
              parser.helpText().replace(QStringLiteral("<executable_name>"), nameOf(program)));
        return 0;
    }
    if (parser.isSet(version)) {
        print(stdout,
              QStringLiteral("%1 %2\n").arg(nameOf(program), QStringLiteral(BRIMLET_VERSION)));
        return 0;
    }
    if (!parser.positionalArguments().isEmpty()) {
        return refuse(QStringLiteral("Unknown argument '%1'.")
                          .arg(parser.positionalArguments().constFirst()));
    }
    if (isSimulator) {
        commandLine.machineFile = parser.value(machine);
        commandLine.isConsoleWanted = parser.isSet(console);
        if (commandLine.machineFile.isEmpty()) {
            return refuse(QStringLiteral("A machine file is needed."));
        }
        return std::nullopt;
    }
    commandLine.isSelfTestWanted = isMac && parser.isSet(selfTest);
    commandLine.isDiagnosisWanted = program == Program::Linux && parser.isSet(diagnose);
    const bool isPause = parser.isSet(pause);
    const bool isQuit = parser.isSet(quit);
    const bool isOpen = !isMac && parser.isSet(open);
    const bool isAutostart = !isMac && parser.isSet(autostart);
    if (int(isPause) + int(isQuit) + int(isOpen) + int(isAutostart) +
            int(commandLine.isSelfTestWanted) + int(commandLine.isDiagnosisWanted) >
        1) {
        return refuse(QStringLiteral("One request at a time."));
    }
    if (isOpen) {
        commandLine.reason = StartReason::Open;
    } else if (isAutostart) {
        commandLine.reason = StartReason::Session;
    } else if (isPause) {
        commandLine.request = InstanceRequest::Pause;
    } else if (isQuit) {
        commandLine.request = InstanceRequest::Quit;
    }
    return std::nullopt;
}

int exitCodeOf(InstanceAnswer answer) {
    switch (answer) {
    case InstanceAnswer::Done:
        return 0;
    case InstanceAnswer::NotRunning:
        std::fputs("brimlet: Brimlet is not running.\n", stderr);
        break;
    case InstanceAnswer::NoAnswer:
        std::fputs("brimlet: Brimlet is running already but does not answer.\n", stderr);
        break;
    }
    return 1;
}

} // namespace brimlet
