#pragma once

#include <QJsonArray>
#include <QMap>
#include <QSet>
#include <QStringList>

namespace brimlet {

/// The rows of one Markdown table, each a text by its column's heading.
using DocumentTable = QList<QMap<QString, QString>>;

/// The tables of PRIVACY.md, by the heading of their first column.
using PrivacyDocument = QMap<QString, DocumentTable>;

[[nodiscard]] PrivacyDocument readPrivacyDocument(const QString& markdown);

/// The indented lines of the section with that heading, which are commands.
[[nodiscard]] QString commandsIn(const QString& markdown, const QString& heading);

/// What the runs sent.
struct SeenTraffic final {
    QJsonArray requests;  ///< As the placement service logs them.
    QString authority;    ///< Host and port of the service.
    QStringList pictures; ///< The paths that the service named as pictures.
};

/// Every difference between the document and what was seen, in either direction, as readable
/// sentences; empty when they agree.
[[nodiscard]] QStringList deviations(const PrivacyDocument& document, const SeenTraffic& seen);

/// The same for the files of a run, which begin with a variable: "$XDG_CACHE_HOME/a/b".
[[nodiscard]] QStringList fileDeviations(const PrivacyDocument& document, const QStringList& seen);

/// The same for the secret item's attributes, each "name=value".
[[nodiscard]] QStringList attributeDeviations(const PrivacyDocument& document,
                                              const QSet<QString>& seen);

} // namespace brimlet
