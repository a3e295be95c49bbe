#include "platform/linux/memorytrim.h"
#include "tests/support/emulated.h"
#include "tests/support/fakeclock.h"
#include "tests/support/testprogram.h"

#include <QBuffer>
#include <QFile>
#include <QTest>

#include <link.h>
#include <unistd.h>

#include <span>

using namespace brimlet;
using namespace std::chrono_literals;

namespace {

/// The code of a library that a test program without widgets does not use.
std::span<const char> codeOfWidgets() {
    std::span<const char> code;
    dl_iterate_phdr(
        [](dl_phdr_info* library, std::size_t /*size*/, void* found) {
            if (!QByteArrayView(library->dlpi_name).contains("/libQt6Widgets.so")) {
                return 0;
            }
            for (int i = 0; i < library->dlpi_phnum; ++i) {
                const auto& segment = library->dlpi_phdr[i];
                if (segment.p_type == PT_LOAD && (segment.p_flags & PF_X) != 0) {
                    const auto begin = library->dlpi_addr + segment.p_vaddr;
                    *static_cast<std::span<const char>*>(found) = {
                        reinterpret_cast<const char*>(begin), segment.p_memsz};
                }
            }
            return 1;
        },
        &code);
    return code;
}

/// So that all of it is in memory.
quint16 read(std::span<const char> bytes) {
    return qChecksum(QByteArrayView(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

/// How much of the mapping that begins here is in the process's memory, in KiB; -1 when it is
/// unknown.
qint64 residentKib(std::span<const char> mapping) {
    QFile file(QStringLiteral("/proc/self/smaps"));
    (void)file.open(QIODevice::ReadOnly);
    const auto page = static_cast<quintptr>(::getpagesize());
    const auto begin = reinterpret_cast<quintptr>(mapping.data()) / page * page;
    const QByteArray head = QByteArray::number(begin, 16) + '-';
    bool isHere = false;
    for (const QByteArray& line : file.readAll().split('\n')) {
        isHere = isHere || line.startsWith(head);
        if (isHere && line.startsWith("Rss:")) {
            return line.simplified().split(' ').at(1).toLongLong();
        }
    }
    return -1;
}

/// The dynamic linker writes these addresses. Volatile, so that they are read.
const char* const volatile kRelocated[] = {"first", "second"};
volatile int written = 0;

} // namespace

class TestMemoryTrim final : public QObject {
    Q_OBJECT

private Q_SLOTS:
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

    void codeIsReleasedAndReadAgain() {
        if (emulated() == "processor") {
            QSKIP("the emulator lists every mapping as empty");
        }
        const auto code = codeOfWidgets();
        QVERIFY(!code.empty());
        const quint16 before = read(code);
        QCOMPARE_GE(residentKib(code), static_cast<qint64>(code.size() / 1024));
        trimMemory();
        QCOMPARE(residentKib(code), 0);
        QCOMPARE(read(code), before);
    }

    void whatWasWrittenStays() {
        written = 7;
        trimMemory();
        QCOMPARE(int(written), 7);
        QCOMPARE(static_cast<const char*>(kRelocated[1]), "second");
    }

    void onlyWhatIsReadNowAndThenIsTrimmed() {
        if (!emulated().isEmpty()) {
            QSKIP("the emulated system reports other pages");
        }
        const auto code = codeOfWidgets();
        QCOMPARE_GT(code.size(), std::size_t{2'000'000});
        const auto isResident = [&code] { return residentKib(code) > 0; };
        FakeClock clock;
        MemoryTrim trim(clock);
        (void)read(code);
        clock.advance(1900ms);
        QVERIFY(isResident());
        clock.advance(200ms); // the start is over
        QVERIFY(!isResident());
        (void)read(code);
        trim.check();
        clock.advance(57s);
        trim.check();
        QVERIFY(isResident());
        clock.advance(1s);
        trim.check();
        QVERIFY(!isResident());
        const auto aMinuteLater = [&] {
            clock.advance(1min);
            trim.check();
        };
        aMinuteLater();
        aMinuteLater(); // what is needed all the time is known now
        (void)read(code.first(200'000));
        aMinuteLater(); // not worth the work
        QVERIFY(isResident());
        (void)read(code);
        clock.advance(59s);
        trim.check();
        QVERIFY(isResident());
        clock.advance(1s);
        trim.check();
        QVERIFY(!isResident());
        (void)read(code); // once more, but not for good
        aMinuteLater();
        QVERIFY(!isResident());
        aMinuteLater();
        // What comes back each time is needed.
        for (int minute = 1; minute <= 3; ++minute) {
            (void)read(code);
            aMinuteLater();
        }
        QVERIFY(isResident());
        for (int minute = 1; minute <= 10; ++minute) {
            aMinuteLater();
        }
        QVERIFY(isResident());
        QCOMPARE(clock.runningTimers(), 0);
    }
};

BRIMLET_TEST(TestMemoryTrim, QCoreApplication)
#include "tst_memorytrim.moc"
