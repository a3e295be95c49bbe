#include "platform/linux/memorytrim.h"

#include <QByteArrayList>
#include <QFile>

#include <link.h>
#include <malloc.h>
#include <sys/mman.h>
#include <unistd.h>

#include <vector>

namespace brimlet {
namespace {

constexpr std::chrono::minutes kPause(1);

quint64 residentFileBytesNow() {
    QFile statm(QStringLiteral("/proc/self/statm"));
    return statm.open(QIODevice::ReadOnly)
               ? residentFileBytes(statm, static_cast<quint64>(::getpagesize()))
               : 0;
}

static_assert(sizeof(void*) == 8, "32-bit libraries may have relocations in their code");

/// Releases the segments that nothing writes to, not even the dynamic linker: on the processors the
/// program is built for, libraries have all that is relocated in writable segments.
int releaseReadOnly(dl_phdr_info* library, std::size_t /*size*/, void* /*data*/) {
    const auto page = static_cast<quintptr>(::getpagesize());
    // A copy, since the list is in one of the segments, and reading it would load that again.
    const std::vector<ElfW(Phdr)> segments(library->dlpi_phdr,
                                           library->dlpi_phdr + library->dlpi_phnum);
    for (const ElfW(Phdr) & segment : segments) {
        if (segment.p_type == PT_LOAD && (segment.p_flags & PF_W) == 0) {
            const quintptr begin = library->dlpi_addr + segment.p_vaddr;
            const quintptr first = begin / page * page;
            madvise(reinterpret_cast<void*>(first), begin + segment.p_memsz - first, // NOLINT
                    MADV_DONTNEED);
        }
    }
    return 0;
}

} // namespace

quint64 residentFileBytes(QIODevice& statm, quint64 pageSize) {
    // Pages: of all, in memory, of those shared or of files, and more.
    return statm.readAll().split(' ').value(2).toULongLong() * pageSize;
}

void trimMemory() {
    // Keeps libraries from being unloaded meanwhile, so that no other mapping can be in their
    // place.
    dl_iterate_phdr(&releaseReadOnly, nullptr);
    malloc_trim(0);
}

MemoryTrim::MemoryTrim(Clock& clock)
    : m_clock(clock)
    , m_start(clock.repeat(std::chrono::seconds(2),
                           [this] {
                               m_start.reset();
                               trimMemory();
                           }))
    , m_next(clock.uptime() + kPause) {}

void MemoryTrim::check() {
    if (m_clock.uptime() < m_next) {
        return;
    }
    m_next = m_clock.uptime() + kPause;
    const quint64 bytes = residentFileBytesNow();
    constexpr quint64 kGrowth = 1'048'576;
    if (bytes <= m_needed + kGrowth) {
        m_trims = 0;
    } else if (m_trims < 2) {
        trimMemory();
        ++m_trims;
    } else {
        m_needed = bytes;
        m_trims = 0;
    }
}

} // namespace brimlet
