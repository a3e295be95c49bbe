#include "platform/linux/startupmemory.h"
#include "tests/support/emulated.h"
#include "tests/support/testprogram.h"

#include <QBuffer>
#include <QFile>
#include <QTemporaryFile>
#include <QTest>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

using namespace brimlet;

namespace {

/// In bytes: 4, 16 or 64 KiB, as the kernel was built.
const auto kPage = static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));

/// A field of /proc/self/smaps_rollup, in KiB; -1 when it is missing.
qint64 rollup(const QByteArray& name) {
    QFile file(QStringLiteral("/proc/self/smaps_rollup"));
    if (!file.open(QIODevice::ReadOnly)) {
        return -1;
    }
    for (const QByteArray& line : file.readAll().split('\n')) {
        if (line.startsWith(name + ':')) {
            return line.simplified().split(' ').at(1).toLongLong();
        }
    }
    return -1;
}

/// A private mapping of a file of so many pages.
struct MappedFile final {
    explicit MappedFile(std::size_t count)
        : size(count * kPage) {
        if (file.open()) {
            file.write(QByteArray(static_cast<qsizetype>(size), 'f'));
            file.flush();
        }
        pages = static_cast<char*>(
            mmap(nullptr, size, PROT_READ | PROT_WRITE, MAP_PRIVATE, file.handle(), 0));
    }
    ~MappedFile() { munmap(pages, size); }
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    QTemporaryFile file;
    std::size_t size = 0; ///< In bytes.
    char* pages = nullptr;
};

} // namespace

class TestStartupMemory final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void unmodifiedMappingsAreThoseWithoutPagesOfTheirOwn_data() {
        QTest::addColumn<QByteArray>("rights");
        QTest::addColumn<QByteArray>("name");
        QTest::addColumn<int>("pageSize"); // in KiB
        QTest::addColumn<QByteArray>("details");
        QTest::addColumn<bool>("isUnmodified");
        const QByteArray library = "/usr/lib/libQt6Core.so.6";
        for (const int pageSize : {4, 16, 64}) {
            const QByteArray page = QByteArray::number(pageSize) + " kB\n";
            const QByteArray resident = "Rss: " + page;
            const auto row = [&](const char* name, const char* rights, const QByteArray& file,
                                 const QByteArray& details, bool isUnmodified) {
                QTest::addRow("%s, pages of %d KiB", name, pageSize)
                    << QByteArray(rights) << file << pageSize << details << isUnmodified;
            };
            row("code", "r-xp", library, resident, true);
            row("data, read only", "r--p", library, resident, true);
            row("no page in memory", "r-xp", library, "Rss: 0 kB\n", false);
            row("no sizes at all", "r-xp", library, {}, false);
            row("relocated", "r--p", library,
                resident + "Private_Dirty: " + page + "Anonymous: " + page, false);
            row("relocated and written to swap", "r--p", library, resident + "Anonymous: " + page,
                false);
            row("relocated and swapped out", "r--p", library,
                resident + "Anonymous: 0 kB\nSwap: " + page, false);
            row("locked", "r-xp", library, resident + "Locked: " + page, false);
            row("writable", "rw-p", library, resident, false);
            row("shared", "r--s", library, resident, false);
            row("no file", "r--p", {}, resident, false);
            row("the kernel's", "r-xp", "[vdso]", resident, false);
        }
    }

    void unmodifiedMappingsAreThoseWithoutPagesOfTheirOwn() {
        QFETCH(const QByteArray, rights);
        QFETCH(const QByteArray, name);
        QFETCH(const int, pageSize);
        QFETCH(const QByteArray, details);
        QFETCH(const bool, isUnmodified);
        const QByteArray pages =
            QStringLiteral("KernelPageSize: %1 kB\nMMUPageSize: %1 kB\n").arg(pageSize).toLatin1();
        const QByteArray other =
            "00010000-00020000 rw-p 00000000 00:00 0\n" + pages + "Rss: 64 kB\n";
        const MemoryRange range{0x7f0000010000, 0x7f0000010000 + quintptr(pageSize) * 1024};
        QByteArray smaps = other + QByteArray::number(range.begin, 16) + '-' +
                           QByteArray::number(range.end, 16) + ' ' + rights +
                           " 00000000 fe:00 12 " + name + '\n' + pages + details + other;
        QBuffer file(&smaps);
        QVERIFY(file.open(QIODevice::ReadOnly));
        std::vector<MemoryRange> expected;
        if (isUnmodified) {
            expected.push_back(range);
        }
        QCOMPARE(unmodifiedFileMappings(file), expected);
    }

    void unmodifiedPagesAreReloadedWhenRead() {
        MappedFile mapped(2);
        QVERIFY(mapped.pages != MAP_FAILED);
        QCOMPARE(mprotect(mapped.pages, 2 * kPage, PROT_READ), 0);
        QCOMPARE(mapped.pages[0], 'f');
        unsigned char isThere = 0;
        trimStartupMemory();
        QCOMPARE(mincore(mapped.pages, kPage, &isThere), 0); // still in the page cache
        QVERIFY((isThere & 1) != 0);
        QCOMPARE(mapped.pages[0], 'f');
        QCOMPARE(mapped.pages[kPage], 'f');
    }

    void modifiedPagesStay() {
        MappedFile mapped(2);
        QVERIFY(mapped.pages != MAP_FAILED);
        mapped.pages[kPage] = 'w';
        // Read-only from now on, like the tables that the dynamic linker has relocated.
        QCOMPARE(mprotect(mapped.pages, 2 * kPage, PROT_READ), 0);
        trimStartupMemory();
        QCOMPARE(mapped.pages[kPage], 'w');
        QCOMPARE(mapped.pages[0], 'f');
    }

    void trimmingReducesResidentMemory() {
        if (emulated() == "processor") {
            QSKIP("the emulator lists every mapping as empty");
        }
        if (emulated() == "computer") {
            QSKIP("its files are in memory only, where every page counts as changed");
        }
        MappedFile mapped(256);
        QVERIFY(mapped.pages != MAP_FAILED);
        QCOMPARE(mprotect(mapped.pages, mapped.size, PROT_READ), 0);
        QCOMPARE(std::count(mapped.pages, mapped.pages + mapped.size, 'f'),
                 static_cast<std::ptrdiff_t>(mapped.size));
        const qint64 before = rollup("Rss");
        trimStartupMemory();
        const qint64 after = rollup("Rss");
        // Not all of it: what runs is read again.
        QCOMPARE_GT(before - after, static_cast<qint64>(mapped.size / 1024 / 2));
    }
};

BRIMLET_TEST(TestStartupMemory, QCoreApplication)
#include "tst_startupmemory.moc"
