#include "platform/linux/startmemory.h"

#include <QByteArrayList>
#include <QFile>

#include <malloc.h>
#include <sys/mman.h>

namespace brimlet {
namespace {

/// One mapping of the process, as /proc/self/smaps tells it.
struct Mapping final {
    quintptr begin = 0;
    quintptr end = 0;
    bool isReadOnlyFile = false;
    /// Holds pages that differ from the file, such as those the dynamic linker has filled in.
    bool hasOwnPages = false;
};

/// Reads "7f00-7f10 r-xp 00000000 fe:00 123 /usr/lib/…", the line that begins a mapping; false for
/// the lines about it that follow.
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

void giveBack(const Mapping& mapping) {
    if (mapping.isReadOnlyFile && !mapping.hasOwnPages) {
        // A private mapping of a file without pages of its own: nothing is lost.
        madvise(reinterpret_cast<void*>(mapping.begin), mapping.end - mapping.begin, // NOLINT
                MADV_DONTNEED);
    }
}

/// Walks over the process's mappings. Each is given back when its last line was read.
void giveBackFilePages() {
    QFile file(QStringLiteral("/proc/self/smaps"));
    if (!file.open(QIODevice::ReadOnly)) {
        return;
    }
    Mapping mapping;
    for (QByteArray line = file.readLine(); !line.isEmpty(); line = file.readLine()) {
        Mapping next;
        if (readHead(line, next)) {
            giveBack(mapping);
            mapping = next;
        } else if ((line.startsWith("Anonymous:") || line.startsWith("Private_Dirty:") ||
                    line.startsWith("Locked:")) &&
                   !line.simplified().endsWith(" 0 kB")) {
            mapping.hasOwnPages = true;
        }
    }
    giveBack(mapping);
}

} // namespace

void giveBackStartMemory() {
    giveBackFilePages();
    malloc_trim(0);
}

} // namespace brimlet
