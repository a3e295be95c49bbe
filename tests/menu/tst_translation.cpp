#include "tests/menu/shownmenu.h"
#include "tests/support/testpaths.h"
#include "tests/support/testprogram.h"

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QProcess>
#include <QTranslator>

using namespace brimlet;

namespace {

/// Runs one of Qt's translation tools, and returns its output.
QByteArray run(const QString& tool, const QStringList& arguments) {
    QProcess process;
    process.start(QStringLiteral("/usr/lib/qt6/bin/") + tool, arguments);
    if (!process.waitForFinished() || process.exitCode() != 0) {
        qFatal("%s failed: %s", qPrintable(tool), process.readAllStandardError().constData());
    }
    return process.readAllStandardOutput() + process.readAllStandardError();
}

QString translated(const QString& text) {
    return u'<' + text + u'>';
}

} // namespace

/// The menu in another language: each of its fixed texts between angle brackets. The translation is
/// made by Qt's tools from the sources, so a text that they do not find there stays as it is.
class TestTranslation final : public QObject {
    Q_OBJECT

    QTemporaryDir m_folder;
    QTranslator m_translator;

    /// The texts that the user can see, with the names of the fields and of the agreement.
    [[nodiscard]] static QStringList textsOf(ShownMenu& menu) {
        QStringList texts = menu.texts();
        for (const auto* const button : menu.view().findChildren<QAbstractButton*>()) {
            if (button->isVisibleTo(&menu.view())) {
                texts << button->text() << button->accessibleName();
            }
        }
        for (const auto* const field : menu.view().findChildren<QLineEdit*>()) {
            texts << field->placeholderText() << field->accessibleName();
        }
        texts << menu.view().accessibleName();
        return texts;
    }
    [[nodiscard]] static QStringList untranslated(ShownMenu& menu) {
        QStringList rest;
        for (const QString& text : textsOf(menu)) {
            const bool isTranslated = text.startsWith(u'<') && text.endsWith(u'>');
            if (!isTranslated && !rest.contains(text)) {
                rest << text;
            }
        }
        return rest;
    }

private Q_SLOTS:
    void initTestCase() {
        const QString sources = m_folder.filePath(QStringLiteral("menu.ts"));
        const QByteArray complaints =
            run(QStringLiteral("lupdate"),
                {QStringLiteral("-silent"), QStringLiteral("-I"), sourcePath(u""),
                 sourcePath(u"menu"), QStringLiteral("-ts"), sources});
        QCOMPARE(complaints, QByteArray());
        QFile file(sources);
        QVERIFY(file.open(QIODevice::ReadOnly));
        QString texts = QString::fromUtf8(file.readAll());
        file.close();
        texts.replace(QRegularExpression(QStringLiteral(
                          "<source>([^<]*)</source>(\\s*)<translation type=\"unfinished\">")),
                      QStringLiteral("<source>\\1</source>\\2<translation>&lt;\\1&gt;"));
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(texts.toUtf8());
        file.close();
        const QString made = m_folder.filePath(QStringLiteral("menu.qm"));
        (void)run(QStringLiteral("lrelease"),
                  {QStringLiteral("-silent"), sources, QStringLiteral("-qm"), made});
        QVERIFY(m_translator.load(made));
        QVERIFY(QCoreApplication::installTranslator(&m_translator));
    }

    void everyFixedTextOfAFullMenuIsTranslated() {
        ShownMenu menu;
        menu.openWithEverything();
        // The amount, the status line, the agreement and the brands' names.
        QCOMPARE(untranslated(menu),
                 (QStringList{QStringLiteral("€12.34"), QStringLiteral("Quiet Bicycle"),
                              QStringLiteral("Palindrome"), menu.store()->statusLine(),
                              QStringLiteral("Be kind.")}));
        QVERIFY(menu.texts().contains(translated(QStringLiteral("Notched MacBooks only."))));
        QVERIFY(menu.texts().contains(translated(QStringLiteral("Split with 42 live hosts"))));
    }

    void everyFixedTextOfAnEmptyMenuIsTranslated() {
        ShownMenu menu;
        menu.week().liveHostCount = 1;
        menu.open();
        QCOMPARE(untranslated(menu),
                 (QStringList{QStringLiteral("€0"), menu.store()->statusLine()}));
        QVERIFY(menu.texts().contains(translated(QStringLiteral("Unfilled"))));
        QVERIFY(menu.texts().contains(translated(QStringLiteral("No brand this week"))));
        QVERIFY(menu.texts().contains(translated(QStringLiteral("Split with 1 live host"))));
    }

    void aBrandWithoutANameAndTheLiveDotAreTranslated() {
        ShownMenu menu;
        menu.reply(ShownMenu::with(ShownMenu::liveWeek(), "creatives",
                                   QJsonArray{ShownMenu::creative("left", "")}));
        menu.show();
        QVERIFY(menu.texts().contains(translated(QStringLiteral("Brand"))));
        QVERIFY(menu.texts().contains(translated(QStringLiteral("Live"))));
    }
};

BRIMLET_TEST(TestTranslation, QApplication)
#include "tst_translation.moc"
