#include "tools/fleet/options.h"

#include "platform/url.h"

namespace brimlet::fleet {
namespace {

constexpr int kMostHosts = 20'000;
constexpr int kMostSeconds = 24 * 60 * 60;

/// Digits only, within these bounds.
std::optional<int> readNumber(const QString& text, int least, int most) {
    bool isNumber = false;
    const int number = text.toInt(&isNumber);
    const bool isPlain = isNumber && QString::number(number) == text;
    return isPlain && number >= least && number <= most ? std::optional(number) : std::nullopt;
}

QString numberComplaint(const QString& name, int least, int most, const QString& value) {
    return QStringLiteral("%1 must be a number from %2 to %3, not %4")
        .arg(name)
        .arg(least)
        .arg(most)
        .arg(value);
}

bool isRoot(const QString& text) {
    const auto url = Url::fromString(text);
    const QString scheme = url ? url->scheme().value_or(QString()) : QString();
    const bool isHttp = scheme.compare(u"http", Qt::CaseInsensitive) == 0 ||
                        scheme.compare(u"https", Qt::CaseInsensitive) == 0;
    return isHttp && !url->host().value_or(QString()).isEmpty() && !text.contains(u'?') &&
           !text.contains(u'#');
}

/// Stores the value in the options. Returns a complaint, empty when the value is valid.
QString takeValue(const QString& name, const QString& value, Options& options) {
    const auto takeNumber = [&](int least, int most, const auto& put) {
        const auto number = readNumber(value, least, most);
        if (!number) {
            return numberComplaint(name, least, most, value);
        }
        put(*number);
        return QString();
    };
    if (name == u"--hosts") {
        return takeNumber(1, kMostHosts, [&](int number) { options.hosts = number; });
    }
    if (name == u"--spread") {
        return takeNumber(0, kMostSeconds,
                          [&](int number) { options.spread = std::chrono::seconds(number); });
    }
    if (name == u"--seconds") {
        return takeNumber(1, kMostSeconds,
                          [&](int number) { options.measured = std::chrono::seconds(number); });
    }
    if (name == u"--root") {
        if (!isRoot(value)) {
            return QStringLiteral("--root must be an http or https address with a host, not ") +
                   value;
        }
        options.root = value.endsWith(u'/') ? value.chopped(1) : value;
    } else if (name == u"--json") {
        options.jsonFile = value;
    } else {
        if (options.hasToken()) {
            return QStringLiteral("only one of --token and --token-prefix can be given, once");
        }
        options.token = value;
        options.isTokenPrefix = name == u"--token-prefix";
    }
    return {};
}

QString missing(const Options& options) {
    if (options.help || options.version || (options.hosts > 0 && !options.root.isEmpty())) {
        return {};
    }
    return options.hosts > 0 ? QStringLiteral("--root is missing")
                             : QStringLiteral("--hosts is missing");
}

} // namespace

QByteArray Options::tokenOf(int host) const {
    return isTokenPrefix ? token.toUtf8() + QByteArray::number(host) : token.toUtf8();
}

std::optional<Options> parseOptions(const QStringList& arguments, QString& error) {
    static const QStringList named = {QStringLiteral("--hosts"),  QStringLiteral("--root"),
                                      QStringLiteral("--spread"), QStringLiteral("--seconds"),
                                      QStringLiteral("--token"),  QStringLiteral("--token-prefix"),
                                      QStringLiteral("--json")};
    Options options;
    for (qsizetype index = 0; index < arguments.size(); ++index) {
        const QString& argument = arguments[index];
        if (argument == u"--help" || argument == u"--version") {
            (argument == u"--help" ? options.help : options.version) = true;
            continue;
        }
        const qsizetype equals = argument.indexOf(u'=');
        const QString name = argument.left(equals);
        if (!named.contains(name)) {
            error = QStringLiteral("unknown option ") + argument;
            return std::nullopt;
        }
        const bool hasNext = equals < 0 && index + 1 < arguments.size();
        const QString value = equals >= 0 ? argument.mid(equals + 1)
                              : hasNext   ? arguments[++index]
                                          : QString();
        error = value.isEmpty() ? name + QStringLiteral(" needs a value")
                                : takeValue(name, value, options);
        if (!error.isEmpty()) {
            return std::nullopt;
        }
    }
    error = missing(options);
    return error.isEmpty() ? std::optional(options) : std::nullopt;
}

QByteArray helpText() {
    return "Usage: brimlet-fleet --hosts N --root URL [OPTION...]\n"
           "\n"
           "Runs N hosts without windows against a placement service, at the pace of real ones:\n"
           "a poll each 3 seconds, a heartbeat at the start and each 900 seconds. Tells what they\n"
           "ask of the service and what each costs here (see docs/capacity.md).\n"
           "\n"
           "  --hosts N         1 to 20000\n"
           "  --root URL        the service's root, http or https\n"
           "  --spread SECONDS  over which the starts are spread (default 3)\n"
           "  --seconds S       measured after all have started (default 30)\n"
           "  --token TEXT      every host's token; without one they ask for the public display\n"
           "  --token-prefix P  each host has the token P and its number, from 0 on\n"
           "  --json FILE       write the figures as one JSON object too\n"
           "  --help            show this and exit\n"
           "  --version         show the version and exit\n"
           "\n"
           "A token given here can be seen by other users of this machine: give none that "
           "counts.\n";
}

} // namespace brimlet::fleet
