#include "tests/app/privacydocument.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QRegularExpression>

#include <algorithm>

namespace brimlet {
namespace {

QStringList cellsOf(const QString& line) {
    QStringList cells = line.split(u'|');
    cells.removeFirst();
    cells.removeLast();
    std::transform(cells.begin(), cells.end(), cells.begin(),
                   [](const QString& cell) { return cell.trimmed(); });
    return cells;
}

/// The parts of a cell that are set as code.
QStringList literals(const QString& cell) {
    const QStringList parts = cell.split(u'`');
    QStringList found;
    for (qsizetype i = 1; i < parts.size(); i += 2) {
        found << parts.at(i);
    }
    return found;
}

QString cell(const QMap<QString, QString>& row, const char* column) {
    return row.value(QString::fromLatin1(column));
}

DocumentTable table(const PrivacyDocument& document, const char* name) {
    return document.value(QString::fromLatin1(name));
}

/// The requests that a row names, each as "METHOD path".
QStringList requestsOf(const PrivacyDocument& document, const QMap<QString, QString>& row) {
    QStringList requests;
    for (const QString& name : cell(row, "in requests").split(QStringLiteral(", "))) {
        QString request = name; // unless the table of requests has it
        for (const auto& known : table(document, "request")) {
            if (cell(known, "request") == name) {
                request = literals(cell(known, "method and address")).join(u' ');
            }
        }
        requests << request;
    }
    return requests;
}

/// The document's statements on requests, one claim each.
QSet<QString> claimsOf(const PrivacyDocument& document) {
    QSet<QString> claims;
    for (const auto& row : table(document, "request")) {
        const QString request = literals(cell(row, "method and address")).join(u' ');
        claims << request + QStringLiteral(" with the body ") +
                      literals(cell(row, "body")).join(u' ')
               << request + QStringLiteral(" with the credential ") +
                      literals(cell(row, "credential")).join(u' ');
    }
    for (const auto& row : table(document, "header")) {
        for (const QString& request : requestsOf(document, row)) {
            claims << request + QStringLiteral(" with ") + cell(row, "header").toLower() +
                          QStringLiteral(": ") + literals(cell(row, "value")).join(u' ');
        }
    }
    for (const auto& row : table(document, "field")) {
        for (const QString& request : requestsOf(document, row)) {
            for (const QString& value : literals(cell(row, "values"))) {
                claims << request + QStringLiteral(" with the field ") + cell(row, "field") +
                              QStringLiteral(" = ") + value;
            }
        }
    }
    return claims;
}

/// The value as JSON without blanks.
QString compact(const QJsonValue& value) {
    const QByteArray list = QJsonDocument(QJsonArray{value}).toJson(QJsonDocument::Compact);
    return QString::fromUtf8(list.mid(1, list.size() - 2));
}

void addBody(QSet<QString>& claims, const QString& request, const QString& body) {
    const QJsonDocument json = QJsonDocument::fromJson(body.toUtf8());
    const QJsonObject fields = json.object();
    const bool isWord = body.isEmpty() || fields.isEmpty();
    const QString word = body.isEmpty() ? QStringLiteral("none") : body;
    claims << request + QStringLiteral(" with the body ") +
                  (isWord ? word : QStringLiteral("fields"));
    for (auto field = fields.begin(); field != fields.end(); ++field) {
        claims << request + QStringLiteral(" with the field ") + field.key() +
                      QStringLiteral(" = ") + compact(field.value());
    }
}

void addCredential(QSet<QString>& claims, const QString& request, const QJsonValue& sent) {
    const QJsonObject known{{QStringLiteral("scheme"), QStringLiteral("Bearer")},
                            {QStringLiteral("token"), QStringLiteral("known")}};
    QString credential = QStringLiteral("none");
    if (!sent.isNull()) {
        const bool isToken = sent.toObject() == known;
        credential = isToken ? QStringLiteral("the host token") : QStringLiteral("another one");
        claims << request + QStringLiteral(" with authorization: Bearer TOKEN");
    }
    claims << request + QStringLiteral(" with the credential ") + credential;
}

/// Whether it has the form of the placement service's entity tags.
bool isEntityTag(const QString& text) {
    static const QRegularExpression form(
        QRegularExpression::anchoredPattern(QStringLiteral("W/\"[0-9a-f]{16}\"")));
    return form.match(text).hasMatch();
}

/// The same for the requests that were seen.
QSet<QString> claimsOf(const SeenTraffic& seen) {
    QSet<QString> claims;
    for (const auto& value : seen.requests) {
        const QJsonObject object = value.toObject();
        const auto text = [&object](const char* key) {
            return object.value(QString::fromLatin1(key)).toString();
        };
        QString address = text("path");
        if (const QString query = text("query"); !query.isEmpty()) {
            address += u'?' + query;
        }
        if (seen.pictures.contains(address)) {
            address = QStringLiteral("assetUrl");
        }
        const QString request = text("method") + u' ' + address;
        addBody(claims, request, text("body"));
        addCredential(claims, request, object.value(QStringLiteral("authorization")));
        const QString length = QString::number(text("body").toUtf8().size());
        const QJsonObject headers = object.value(QStringLiteral("headers")).toObject();
        for (auto header = headers.begin(); header != headers.end(); ++header) {
            QString word = header.value().toString();
            if (header.key() == u"host" && word == seen.authority) {
                word = QStringLiteral("HOST");
            } else if (header.key() == u"content-length" && word == length) {
                word = QStringLiteral("LENGTH");
            } else if (header.key() == u"if-none-match" && isEntityTag(word)) {
                word = QStringLiteral("MARK");
            }
            claims << request + QStringLiteral(" with ") + header.key() + QStringLiteral(": ") +
                          word;
        }
    }
    return claims;
}

QStringList differences(const QSet<QString>& documented, const QSet<QString>& seen) {
    QStringList found;
    for (const QString& claim : seen - documented) {
        found << QStringLiteral("not in the document: ") + claim;
    }
    for (const QString& claim : documented - seen) {
        found << QStringLiteral("in the document only: ") + claim;
    }
    found.sort();
    return found;
}

/// The file's name in the document, or the file itself if no row matches.
QString documentedName(const QSet<QString>& names, const QString& file) {
    for (const QString& name : names) {
        QString pattern = QRegularExpression::escape(name);
        pattern.replace(QStringLiteral("NUMBER"), QStringLiteral("[0-9]+"));
        pattern.replace(QStringLiteral("XXXXXX"), QStringLiteral("[A-Za-z0-9]{6}"));
        if (QRegularExpression(QRegularExpression::anchoredPattern(pattern))
                .match(file)
                .hasMatch()) {
            return name;
        }
    }
    return file;
}

} // namespace

PrivacyDocument readPrivacyDocument(const QString& markdown) {
    PrivacyDocument document;
    QStringList headings;
    for (const QString& line : markdown.split(u'\n')) {
        if (!line.startsWith(u'|')) {
            headings.clear();
        } else if (const QStringList cells = cellsOf(line); headings.isEmpty()) {
            headings = cells;
            document.insert(headings.constFirst(), {});
        } else if (cells.constFirst() != u"---" && cells.size() == headings.size()) {
            QMap<QString, QString> row;
            for (qsizetype i = 0; i < cells.size(); ++i) {
                row.insert(headings.at(i), cells.at(i));
            }
            document[headings.constFirst()] << row;
        }
    }
    return document;
}

QString commandsIn(const QString& markdown, const QString& heading) {
    const QString section = markdown.section(QStringLiteral("\n## ") + heading, 1, 1);
    QStringList commands;
    for (const QString& line : section.section(QStringLiteral("\n## "), 0, 0).split(u'\n')) {
        if (line.startsWith(QStringLiteral("    "))) {
            commands << line.trimmed();
        }
    }
    return commands.join(u'\n');
}

QStringList deviations(const PrivacyDocument& document, const SeenTraffic& seen) {
    return differences(claimsOf(document), claimsOf(seen));
}

QStringList fileDeviations(const PrivacyDocument& document, const QStringList& seen) {
    QSet<QString> documented;
    QSet<QString> found;
    for (const auto& row : table(document, "file")) {
        documented << literals(cell(row, "file")).join(u' ');
    }
    for (const QString& file : seen) {
        found << documentedName(documented, file);
    }
    return differences(documented, found);
}

QStringList attributeDeviations(const PrivacyDocument& document, const QSet<QString>& seen) {
    QSet<QString> documented;
    for (const auto& row : table(document, "attribute")) {
        documented << cell(row, "attribute") + u'=' + literals(cell(row, "value")).join(u' ');
    }
    return differences(documented, seen);
}

} // namespace brimlet
