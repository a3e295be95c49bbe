#include "platform/linux/startupmemory.h"
#include "tests/support/testprogram.h"

#include <QFile>
#include <QTemporaryFile>
#include <QTest>

#include <sys/mman.h>

using namespace brimlet;

namespace {

constexpr qsizetype kPage = 4096;

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

/// A private mapping of a file of two pages.
struct MappedFile final {
    MappedFile() {
        if (file.open()) {
            file.write(QByteArray(2 * kPage, 'f'));
            file.flush();
        }
        pages = static_cast<char*>(
            mmap(nullptr, 2 * kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE, file.handle(), 0));
    }
    ~MappedFile() { munmap(pages, 2 * kPage); }
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    QTemporaryFile file;
    char* pages = nullptr;
};

} // namespace

class TestStartupMemory final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void unmodifiedPagesAreReloadedWhenRead() {
        MappedFile mapped;
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
        MappedFile mapped;
        QVERIFY(mapped.pages != MAP_FAILED);
        mapped.pages[kPage] = 'w';
        // Read-only from now on, like the tables that the dynamic linker has relocated.
        QCOMPARE(mprotect(mapped.pages, 2 * kPage, PROT_READ), 0);
        trimStartupMemory();
        QCOMPARE(mapped.pages[kPage], 'w');
        QCOMPARE(mapped.pages[0], 'f');
    }

    void trimmingReducesResidentMemory() {
        const qint64 before = rollup("Rss");
        trimStartupMemory();
        const qint64 after = rollup("Rss");
        QVERIFY(before > 0 && after > 0);
        QVERIFY2(after < before, qPrintable(QStringLiteral("%1, %2").arg(before).arg(after)));
    }
};

BRIMLET_TEST(TestStartupMemory, QCoreApplication)
#include "tst_startupmemory.moc"
