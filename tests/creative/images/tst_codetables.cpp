#include "creative/images/imagedecoding.h"
#include "creative/images/imagevalidation.h"
#include "tests/support/memoryuse.h"
#include "tests/support/samplepictures.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

constexpr qint64 kMebibyte = qint64{1024} * 1024;

/// Bits as lossless WebP packs them: the first one is the lowest of the first byte.
class Bits final {
public:
    void add(quint32 value, int count) {
        for (int i = 0; i < count; ++i) {
            if (m_used % 8 == 0) {
                m_bytes.append('\0');
            }
            if ((value >> i & 1) != 0) {
                m_bytes.back() = static_cast<char>(m_bytes.back() | 1 << m_used % 8);
            }
            ++m_used;
        }
    }
    [[nodiscard]] const QByteArray& bytes() const { return m_bytes; }

private:
    QByteArray m_bytes;
    int m_used = 0;
};

/// A code of one symbol, which then takes no bits at all: the shortest there is.
void addSingleCode(Bits& bits) {
    bits.add(1, 1); // simple
    bits.add(0, 1); // one symbol
    bits.add(0, 1); // of one bit
    bits.add(0, 1); // which is 0
}

/// A code that gives the first 256 symbols eight bits each; or all but the last of these, while
/// that one and the last symbol of all have nine.
void addEvenCode(Bits& bits, int symbols) {
    const bool hasNine = symbols > 256;
    bits.add(0, 1); // not simple
    // The lengths themselves are coded: 0 as 10, 8 as 0, 9 as 11, or 0 as 0 and 8 as 1.
    bits.add(13 - 4, 4);
    for (const int length : {17, 18, 0, 1, 2, 3, 4, 5, 16, 6, 7, 8, 9}) {
        const quint32 other = length == 0 || length == 9 ? 2 : 0;
        const quint32 plain = length == 0 ? 1 : 0;
        bits.add(length == 8 ? 1 : hasNine ? other : plain, 3);
    }
    bits.add(0, 1); // lengths for all symbols follow
    for (int i = 0; i < symbols; ++i) {
        if (!hasNine) {
            bits.add(1, 1);
        } else if (i < 255) {
            bits.add(0, 1);
        } else {
            bits.add(i == 255 || i == symbols - 1 ? 3 : 1, 2);
        }
    }
}

/// A code's bits are read from the highest down.
void addCode(Bits& bits, quint32 code, int length) {
    for (int i = length - 1; i >= 0; --i) {
        bits.add(code >> i, 1);
    }
}

/// How the set of the tiles after the first ones, which is the same for all, is written.
enum class Rest { Copied, WrittenOut };

/// Pixels of one colour with so many sets of code tables. Their tiles of 4 by 4 use one set after
/// the other, as far as there are tiles.
void addPixels(Bits& bits, QSize size, quint32 sets, Rest rest) {
    bits.add(0, 1); // no transforms
    bits.add(0, 1); // no colour cache
    bits.add(1, 1); // an image that says which tile uses which set
    bits.add(0, 3); // tiles of 4 by 4

    bits.add(0, 1);         // that image has no colour cache
    addEvenCode(bits, 280); // green, the set's lower byte, and lengths of copies
    addEvenCode(bits, 256); // red, its upper byte
    addSingleCode(bits);    // blue
    addSingleCode(bits);    // alpha
    addSingleCode(bits);    // distances
    const int tiles = ((size.width() + 3) / 4) * ((size.height() + 3) / 4);
    for (int tile = 0; tile < tiles;) {
        const auto set = static_cast<quint32>(qMin(tile, int(sets) - 1));
        constexpr int kLongestCopy = 4096;
        if (rest == Rest::Copied && tile >= int(sets) && tile + kLongestCopy <= tiles) {
            addCode(bits, 511, 9); // the last length, with ten more bits, from the row above
            bits.add(1023, 10);
            tile += kLongestCopy;
        } else {
            const quint32 low = set & 0xff;
            addCode(bits, low == 0xff ? 510 : low, low == 0xff ? 9 : 8);
            addCode(bits, set >> 8, 8);
            ++tile;
        }
    }
    for (quint32 code = 0; code < 5 * sets; ++code) {
        addSingleCode(bits);
    }
}

/// A lossless picture of such pixels.
QByteArray manyCodeTables(QSize size, quint32 sets, Rest rest = Rest::Copied) {
    Bits bits;
    bits.add(0x2f, 8);
    bits.add(static_cast<quint32>(size.width() - 1), 14);
    bits.add(static_cast<quint32>(size.height() - 1), 14);
    bits.add(0, 1 + 3); // no alpha, version
    addPixels(bits, size, sets, rest);
    return samples::webpFile(samples::webpChunk("VP8L", bits.bytes()));
}

/// A lossy picture whose alpha channel consists of such pixels.
QByteArray manyCodeTablesOfAlpha(QSize size, quint32 sets) {
    Bits bits;
    bits.add(1, 8); // packed, without a filter
    addPixels(bits, size, sets, Rest::Copied);
    QImage picture(size, QImage::Format_RGB32);
    picture.fill(Qt::gray);
    const QByteArray pixels = samples::webp(picture, false).sliced(12);
    constexpr char kAlpha = 0x10;
    return samples::webpFile(samples::webpCanvas(size, kAlpha) +
                             samples::webpChunk("ALPH", bits.bytes()) + pixels);
}

} // namespace

/// Lossless WebPs that ask for very many code tables before their first pixel.
class TestCodeTables final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void aFewTablesMakeAPicture() {
        const auto picture = decodeImage(manyCodeTables(QSize(64, 64), 7));
        QVERIFY(picture);
        QCOMPARE(picture->size(), QSize(64, 64));
    }

    void aFewTablesMakeAnAlphaChannel() {
        const auto picture = decodeImage(manyCodeTablesOfAlpha(QSize(64, 64), 7));
        QVERIFY(picture);
        QCOMPARE(picture->pixelColor(32, 32).alpha(), 0);
    }

    void manyTablesOfAnAlphaChannelAreRefusedBeforeDecoding() {
        const QByteArray bytes = manyCodeTablesOfAlpha(QSize(1024, 1024), 30'000);
        QVERIFY(!inspectImage(bytes));
        if (isMemoryDistorted()) {
            QSKIP("the sanitizer has memory of its own");
        }
        const qint64 before = memoryInUse();
        QVERIFY(forgetPeak());
        QVERIFY(!decodeImage(bytes, [] { return false; }));
        const QString figures = QString::number(memoryPeak() - before);
        QVERIFY2(memoryPeak() <= before + kMebibyte, qPrintable(figures));
    }

    void memoryStaysBounded_data() {
        QTest::addColumn<QSize>("size");
        QTest::addColumn<quint32>("sets");
        QTest::addColumn<Rest>("rest");
        for (const quint32 sets : {1'000U, 8'000U, 10'000U, 11'000U, 12'000U, 16'000U}) {
            QTest::addRow("%u in a small picture", sets) << QSize(512, 512) << sets << Rest::Copied;
        }
        for (const quint32 sets : {30'000U, 65'536U}) {
            QTest::addRow("%u", sets) << QSize(1024, 1024) << sets << Rest::Copied;
        }
        for (const quint32 sets : {2'000U, 3'000U, 4'000U, 16'000U, 65'536U}) {
            QTest::addRow("%u in the largest picture", sets)
                << QSize(4096, 2700) << sets << Rest::Copied;
        }
        QTest::newRow("20000 in 586 KB, 125 MiB if they were built")
            << QSize(2048, 2096) << 20'000U << Rest::WrittenOut;
    }
    void memoryStaysBounded() {
        if (isMemoryDistorted()) {
            QSKIP("the sanitizer has memory of its own");
        }
        QFETCH(QSize, size);
        QFETCH(quint32, sets);
        QFETCH(Rest, rest);
        const QByteArray bytes = manyCodeTables(size, sets, rest);
        QVERIFY(inspectImage(bytes)); // it is not refused before decoding
        const qint64 before = memoryInUse();
        QVERIFY(forgetPeak());
        const bool isShown = decodeImage(bytes, [] { return false; }).has_value();
        const QString figures = QStringLiteral("%1: %2 KiB, from %3 to %4, at most %5")
                                    .arg(isShown ? u"shown"_qs : u"refused"_qs)
                                    .arg(bytes.size() / 1024)
                                    .arg(before)
                                    .arg(memoryInUse())
                                    .arg(memoryPeak());
        QVERIFY2(memoryPeak() <= before + 80 * kMebibyte, qPrintable(figures));
        QVERIFY2(memoryInUse() <= before + 8 * kMebibyte, qPrintable(figures));
    }
};

BRIMLET_TEST(TestCodeTables, brimlet::NoApplication)
#include "tst_codetables.moc"
