#include "tests/robustness/cases.h"

#include <QStringList>

namespace brimlet {
namespace {

QString testsOf(const FaultCase& one) {
    QStringList tests;
    for (const char* const test : one.tests) {
        const QString text = QLatin1StringView(test);
        const QString suite = text.section(QStringLiteral(": "), 0, 0);
        const QString functions = text.section(QStringLiteral(": "), 1);
        tests << (functions == u"*" ? QStringLiteral("`%1`: all").arg(suite)
                                    : QStringLiteral("`%1`: %2").arg(suite, functions));
    }
    if (const QString besides = QString::fromUtf8(one.besides); !besides.isEmpty()) {
        tests << besides;
    }
    return tests.join(QStringLiteral("<br>"));
}

} // namespace

QString asMarkdown(const std::vector<FaultCase>& cases) {
    QString text;
    QString area;
    for (const FaultCase& one : cases) {
        if (area != QLatin1StringView(one.area)) {
            area = QLatin1StringView(one.area);
            text += QStringLiteral("\n## %1\n\n| | what goes wrong | what happens | tests |\n"
                                   "|--:|---|---|---|\n")
                        .arg(area);
        }
        text += QStringLiteral("| %1 | %2 | %3 | %4 |\n")
                    .arg(QString::number(one.number), QString::fromUtf8(one.what),
                         QString::fromUtf8(one.outcome), testsOf(one));
    }
    return text;
}

} // namespace brimlet
