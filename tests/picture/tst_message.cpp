#include "platform/picturelimits.h"
#include "platform/picturemessage.h"
#include "tests/support/testprogram.h"

#include <QTest>

using namespace brimlet;

namespace {

/// A message with these sides and so many bytes of pixels.
QByteArray message(quint32 width, quint32 height, qsizetype bytes) {
    return QByteArray(reinterpret_cast<const char*>(&width), sizeof width) +
           QByteArray(reinterpret_cast<const char*>(&height), sizeof height) +
           QByteArray(bytes, 'x');
}

} // namespace

class TestPictureMessage final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void whatIsWrittenIsRead() {
        const Picture picture{
            .width = 2, .height = 3, .pixels = QByteArray("abcdefghijklmnopqrstuvwx")};
        QVERIFY(pictureFromMessage(pictureMessage(picture)) == picture);
    }

    void onlyAWholePictureWithinTheLimitsIsRead_data() {
        QTest::addColumn<QByteArray>("message");
        QTest::addColumn<bool>("isRead");
        const auto side = quint32(kKeptSideLimit);
        QTest::newRow("one pixel") << message(1, 1, 4) << true;
        QTest::newRow("the largest") << message(side, side, 4 * side * side) << true;
        QTest::newRow("nothing") << QByteArray() << false;
        QTest::newRow("half a header") << QByteArray("abcd") << false;
        QTest::newRow("a header only") << message(1, 1, 0) << false;
        QTest::newRow("no width") << message(0, 1, 0) << false;
        QTest::newRow("no height") << message(1, 0, 0) << false;
        QTest::newRow("too wide") << message(side + 1, 1, 4 * (side + 1)) << false;
        QTest::newRow("too high") << message(1, side + 1, 4 * (side + 1)) << false;
        QTest::newRow("a byte short") << message(2, 2, 15) << false;
        QTest::newRow("a byte long") << message(2, 2, 17) << false;
        QTest::newRow("sides whose product overflows") << message(0x80000000, 2, 0) << false;
        QTest::newRow("negative sides") << message(0xffffffff, 0xffffffff, 4) << false;
    }
    void onlyAWholePictureWithinTheLimitsIsRead() {
        QFETCH(QByteArray, message);
        QFETCH(bool, isRead);
        QCOMPARE(pictureFromMessage(message).has_value(), isRead);
    }
};

BRIMLET_TEST(TestPictureMessage, brimlet::NoApplication)
#include "tst_message.moc"
