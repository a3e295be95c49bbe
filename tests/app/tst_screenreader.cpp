#include "tests/support/emulated.h"
#include "tests/support/processes.h"
#include "tests/support/screenreader.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTest>

using namespace brimlet;

namespace {

const int kPatience = 15'000 * slowness();

/// The accessible elements, as "role: name (action)".
QStringList elements() {
    QStringList lines;
    for (const QJsonObject& element : ScreenReader::elements({QStringLiteral("tree")})) {
        QString text = element.value(QStringLiteral("role")).toString() + QStringLiteral(": ") +
                       element.value(QStringLiteral("name")).toString();
        for (const QJsonValue& action : element.value(QStringLiteral("actions")).toArray()) {
            text += QStringLiteral(" (%1)").arg(action.toString());
        }
        lines << text;
    }
    return lines;
}

QJsonObject creative(const char* slot, const char* brand, const char* tagline, const char* link) {
    return {{QStringLiteral("slotId"), QString::fromLatin1(slot)},
            {QStringLiteral("brandName"), QString::fromUtf8(brand)},
            {QStringLiteral("tagline"), QString::fromUtf8(tagline)},
            {QStringLiteral("brandUrl"), QString::fromLatin1(link)}};
}

} // namespace

/// The capsules on the accessibility bus.
class TestScreenReader final : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void capsulesAreLinksOrTextsWhileTheyAreShown() {
        QTemporaryDir folder;
        const QString openedFile = folder.filePath(QStringLiteral("opened"));
        QCOMPARE(
            QProcess::execute(sourcePath(u"tests/support/session/recording-browser"), {openedFile}),
            0);
        const PlacementProcess service;
        service.setScenario(
            {{QStringLiteral("creatives"),
              QJsonArray{creative("left", "Acme", "Fresh every day", "https://acme.test/"),
                         creative("right", "Plain", "Not for clicking", "http://plain.test/")}}});
        SimulatorProcess program(
            {{QStringLiteral("infoDictionary"),
              QJsonObject{{QStringLiteral("BrimletAPIURL"), service.root()}}}});
        const QString link = QStringLiteral("link: Acme, Fresh every day (Press)");
        const QString text = QStringLiteral("label: Plain, Not for clicking");
        QTRY_COMPARE_WITH_TIMEOUT(elements(), (QStringList{link, text}), kPatience);

        QVERIFY(
            ScreenReader::does({QStringLiteral("press"), QStringLiteral("Acme, Fresh every day")}));
        const auto opened = [&openedFile] {
            QFile file(openedFile);
            return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
        };
        QTRY_COMPARE_WITH_TIMEOUT(opened(), QByteArray("https://acme.test/\n"), kPatience);

        service.setScenario({{QStringLiteral("creatives"),
                              QJsonArray{creative("right", "Plain", "", "http://plain.test/")}}});
        QTRY_COMPARE_WITH_TIMEOUT(elements(), QStringList{QStringLiteral("label: Plain")},
                                  kPatience);
        (void)program.ask("pause");
        QTRY_COMPARE_WITH_TIMEOUT(elements(), QStringList(), kPatience);
    }
};

BRIMLET_TEST(TestScreenReader, QCoreApplication)
#include "tst_screenreader.moc"
