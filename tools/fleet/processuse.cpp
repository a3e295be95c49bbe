#include "tools/fleet/processuse.h"

#include <QDir>
#include <QFile>

#include <ctime>
#include <malloc.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>

namespace brimlet::fleet {
namespace {

double readPrivateDirtyKib() {
    QFile file(QStringLiteral("/proc/self/smaps_rollup"));
    if (!file.open(QIODevice::ReadOnly)) {
        return 0;
    }
    const QByteArray text = file.readAll();
    const QByteArray name = "Private_Dirty:";
    const qsizetype from = text.indexOf(name) + name.size();
    return text.mid(from, text.indexOf("kB", from) - from).trimmed().toDouble();
}

double heapBytes() {
    const struct mallinfo2 info = ::mallinfo2();
    return static_cast<double>(info.uordblks + info.hblkhd);
}

bool isConnection(int descriptor) {
    sockaddr_storage peer{};
    socklen_t size = sizeof peer;
    return ::getpeername(descriptor, reinterpret_cast<sockaddr*>(&peer), &size) == 0 &&
           (peer.ss_family == AF_INET || peer.ss_family == AF_INET6);
}

} // namespace

double cpuMilliseconds() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

MemoryUse MemoryUse::now() {
    return {readPrivateDirtyKib(), heapBytes() / 1024};
}

qint64 openConnections() {
    qint64 count = 0;
    const QDir folder(QStringLiteral("/proc/self/fd"));
    for (const QString& name : folder.entryList(QDir::System | QDir::AllEntries)) {
        bool isNumber = false;
        const int descriptor = name.toInt(&isNumber);
        count += isNumber && isConnection(descriptor) ? 1 : 0;
    }
    return count;
}

quint64 raiseDescriptorLimit() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0) {
        return 0;
    }
    rlimit raised = limit;
    raised.rlim_cur = limit.rlim_max;
    return ::setrlimit(RLIMIT_NOFILE, &raised) == 0 ? raised.rlim_cur : limit.rlim_cur;
}

} // namespace brimlet::fleet
