#include "tests/robustness/cases.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QProcess>
#include <QTest>

#include <cstdio>
#include <cstring>

using namespace brimlet;

namespace {

QByteArray outputOf(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished();
    return process.readAllStandardOutput();
}

/// The program of every test that CTest knows, by the test's name.
QMap<QString, QString> programs() {
    const QByteArray json =
        outputOf(QStringLiteral(BRIMLET_CTEST),
                 {QStringLiteral("--test-dir"), QStringLiteral(BRIMLET_BUILD_DIR),
                  QStringLiteral("--show-only=json-v1")});
    QMap<QString, QString> programs;
    for (const auto& test :
         QJsonDocument::fromJson(json).object().value(QStringLiteral("tests")).toArray()) {
        const QJsonArray command = test.toObject().value(QStringLiteral("command")).toArray();
        programs[test.toObject().value(QStringLiteral("name")).toString()] =
            command.isEmpty() ? QString() : command.last().toString();
    }
    return programs;
}

QStringList functionsOf(const QString& program) {
    QStringList functions;
    for (const QByteArray& line : outputOf(program, {QStringLiteral("-functions")}).split('\n')) {
        if (line.endsWith("()")) {
            functions << QString::fromLatin1(line.chopped(2));
        }
    }
    return functions;
}

} // namespace

/// The list of faults is whole, its tests are there, and the document shows it.
class TestCases final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void theNumbersGoFromOneToFortyFour() {
        int number = 0;
        for (const FaultCase& one : faultCases()) {
            QCOMPARE(one.number, ++number);
            QVERIFY(!one.tests.empty() || std::strlen(one.besides) > 0);
        }
        QCOMPARE(number, 44);
    }

    void everyNamedTestIsThere() {
        const QMap<QString, QString> known = programs();
        QVERIFY(!known.isEmpty());
        QMap<QString, QStringList> functions;
        for (const FaultCase& one : faultCases()) {
            for (const char* const test : one.tests) {
                const QString text = QLatin1StringView(test);
                const QString suite = text.section(QStringLiteral(": "), 0, 0);
                QVERIFY2(known.contains(suite), test);
                if (!functions.contains(suite)) {
                    functions[suite] = functionsOf(known[suite]);
                }
                QVERIFY2(!functions[suite].isEmpty(), test);
                const QString named = text.section(QStringLiteral(": "), 1);
                for (const QString& function : named.split(QStringLiteral(", "))) {
                    QVERIFY2(function == u"*" || functions[suite].contains(function),
                             qPrintable(suite + u' ' + function));
                }
            }
        }
    }

    void theDocumentShowsThem() {
        QFile file(QStringLiteral(BRIMLET_SOURCE_DIR "/docs/robustness.md"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QString document = QString::fromUtf8(file.readAll());
        const qsizetype start = document.indexOf(QStringLiteral("\n## Time and transport\n"));
        QVERIFY(start >= 0);
        QCOMPARE(document.mid(start), asMarkdown(faultCases()));
    }
};

/// With --markdown it prints what the document has to show.
int main(int argc, char* argv[]) {
    const QCoreApplication application(argc, argv);
    if (argc == 2 && std::strcmp(argv[1], "--markdown") == 0) {
        std::fputs(qUtf8Printable(asMarkdown(faultCases())), stdout);
        return 0;
    }
    TestCases test;
    return QTest::qExec(&test, argc, argv);
}

#include "tst_cases.moc"
