#include "platform/linux/startupmemory.h"

#include <QByteArrayList>
#include <QFile>

#include <malloc.h>
#include <sys/mman.h>

namespace brimlet {
namespace {

/// One memory mapping of the process, as listed in /proc/self/smaps.
struct Mapping final {
    quintptr begin = 0;
    quintptr end = 0;
    /// A private mapping of a file without write permission.
    bool isReadOnlyFile = false;
    /// Some pages are locked or differ from the file, such as those the dynamic linker has
    /// relocated.
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
    mapping = {range.at(0).toULongLong(nullptr, 16), range.at(1).toULongLong(nullptr, 16),
               isFile && rights.startsWith("r-") && rights.endsWith('p'), false};
    return true;
}

void trim(const Mapping& mapping) {
    if (mapping.isReadOnlyFile && !mapping.hasOwnPages) {
        // All pages are equal to the file, so none is lost.
        madvise(reinterpret_cast<void*>(mapping.begin), mapping.end - mapping.begin, // NOLINT
                MADV_DONTNEED);
    }
}

/// Trims each of the process's mappings once all its lines have been read.
void trimFilePages() {
    QFile file(QStringLiteral("/proc/self/smaps"));
    if (!file.open(QIODevice::ReadOnly)) {
        return;
    }
    Mapping mapping;
    for (QByteArray line = file.readLine(); !line.isEmpty(); line = file.readLine()) {
        Mapping next;
        if (readHead(line, next)) {
            trim(mapping);
            mapping = next;
        } else if ((line.startsWith("Anonymous:") || line.startsWith("Private_Dirty:") ||
                    line.startsWith("Locked:")) &&
                   !line.simplified().endsWith(" 0 kB")) {
            mapping.hasOwnPages = true;
        }
    }
    trim(mapping);
}

} // namespace

void trimStartupMemory() {
    trimFilePages();
    malloc_trim(0);
}

} // namespace brimlet
