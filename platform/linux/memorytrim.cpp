#include "platform/linux/memorytrim.h"

#include <QByteArrayList>
#include <QFile>

#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace brimlet {
namespace {

/// One memory mapping of the process, as listed in /proc/self/smaps.
struct Mapping final {
    MemoryRange range;
    /// A private mapping of a file without write permission.
    bool isReadOnlyFile = false;
    /// Also excludes what an emulated processor lists: it gives every size as zero.
    bool isResident = false;
    /// Some pages are locked or differ from the file, such as those the dynamic linker has
    /// relocated, in memory or swapped out.
    bool hasOwnPages = false;
};

/// Parses the first line of a mapping, "7f00-7f10 r-xp 00000000 fe:00 123 /usr/lib/…"; false for
/// the lines of details that follow it.
bool readHead(const QByteArray& line, Mapping& mapping) {
    const QByteArrayList fields = line.simplified().split(' ');
    const QByteArrayList range = fields.at(0).split('-');
    if (range.size() != 2 || fields.size() < 5) {
        return false;
    }
    const QByteArray& rights = fields.at(1);
    const bool isFile = fields.size() >= 6 && fields.at(5).startsWith('/');
    mapping = {};
    mapping.range = {range.at(0).toULongLong(nullptr, 16), range.at(1).toULongLong(nullptr, 16)};
    mapping.isReadOnlyFile = isFile && rights.startsWith("r-") && rights.endsWith('p');
    return true;
}

/// Reads one of the lines of details.
void readDetail(const QByteArray& line, Mapping& mapping) {
    if (line.simplified().endsWith(" 0 kB")) {
        return;
    }
    if (line.startsWith("Rss:")) {
        mapping.isResident = true;
    } else if (line.startsWith("Anonymous:") || line.startsWith("Private_Dirty:") ||
               line.startsWith("Swap:") || line.startsWith("Locked:")) {
        mapping.hasOwnPages = true;
    }
}

/// The process's own; 0 when unknown.
quint64 residentFileBytes() {
    QFile statm(QStringLiteral("/proc/self/statm"));
    return statm.open(QIODevice::ReadOnly)
               ? brimlet::residentFileBytes(statm, static_cast<quint64>(::getpagesize()))
               : 0;
}

} // namespace

std::vector<MemoryRange> unmodifiedFileMappings(QIODevice& smaps) {
    std::vector<MemoryRange> unmodified;
    Mapping mapping;
    const auto add = [&] {
        if (mapping.isReadOnlyFile && mapping.isResident && !mapping.hasOwnPages) {
            unmodified.push_back(mapping.range);
        }
    };
    for (QByteArray line = smaps.readLine(); !line.isEmpty(); line = smaps.readLine()) {
        Mapping next;
        if (readHead(line, next)) {
            add();
            mapping = next;
        } else {
            readDetail(line, mapping);
        }
    }
    add();
    return unmodified;
}

quint64 residentFileBytes(QIODevice& statm, quint64 pageSize) {
    // Pages: of all, in memory, of those shared or of files, and more.
    return statm.readAll().split(' ').value(2).toULongLong() * pageSize;
}

void trimMemory() {
    QFile smaps(QStringLiteral("/proc/self/smaps"));
    if (smaps.open(QIODevice::ReadOnly)) {
        for (const MemoryRange& range : unmodifiedFileMappings(smaps)) {
            madvise(reinterpret_cast<void*>(range.begin), range.end - range.begin, // NOLINT
                    MADV_DONTNEED);
        }
    }
    malloc_trim(0);
}

MemoryTrim::MemoryTrim(Clock& clock)
    : m_clock(clock)
    , m_timer(clock.repeat(std::chrono::seconds(2), [this] { trim(); })) {}

void MemoryTrim::trim() {
    trimMemory();
    // By then everything that is used all the time is in memory again.
    m_timer = m_clock.repeat(std::chrono::seconds(10), [this] { watch(residentFileBytes()); });
}

void MemoryTrim::watch(quint64 needed) {
    m_timer = m_clock.repeat(std::chrono::minutes(1), [this, needed] {
        constexpr quint64 kGrowth = 1'048'576; // bytes
        if (residentFileBytes() > needed + kGrowth) {
            trim();
        }
    });
}

} // namespace brimlet
