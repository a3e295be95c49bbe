#include "app/commandline.h"

#include <QCommandLineParser>

#include <cstdio>

namespace brimlet {
namespace {

void print(FILE* stream, const QString& text) {
    std::fputs(text.toUtf8().constData(), stream);
}

} // namespace

QStringList argumentsOf(int argc, char* argv[]) {
    QStringList arguments;
    for (int i = 0; i < argc; ++i) {
        arguments << QString::fromLocal8Bit(argv[i]);
    }
    return arguments;
}

std::optional<int> readCommandLine(const QStringList& arguments, bool isSimulator,
                                   CommandLine& commandLine) {
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
    const QCommandLineOption pause(
        QStringLiteral("pause"),
        QStringLiteral("Have the running program pause ads for 24 hours."));
    const QCommandLineOption quit(QStringLiteral("quit"),
                                  QStringLiteral("Have the running program quit."));
    parser.addOptions({help, version});
    parser.addOptions(isSimulator ? QList{machine, console} : QList{pause, quit});
    const bool isParsed = parser.parse(arguments);
    const QString program =
        isSimulator ? QStringLiteral("brimlet-simulator") : QStringLiteral("brimlet");
    const QString usage =
        isSimulator
            ? QStringLiteral("Usage: %1 --machine FILE [--console]\n").arg(program)
            : QStringLiteral("Usage: %1 [--pause | --quit | --help | --version]\n").arg(program);
    const auto refuse = [&](const QString& complaint) {
        print(stderr, QStringLiteral("%1: %2\n%3").arg(program, complaint, usage));
        return 2;
    };
    if (!isParsed) {
        return refuse(parser.errorText());
    }
    if (parser.isSet(help)) {
        print(stdout, parser.helpText().replace(QStringLiteral("<executable_name>"), program));
        return 0;
    }
    if (parser.isSet(version)) {
        print(stdout, QStringLiteral("%1 %2\n").arg(program, QStringLiteral(BRIMLET_VERSION)));
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
    if (parser.isSet(pause) && parser.isSet(quit)) {
        return refuse(QStringLiteral("Either --pause or --quit, not both."));
    }
    if (parser.isSet(pause)) {
        commandLine.request = InstanceRequest::Pause;
    } else if (parser.isSet(quit)) {
        commandLine.request = InstanceRequest::Quit;
    }
    return std::nullopt;
}

} // namespace brimlet
