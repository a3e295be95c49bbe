#include "tests/soak/programuse.h"

#include "tests/support/failure.h"
#include "tests/support/memoryuse.h"

#include <QDir>
#include <QFile>

#include <algorithm>

namespace brimlet {
namespace {

constexpr qint64 kKibibyte = 1024;
constexpr qint64 kMebibyte = kKibibyte * 1024;
/// The most memory above that after the warm-up.
constexpr qint64 kGrowth = kMebibyte;
constexpr qint64 kGrowthOfShortRun = 8 * kMebibyte;
/// The most kept connections, any number of which may be open during a sample.
constexpr qint64 kConnections = 4;

/// Resident bytes that do not map a file.
qint64 anonymousMemory(qint64 process) {
    QFile status(QStringLiteral("/proc/%1/status").arg(process));
    if (status.open(QIODevice::ReadOnly)) {
        for (const QByteArray& line : status.readAll().split('\n')) {
            if (line.startsWith("RssAnon:")) {
                return line.simplified().split(' ').value(1).toLongLong() * kKibibyte;
            }
        }
    }
    return 0;
}

} // namespace

ProgramUse useOf(qint64 process) {
    ProgramUse use;
    use.memory = memoryInUse(process);
    use.anonymous = anonymousMemory(process);
    use.threads = threadCount(process);
    if (use.memory == 0) {
        throw Failure("the program has ended");
    }
    const QDir folder(QStringLiteral("/proc/%1/fd").arg(process));
    for (const QFileInfo& descriptor :
         folder.entryInfoList(QDir::AllEntries | QDir::System | QDir::NoDotAndDotDot)) {
        const bool isSocket = descriptor.symLinkTarget().section(u'/', -1).startsWith(u"socket:");
        ++(isSocket ? use.sockets : use.others);
    }
    return use;
}

void UseWatch::sample() {
    m_last = useOf(m_process);
    if (!m_isWarm) {
        m_warm = m_last;
        m_isWarm = true;
    }
    m_most = {std::max(m_most.memory, m_last.memory), std::max(m_most.anonymous, m_last.anonymous),
              std::max(m_most.threads, m_last.threads), std::max(m_most.sockets, m_last.sockets),
              std::max(m_most.others, m_last.others)};
}

QString UseWatch::description() const {
    return QStringLiteral("%1 KiB (%2 its own), %3 threads, %4 sockets, %5 other descriptors")
        .arg(m_last.memory / kKibibyte)
        .arg(m_last.anonymous / kKibibyte)
        .arg(m_last.threads)
        .arg(m_last.sockets)
        .arg(m_last.others);
}

void UseWatch::judge(Report& report, bool isShort) const {
    report.add(QStringLiteral("KiB of memory after the warm-up"), m_warm.memory / kKibibyte);
    report.add(QStringLiteral("KiB of memory, most in any sample"), m_most.memory / kKibibyte);
    const QString end = QStringLiteral("KiB of memory at the end");
    if (isMemoryDistorted()) {
        report.add(end, m_last.memory / kKibibyte);
    } else {
        report.expectAtMost(end,
                            (m_warm.memory + (isShort ? kGrowthOfShortRun : kGrowth)) / kKibibyte,
                            m_last.memory / kKibibyte);
    }
    const QString anonymous = QStringLiteral("of it no part of a file, ");
    report.add(anonymous + QStringLiteral("after the warm-up"), m_warm.anonymous / kKibibyte);
    report.add(anonymous + QStringLiteral("at the end"), m_last.anonymous / kKibibyte);
    report.add(QStringLiteral("threads, most in any sample"), m_most.threads);
    report.expect(QStringLiteral("threads at the end"), m_warm.threads, m_last.threads);
    report.add(QStringLiteral("sockets, most in any sample"), m_most.sockets);
    report.expectWithin(QStringLiteral("sockets at the end"), m_warm.sockets - kConnections,
                        m_warm.sockets + kConnections, m_last.sockets);
    report.add(QStringLiteral("other descriptors, most in any sample"), m_most.others);
    report.expect(QStringLiteral("other descriptors at the end"), m_warm.others, m_last.others);
}

void judgeOutput(Report& report, SimulatorProcess& program, const QString& status) {
    report.expect(QStringLiteral("status line at the end"), status, program.statusLine());
    report.expect(QStringLiteral("bytes printed"), 0, program.complaints().size());
}

} // namespace brimlet
