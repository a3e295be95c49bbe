#include "platform/simulated/machine.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <cmath>
#include <functional>
#include <limits>
#include <utility>

namespace brimlet {
namespace {

/// Takes the values of a JSON object key by key and keeps the first error.
class Reader final {
public:
    Reader(QJsonObject object, QString where)
        : m_object(std::move(object))
        , m_where(std::move(where)) {}

    [[nodiscard]] const QString& error() const { return m_error; }

    void complain(const QString& key, const QString& wanted) {
        if (m_error.isEmpty()) {
            m_error = QStringLiteral("\"%1\" must be %2").arg(m_where + key, wanted);
        }
    }
    void pass(const QString& error) {
        if (m_error.isEmpty()) {
            m_error = error;
        }
    }

    /// Absent when the key is missing; also absent, with an error, when `isWanted` is false for its
    /// value.
    std::optional<QJsonValue> take(const QString& key, const QString& wanted,
                                   bool (QJsonValue::*isWanted)() const) {
        const QJsonValue value = m_object.take(key);
        if (value.isUndefined()) {
            return std::nullopt;
        }
        if (!(value.*isWanted)()) {
            complain(key, wanted);
            return std::nullopt;
        }
        return value;
    }

    std::optional<QString> string(const QString& key) {
        const auto value = take(key, QStringLiteral("a string"), &QJsonValue::isString);
        return value ? std::optional(value->toString()) : std::nullopt;
    }

    std::optional<bool> boolean(const QString& key) {
        const auto value = take(key, QStringLiteral("true or false"), &QJsonValue::isBool);
        return value ? std::optional(value->toBool()) : std::nullopt;
    }

    std::optional<Rect> rect(const QString& key) {
        const QString wanted = QStringLiteral("four numbers [x, y, width, height], none negative "
                                              "but x and y");
        const auto value = take(key, wanted, &QJsonValue::isArray);
        if (!value) {
            return std::nullopt;
        }
        const QJsonArray numbers = value->toArray();
        bool isGood = numbers.size() == 4;
        for (const auto& number : numbers) {
            isGood = isGood && number.isDouble();
        }
        if (!isGood || numbers.at(2).toDouble() < 0 || numbers.at(3).toDouble() < 0) {
            complain(key, wanted);
            return std::nullopt;
        }
        return Rect{numbers.at(0).toDouble(), numbers.at(1).toDouble(), numbers.at(2).toDouble(),
                    numbers.at(3).toDouble()};
    }

    std::optional<std::uint32_t> number(const QString& key) {
        const QString wanted = QStringLiteral("a whole number of 32 bits");
        const auto value = take(key, wanted, &QJsonValue::isDouble);
        if (!value) {
            return std::nullopt;
        }
        const double number = value->toDouble();
        if (std::trunc(number) != number || number < 0 ||
            number > std::numeric_limits<std::uint32_t>::max()) {
            complain(key, wanted);
            return std::nullopt;
        }
        return static_cast<std::uint32_t>(number);
    }

    double numberBetween(const QString& key, double least, double most, double byDefault) {
        const QString wanted = QStringLiteral("a number from %1 to %2").arg(least).arg(most);
        const auto value = take(key, wanted, &QJsonValue::isDouble);
        if (!value) {
            return byDefault;
        }
        if (value->toDouble() < least || value->toDouble() > most) {
            complain(key, wanted);
        }
        return value->toDouble();
    }

    /// Call this last: a key that has not been taken is an error.
    void refuseUnknownKeys() {
        if (!m_object.isEmpty() && m_error.isEmpty()) {
            m_error = QStringLiteral("unknown key \"%1\"").arg(m_where + m_object.keys().first());
        }
    }

private:
    QJsonObject m_object;
    QString m_where;
    QString m_error;
};

MachineDisplay readDisplay(Reader& reader) {
    MachineDisplay display;
    display.screen.number = reader.number(QStringLiteral("number"));
    display.builtIn = reader.boolean(QStringLiteral("builtIn")).value_or(false);
    const auto frame = reader.rect(QStringLiteral("frame"));
    if (!frame) {
        reader.complain(QStringLiteral("frame"), QStringLiteral("given"));
    }
    display.screen.frame = frame.value_or(Rect{});
    display.screen.auxiliaryTopLeftArea = reader.rect(QStringLiteral("auxiliaryTopLeftArea"));
    display.screen.auxiliaryTopRightArea = reader.rect(QStringLiteral("auxiliaryTopRightArea"));
    reader.refuseUnknownKeys();
    return display;
}

std::optional<std::vector<MachineDisplay>> readDisplays(Reader& reader) {
    const QString key = QStringLiteral("displays");
    const QString wanted = QStringLiteral("a list of objects");
    const auto value = reader.take(key, wanted, &QJsonValue::isArray);
    if (!value) {
        return std::nullopt;
    }
    std::vector<MachineDisplay> displays;
    for (const auto& element : value->toArray()) {
        if (!element.isObject()) {
            reader.complain(key, wanted);
            break;
        }
        Reader display(element.toObject(), QStringLiteral("displays[%1].").arg(displays.size()));
        displays.push_back(readDisplay(display));
        reader.pass(display.error());
    }
    return displays;
}

std::optional<MachineSecretStore> readSecretStore(Reader& reader) {
    const QString key = QStringLiteral("secretStore");
    const auto name = reader.string(key);
    if (!name) {
        return std::nullopt;
    }
    if (*name == u"system") {
        return MachineSecretStore::System;
    }
    if (*name != u"memory") {
        reader.complain(key, QStringLiteral("\"system\" or \"memory\""));
    }
    return MachineSecretStore::Memory;
}

} // namespace

MachineResult readMachine(const QByteArray& text) {
    QJsonParseError problem;
    const QJsonDocument document = QJsonDocument::fromJson(text, &problem);
    if (problem.error != QJsonParseError::NoError) {
        return QStringLiteral("line %1: %2")
            .arg(text.left(problem.offset).count('\n') + 1)
            .arg(problem.errorString());
    }
    if (!document.isObject()) {
        return QStringLiteral("a machine must be a JSON object");
    }
    Reader reader(document.object(), QString());
    Machine machine;
    machine.displays = readDisplays(reader);
    machine.bundlePath = reader.string(QStringLiteral("bundlePath"));
    if (const auto info = reader.take(QStringLiteral("infoDictionary"), QStringLiteral("an object"),
                                      &QJsonValue::isObject)) {
        machine.infoDictionary = info->toObject().toVariantMap();
    }
    machine.cachesFolder = reader.string(QStringLiteral("cachesFolder"));
    machine.secretStore = readSecretStore(reader);
    machine.reduceMotion = reader.boolean(QStringLiteral("reduceMotion"));
    machine.screensAsleep = reader.boolean(QStringLiteral("screensAsleep"));
    machine.speed = reader.numberBetween(QStringLiteral("speed"), 1, 1000, machine.speed);
    machine.drawNotch = reader.boolean(QStringLiteral("drawNotch")).value_or(false);
    reader.refuseUnknownKeys();
    if (!reader.error().isEmpty()) {
        return reader.error();
    }
    return machine;
}

} // namespace brimlet
