#include "host/heartbeatbody.h"
#include "host/replyreading.h"
#include "tests/service/prism.h"
#include "tests/support/hostfixture.h"
#include "tests/support/processes.h"
#include "tests/support/testprogram.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QTest>

using namespace brimlet;

namespace {

const QString kDisplay = QStringLiteral("/api/display");
const QString kEstimate = QStringLiteral("/api/host/me");

/// Names of fields with their types: "string", "integer", "boolean", "address" or "list".
using Fields = QMap<QString, QString>;

template <typename Type>
QString nameOf() {
    if constexpr (std::is_same_v<Type, std::optional<std::int64_t>>) {
        return QStringLiteral("integer");
    } else if constexpr (std::is_same_v<Type, std::optional<bool>>) {
        return QStringLiteral("boolean");
    } else if constexpr (std::is_same_v<Type, std::optional<Url>>) {
        return QStringLiteral("address");
    } else {
        return QStringLiteral("string");
    }
}

template <typename Owner, typename Type>
QString typeOf(Type Owner::* /*field*/) {
    return nameOf<Type>();
}

template <typename Key>
Fields fieldsOf(std::span<const Key> keys) {
    Fields fields;
    for (const Key& key : keys) {
        fields[QString::fromLatin1(key.name)] =
            std::visit([](auto field) { return typeOf(field); }, key.field);
    }
    return fields;
}

/// What the program reads of a host's reply.
Fields fieldsOfReply() {
    Fields fields = fieldsOf(replyKeys());
    fields[QString::fromLatin1(kCreativesKey)] = QStringLiteral("list");
    return fields;
}

/// The object at a path of keys, which ends at what is no object.
QJsonObject at(const QJsonObject& object, const QStringList& path) {
    QJsonObject found = object;
    for (const QString& key : path) {
        found = found.value(key).toObject();
    }
    return found;
}

QJsonObject schema(const QJsonObject& document, const QString& name) {
    return at(document, {QStringLiteral("components"), QStringLiteral("schemas"), name});
}

/// The schema itself, or the one that it refers to.
QJsonObject resolved(const QJsonObject& document, const QJsonObject& given) {
    const QString reference = given.value(QStringLiteral("$ref")).toString();
    return reference.isEmpty() ? given : schema(document, reference.section(u'/', -1));
}

QString typeOf(const QJsonObject& document, const QJsonObject& given) {
    if (given.value(QStringLiteral("$ref")).toString().endsWith(u"/Link")) {
        return QStringLiteral("address");
    }
    const QJsonObject found = resolved(document, given);
    const QString type = found.value(QStringLiteral("type")).toString();
    const QJsonArray either = found.value(QStringLiteral("anyOf")).toArray();
    return type == u"array"    ? QStringLiteral("list")
           : !either.isEmpty() ? typeOf(document, either.last().toObject())
                               : type;
}

QJsonObject properties(const QJsonObject& document, const QString& name) {
    return schema(document, name).value(QStringLiteral("properties")).toObject();
}

Fields documentedFields(const QJsonObject& document, const QString& name) {
    Fields fields;
    const QJsonObject all = properties(document, name);
    for (auto it = all.begin(); it != all.end(); ++it) {
        fields[it.key()] = typeOf(document, it.value().toObject());
    }
    return fields;
}

/// The document with another schema for the field of that name, or without it.
QJsonObject changed(QJsonObject document, const QString& name, const QString& field,
                    const QJsonValue& value) {
    QJsonObject components = document.value(QStringLiteral("components")).toObject();
    QJsonObject schemas = components.value(QStringLiteral("schemas")).toObject();
    QJsonObject one = schemas.value(name).toObject();
    QJsonObject all = one.value(QStringLiteral("properties")).toObject();
    if (value.isUndefined()) {
        all.remove(field);
    } else {
        all[field] = value;
    }
    one[QStringLiteral("properties")] = all;
    schemas[name] = one;
    components[QStringLiteral("schemas")] = schemas;
    document[QStringLiteral("components")] = components;
    return document;
}

bool isComplete(const QJsonObject& document) {
    return documentedFields(document, QStringLiteral("HostReply")) == fieldsOfReply() &&
           documentedFields(document, QStringLiteral("Creative")) == fieldsOf(creativeKeys());
}

/// A value of that type that is no field's default.
QJsonValue unusual(const QString& type) {
    if (type == u"list") {
        return QJsonArray{
            QJsonObject{{QStringLiteral("slotId"), QStringLiteral("left")}},
            QJsonObject{{QStringLiteral("slotId"), QStringLiteral("right")}},
        };
    }
    return type == u"integer"   ? QJsonValue(7)
           : type == u"boolean" ? QJsonValue(true)
                                : QJsonValue(QStringLiteral("some text"));
}

QJsonObject unusualReply() {
    QJsonObject reply;
    const Fields fields = fieldsOfReply();
    for (auto it = fields.begin(); it != fields.end(); ++it) {
        reply[it.key()] = unusual(it.value());
    }
    return reply;
}

/// A host in a folder of its own whose replies have these bodies, one after another.
Assignment after(const QList<std::pair<QString, QJsonObject>>& replies) {
    HostFixture host;
    host.bundle.bundlePath = QStringLiteral("/home/somebody/Brimlet");
    host.keepToken("token");
    const auto store = host.makeStore();
    for (const auto& [path, body] : replies) {
        host.http.answer(path, 200, QJsonDocument(body).toJson());
        startTask(path == kDisplay ? store->refreshDisplay() : store->refreshEstimate());
    }
    return store->assignment();
}

/// The reply of a service to a host that is known to it.
QJsonObject answer(const QString& root, const QByteArray& method, const QString& path,
                   const QByteArray& body = {}) {
    QNetworkAccessManager network;
    QNetworkRequest request(QUrl(root + path));
    request.setRawHeader("Authorization", "Bearer demo-host-token");
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    const std::unique_ptr<QNetworkReply> reply(network.sendCustomRequest(request, method, body));
    (void)QTest::qWaitFor([&] { return reply->isFinished(); }, 15'000);
    QString text = QString::fromUtf8(reply->readAll());
    // In the document it is at the default address.
    text.replace(root, QStringLiteral("http://127.0.0.1:8791"));
    return QJsonDocument::fromJson(text.toUtf8()).object();
}

} // namespace

/// Compares docs/service/openapi.yaml with what the program reads and sends.
class TestDocument final : public QObject {
    Q_OBJECT

    QJsonObject m_document;

    [[nodiscard]] QJsonObject example(const char* name) const {
        return at(m_document, {QStringLiteral("components"), QStringLiteral("examples"),
                               QString::fromLatin1(name), QStringLiteral("value")});
    }

private Q_SLOTS:
    void initTestCase() {
        m_document = serviceDocumentAsJson();
        QVERIFY(!m_document.isEmpty());
    }

    void everyFieldOfAHostsReplyIsDocumented() {
        QCOMPARE(documentedFields(m_document, QStringLiteral("HostReply")), fieldsOfReply());
    }

    void everyFieldOfACreativeIsDocumented() {
        QCOMPARE(documentedFields(m_document, QStringLiteral("Creative")),
                 fieldsOf(creativeKeys()));
    }

    void anotherFieldOrTypeIsReported() {
        QVERIFY(isComplete(m_document));
        const QJsonObject text{{QStringLiteral("type"), QStringLiteral("string")}};
        const QJsonObject number{{QStringLiteral("type"), QStringLiteral("number")}};
        for (const char* const schemaName : {"HostReply", "Creative"}) {
            const QString name = QString::fromLatin1(schemaName);
            for (const QString& field : properties(m_document, name).keys()) {
                QVERIFY(!isComplete(changed(m_document, name, field, QJsonValue::Undefined)));
                QVERIFY(!isComplete(changed(m_document, name, field, number)));
            }
            QVERIFY(!isComplete(changed(m_document, name, QStringLiteral("news"), text)));
        }
    }

    void aDisplayReplyChangesItsDocumentedFieldsOnly() {
        const QJsonObject all = unusualReply();
        QJsonObject documented;
        for (const QString& name : properties(m_document, QStringLiteral("DisplayReply")).keys()) {
            documented[name] = all.value(name);
        }
        QCOMPARE(after({{kDisplay, all}}), after({{kDisplay, documented}}));
        for (const QString& name : documented.keys()) {
            QJsonObject less = documented;
            less.remove(name);
            QVERIFY2(!(after({{kDisplay, less}}) == after({{kDisplay, all}})), qPrintable(name));
        }
    }

    void missingFieldsHaveTheirDocumentedDefaults() {
        const QJsonObject fields = properties(m_document, QStringLiteral("HostReply"));
        QJsonObject defaults;
        QStringList without;
        for (auto it = fields.begin(); it != fields.end(); ++it) {
            const QJsonValue value =
                resolved(m_document, it.value().toObject()).value(QStringLiteral("default"));
            if (value.isUndefined()) {
                without << it.key();
            } else {
                defaults[it.key()] = value;
            }
        }
        const std::pair before{kEstimate, unusualReply()};
        const Assignment missing = after({before, {kEstimate, {}}});
        QCOMPARE(missing, after({before, {kEstimate, defaults}}));
        for (const QString& name : defaults.keys()) {
            QJsonObject other = defaults;
            other[name] = unusualReply().value(name);
            QVERIFY2(!(missing == after({before, {kEstimate, other}})), qPrintable(name));
        }
        // One stays as it was, the other is what the program itself sees.
        QCOMPARE(without, (QStringList{QStringLiteral("agreementText"),
                                       QStringLiteral("fromApplications")}));
        QCOMPARE(missing.agreementText, QStringLiteral("some text"));
        QCOMPARE(missing.fromApplications, false);
    }

    void aHeartbeatHasItsDocumentedFields() {
        const QJsonObject body = QJsonDocument::fromJson(heartbeatBody(false, true, true)).object();
        const QString name = QStringLiteral("Heartbeat");
        QCOMPARE(properties(m_document, name).keys(), body.keys());
        QStringList required =
            schema(m_document, name).value(QStringLiteral("required")).toVariant().toStringList();
        required.sort();
        QCOMPARE(required, body.keys());
        QCOMPARE(body, example("HeartbeatWhileShowing"));
        QCOMPARE(QJsonDocument::fromJson(heartbeatBody(true, false, true)).object(),
                 example("HeartbeatWhilePaused"));
    }

    void theExamplesAreTheSampleWeek() {
        const PlacementProcess service;
        const auto ask = [&service](const QByteArray& method, const char* path,
                                    const QByteArray& body = {}) {
            return answer(service.root(), method, QString::fromLatin1(path), body);
        };
        QCOMPARE(ask("GET", "/api/display"), example("DisplayOfTheSampleWeek"));
        (void)ask("POST", "/api/host/agree", "{}");
        QCOMPARE(ask("POST", "/api/host/heartbeat", heartbeatBody(false, true, true)),
                 example("HostInTheSampleWeek"));
    }
};

BRIMLET_TEST(TestDocument, QCoreApplication)
#include "tst_document.moc"
