#include "tests/soak/report.h"

#include <cstdio>

namespace brimlet {
namespace {

void print(const QString& line) {
    std::puts(line.toUtf8().constData());
    std::fflush(stdout);
}

void printRow(const QString& what, const QString& due, const QString& seen,
              const QString& verdict) {
    print(QStringLiteral("| %1 | %2 | %3 | %4 |").arg(what, due, seen, verdict));
}

} // namespace

void Report::begin(const QString& title) {
    print(QStringLiteral("\n## %1\n").arg(title));
    printRow(QStringLiteral("figure"), QStringLiteral("due"), QStringLiteral("seen"), {});
    print(QStringLiteral("|---|---|---|---|"));
}

void Report::add(const QString& what, qint64 seen) {
    printRow(what, {}, QString::number(seen), {});
}

void Report::expect(const QString& what, const QString& due, const QString& seen) {
    judge(what, due, seen, seen == due);
}

void Report::expect(const QString& what, qint64 due, qint64 seen) {
    judge(what, QString::number(due), QString::number(seen), seen == due);
}

void Report::expectWithin(const QString& what, qint64 least, qint64 most, qint64 seen) {
    judge(what, QStringLiteral("%1 to %2").arg(least).arg(most), QString::number(seen),
          least <= seen && seen <= most);
}

void Report::expectAtLeast(const QString& what, qint64 least, qint64 seen) {
    judge(what, QStringLiteral("at least %1").arg(least), QString::number(seen), least <= seen);
}

void Report::expectAtMost(const QString& what, qint64 most, qint64 seen) {
    judge(what, QStringLiteral("at most %1").arg(most), QString::number(seen), seen <= most);
}

void Report::judge(const QString& what, const QString& due, const QString& seen, bool isWell) {
    printRow(what, due, seen, isWell ? QStringLiteral("ok") : QStringLiteral("OUT"));
    m_isAllWell = m_isAllWell && isWell;
}

} // namespace brimlet
