#include "tests/support/faultserver/faultscript.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSet>

namespace brimlet {
namespace {

std::chrono::milliseconds millisecondsOf(const QJsonValue& value) {
    return std::chrono::milliseconds(value.toInt());
}

QByteArray contentOf(const QString& path, QString& complaint) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly)) {
        complaint = QStringLiteral("%1 cannot be read").arg(path);
    }
    return file.isOpen() ? file.readAll() : QByteArray();
}

FaultStep readStep(const QJsonObject& object, QString& complaint) {
    using Kind = FaultStep::Kind;
    const auto value = [&object](const char* key) { return object.value(QLatin1StringView(key)); };
    const auto has = [&object](const char* key) { return object.contains(QLatin1StringView(key)); };
    if (has("send")) {
        return {Kind::Send, value("send").toString().toUtf8()};
    }
    if (has("base64")) {
        return {Kind::Send, QByteArray::fromBase64(value("base64").toString().toLatin1())};
    }
    if (has("file")) {
        return {Kind::Send, contentOf(value("file").toString(), complaint)};
    }
    if (has("drip")) {
        return {Kind::Drip, value("drip").toString().toUtf8(), millisecondsOf(value("everyMs")),
                value("isForEver").toBool()};
    }
    if (has("flood")) {
        return {Kind::Flood, value("flood").toString().toUtf8()};
    }
    if (has("waitMs")) {
        return {Kind::Wait, {}, millisecondsOf(value("waitMs"))};
    }
    const QString end = value("end").toString();
    if (end == u"cut" || end == u"reset") {
        return {end == u"cut" ? Kind::Cut : Kind::Reset};
    }
    complaint = QStringLiteral("%1 is no step")
                    .arg(QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)));
    return {};
}

FaultSteps readSteps(const QJsonValue& list, QString& complaint) {
    FaultSteps steps;
    if (!list.isArray() && !list.isUndefined()) {
        complaint = QStringLiteral("steps must be a list");
    }
    for (const auto& step : list.toArray()) {
        steps.push_back(readStep(step.toObject(), complaint));
        const FaultStep& last = steps.back();
        const bool isEndless = last.kind == FaultStep::Kind::Flood || last.isForEver;
        if (isEndless && last.bytes.isEmpty()) {
            complaint = QStringLiteral("nothing cannot be sent for ever");
        }
    }
    return steps;
}

} // namespace

std::variant<FaultScript, QString> readFaultScript(const QByteArray& json) {
    const QJsonDocument document = QJsonDocument::fromJson(json);
    if (!document.isObject()) {
        return QStringLiteral("the script must be one JSON object");
    }
    static const QSet<QString> kKeys{QStringLiteral("isAccepting"), QStringLiteral("greeting"),
                                     QStringLiteral("answers"), QStringLiteral("random")};
    const QJsonObject object = document.object();
    for (const QString& key : object.keys()) {
        if (!kKeys.contains(key)) {
            return QStringLiteral("\"%1\" is no key of a script").arg(key);
        }
    }
    QString complaint;
    FaultScript script;
    script.isAccepting = object.value(QStringLiteral("isAccepting")).toBool(true);
    script.greeting = readSteps(object.value(QStringLiteral("greeting")), complaint);
    const QJsonObject answers = object.value(QStringLiteral("answers")).toObject();
    for (auto it = answers.begin(); it != answers.end(); ++it) {
        script.answers[it.key().toUtf8()] = readSteps(it.value(), complaint);
    }
    const QJsonObject random = object.value(QStringLiteral("random")).toObject();
    script.randomShare = random.value(QStringLiteral("share")).toDouble();
    script.randomSeed = static_cast<quint32>(random.value(QStringLiteral("seed")).toInt());
    if (!complaint.isEmpty()) {
        return complaint;
    }
    return script;
}

} // namespace brimlet
