#include "tests/soak/day.h"
#include "tests/soak/faultyservice.h"
#include "tests/support/failure.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QRandomGenerator>

#include <cstdio>
#include <optional>

namespace {

using namespace brimlet;

constexpr int kMisuse = 2;

int complain(const char* complaint, int exitCode) {
    std::fprintf(stderr, "brimlet-soak: %s\n", complaint);
    return exitCode;
}

struct Settings final {
    DaySettings day;
    FaultySettings faulty;
    bool hasDay = true;
    bool hasFaults = true;
};

/// What the command line asks for; absent after a complaint.
std::optional<Settings> settingsOf(const QCoreApplication& application) {
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Runs the simulated program for long in the present desktop session, and "
                       "prints its figures as a\n"
                       "Markdown table. The exit status is 1 when one is out of bounds. Without "
                       "--day and --faults both."));
    const QCommandLineOption day(QStringLiteral("day"),
                                 QStringLiteral("Beside the placement service, left alone."));
    const QCommandLineOption faults(
        QStringLiteral("faults"),
        QStringLiteral("Beside a service that spoils half of its replies."));
    const QCommandLineOption hours(
        QStringLiteral("hours"),
        QStringLiteral("How long the day is, 0.1 or more; 24 unless given."), QStringLiteral("N"),
        QStringLiteral("24"));
    const QCommandLineOption speed(
        QStringLiteral("speed"),
        QStringLiteral("How many times as fast time passes: a divisor of 3000 up to 1000; 60 for "
                       "the day, 1000 in faults unless given."),
        QStringLiteral("S"));
    const QCommandLineOption replies(
        QStringLiteral("replies"),
        QStringLiteral("How many replies are asked for in faults; 100000 unless given."),
        QStringLiteral("N"), QStringLiteral("100000"));
    const QCommandLineOption seed(
        QStringLiteral("seed"), QStringLiteral("Which faults come; by chance unless given."),
        QStringLiteral("N"), QString::number(QRandomGenerator::global()->bounded(1'000'000)));
    const QCommandLineOption isShort(
        QStringLiteral("short"),
        QStringLiteral("A short warm-up, and loose bounds for memory and polls: for a try on a "
                       "busy machine."));
    parser.addOptions({day, faults, hours, speed, replies, seed, isShort});
    parser.addHelpOption();
    parser.process(application);

    constexpr int kPollMilliseconds = 3000;
    constexpr int kFastest = 1000;
    Settings settings;
    settings.day.isShort = settings.faulty.isShort = parser.isSet(isShort);
    settings.hasDay = parser.isSet(day) || !parser.isSet(faults);
    settings.hasFaults = parser.isSet(faults) || !parser.isSet(day);
    bool isRight = parser.positionalArguments().isEmpty();
    const auto number = [&](const QCommandLineOption& option) {
        bool isNumber = false;
        const int value = parser.value(option).toInt(&isNumber);
        isRight = isRight && isNumber && value >= 0;
        return value;
    };
    settings.faulty.replies = number(replies);
    settings.faulty.seed = number(seed);
    if (parser.isSet(speed)) {
        settings.day.speed = settings.faulty.speed = number(speed);
        isRight = isRight && settings.day.speed > 0 && settings.day.speed <= kFastest &&
                  kPollMilliseconds % settings.day.speed == 0;
    }
    bool isNumber = false;
    settings.day.hours = parser.value(hours).toDouble(&isNumber);
    constexpr double kLeastHours = 0.1;
    constexpr double kMostHours = 24 * 365;
    isRight = isRight && isNumber && settings.day.hours >= kLeastHours &&
              settings.day.hours <= kMostHours;
    if (!isRight || settings.faulty.replies == 0) {
        complain("wrong arguments; --help tells the right ones", kMisuse);
        return std::nullopt;
    }
    return settings;
}

} // namespace

int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    const auto settings = settingsOf(application);
    if (!settings) {
        return kMisuse;
    }
    Report report;
    try {
        if (settings->hasFaults) {
            soakInFaults(settings->faulty, report);
        }
        if (settings->hasDay) {
            soakADay(settings->day, report);
        }
    } catch (const std::exception& failure) {
        return complain(failure.what(), 1);
    }
    return report.isAllWell() ? 0 : 1;
}
