#include "platform/linux/memorytrim.h"
#include "tests/support/emulated.h"
#include "tests/support/fakeclock.h"
#include "tests/support/testprogram.h"

#include <QBuffer>
#include <QFile>
#include <QLibraryInfo>
#include <QTemporaryFile>
#include <QTest>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>

using namespace brimlet;
using namespace std::chrono_literals;

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

/// Whether a part of the mapping that begins at this address is in the process's memory.
bool isMapped(const void* begin) {
    QFile file(QStringLiteral("/proc/self/smaps"));
    (void)file.open(QIODevice::ReadOnly);
    const QByteArray head = QByteArray::number(reinterpret_cast<quintptr>(begin), 16) + '-';
    bool isHere = false;
    for (const QByteArray& line : file.readAll().split('\n')) {
        isHere = isHere || line.startsWith(head);
        if (isHere && line.startsWith("Rss:")) {
            return line.simplified() != "Rss: 0 kB";
        }
    }
    return false;
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

class TestMemoryTrim final : public QObject {
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

    void residentFilesAreReadFromTheThirdField_data() {
        QTest::addColumn<QByteArray>("statm");
        QTest::addColumn<quint64>("pageSize");
        QTest::addColumn<quint64>("bytes");
        QTest::newRow("4 KiB") << QByteArray("90000 4000 3000 10 0 700 0\n") << quint64(4096)
                               << quint64(12'288'000);
        QTest::newRow("16 KiB") << QByteArray("90000 4000 3000 10 0 700 0\n") << quint64(16384)
                                << quint64(49'152'000);
        QTest::newRow("cut") << QByteArray("90000 4000") << quint64(4096) << quint64(0);
        QTest::newRow("empty") << QByteArray() << quint64(4096) << quint64(0);
    }
    void residentFilesAreReadFromTheThirdField() {
        QFETCH(QByteArray, statm);
        QFETCH(const quint64, pageSize);
        QBuffer file(&statm);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QTEST(residentFileBytes(file, pageSize), "bytes");
    }

    void unmodifiedPagesAreReloadedWhenRead() {
        MappedFile mapped(2);
        QVERIFY(mapped.pages != MAP_FAILED);
        QCOMPARE(mprotect(mapped.pages, 2 * kPage, PROT_READ), 0);
        QCOMPARE(mapped.pages[0], 'f');
        unsigned char isThere = 0;
        trimMemory();
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
        trimMemory();
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
        trimMemory();
        const qint64 after = rollup("Rss");
        // Not all of it: what runs is read again.
        QCOMPARE_GT(before - after, static_cast<qint64>(mapped.size / 1024 / 2));
    }

    void onlyFilesThatWereReadAgainAreTrimmedLater() {
        if (!emulated().isEmpty()) {
            QSKIP("the emulated system reports other pages");
        }
        FakeClock clock;
        const MemoryTrim trim(clock);
        // Parts of a file that was not written just now.
        QFile library(QLibraryInfo::path(QLibraryInfo::LibrariesPath) +
                      QStringLiteral("/libQt6Core.so.6"));
        QVERIFY(library.open(QIODevice::ReadOnly));
        constexpr qint64 kSmall = 0x40000;
        constexpr qint64 kLarge = 0x200000;
        QCOMPARE_GT(library.size(), kSmall + kLarge);
        const uchar* const small = library.map(0, kSmall, QFileDevice::MapPrivateOption);
        const uchar* const large = library.map(kSmall, kLarge, QFileDevice::MapPrivateOption);
        const auto read = [](const uchar* bytes, qint64 size) {
            (void)qChecksum(QByteArrayView(bytes, size));
        };
        for (const auto& [bytes, size] : {std::pair(small, kSmall), std::pair(large, kLarge)}) {
            QVERIFY(bytes != nullptr);
            QCOMPARE(mprotect(const_cast<uchar*>(bytes), static_cast<std::size_t>(size), PROT_READ),
                     0);
            read(bytes, size);
            QVERIFY(isMapped(bytes));
        }
        clock.advance(1900ms);
        QVERIFY(isMapped(small));
        clock.advance(200ms);
        QVERIFY(!isMapped(small) && !isMapped(large));
        clock.advance(10s);
        read(small, kSmall);
        clock.advance(1min);
        QVERIFY(isMapped(small)); // it is not worth the work
        read(large, kLarge);
        clock.advance(59s);
        QVERIFY(isMapped(large));
        clock.advance(1s);
        QVERIFY(!isMapped(small) && !isMapped(large));
    }
};

BRIMLET_TEST(TestMemoryTrim, QCoreApplication)
#include "tst_memorytrim.moc"
