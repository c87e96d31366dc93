#include "importgeometryinterface.h"
#include "support/dialogdriver.h"

#include <QPluginLoader>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QTest>

/// Holds the pages about hosts to their word: the example of docs/host-integration.md gives its
/// result, its host, which the build takes from the page, imports it, and the manual page of our
/// own host has its options.
class TestHostPage : public QObject {
    Q_OBJECT

private slots:
    void init();
    void exampleGivesItsResult();
    void hostOfThePage();
    void manualHasTheOptions();

private:
    /// The first block of the page in that language, without its fences.
    QString block(const QString& language) const;

    QString m_page;
    OwnStore m_store;
    QString m_example;
};

QString TestHostPage::block(const QString& language) const
{
    const QRegularExpression fences(QStringLiteral("```%1\n(.*?)```\n").arg(language),
        QRegularExpression::DotMatchesEverythingOption);
    const auto match = fences.match(m_page);
    if (!match.hasMatch())
        qFatal("no block %s", qUtf8Printable(language));
    return match.captured(1);
}

void TestHostPage::init()
{
    QFile page(QStringLiteral(SOURCE_DIR "/docs/host-integration.md"));
    QVERIFY(page.open(QIODevice::ReadOnly));
    m_page = QString::fromUtf8(page.readAll());
    m_example = m_store.write(QStringLiteral("example.mif"), block(QStringLiteral("mif")).toUtf8());
    m_store.write(QStringLiteral("example.mid"), block(QStringLiteral("mid")).toUtf8());
}

void TestHostPage::exampleGivesItsResult()
{
    QPluginLoader loader(QStringLiteral(PLUGIN_PATH));
    auto* importer = qobject_cast<ImportGeometryInterface*>(loader.instance());
    QVERIFY2(importer, qUtf8Printable(loader.errorString()));
    driveModal([this](QDialog& dialog) {
        type(dialog, "objectFileNameEdit", m_example);
        type(dialog, "encodingCombo", QStringLiteral("UTF-8"));
        type(dialog, "fieldEdit_0", QStringLiteral("знак"));
        setChecked(dialog, "updateCheck", true);
        click(dialog, "startButton");
        clickOk(dialog);
    });
    const QString result = importer->operation(importer->operations().value(0), QString(),
        QStringLiteral("Участки"), QStringLiteral("Координаты"), { 0, 1, 2, 1 }, nullptr);
    QCOMPARE(result + QLatin1Char('\n'), QLatin1Char('\n') + block(QStringLiteral("xml")));
}

void TestHostPage::hostOfThePage()
{
    QProcess host;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("MINIMAL_HOST_FILE"), m_example);
    host.setProcessEnvironment(environment);
    host.start(QStringLiteral(MINIMAL_HOST_PATH), { QStringLiteral(PLUGIN_PATH) });
    QVERIFY(host.waitForFinished(60000));
    QCOMPARE(QString::fromUtf8(host.readAllStandardOutput()), QStringLiteral("ЗУ1: 5"));
    QCOMPARE(host.exitCode(), 0);
}

void TestHostPage::manualHasTheOptions()
{
    QProcess host;
    host.start(QStringLiteral(HOST_PATH), { QStringLiteral("--auto"), QStringLiteral("--help") });
    QVERIFY(host.waitForFinished(60000));
    QFile manual(QStringLiteral(SOURCE_DIR "/docs/man/importgeometry-host.1"));
    QVERIFY(manual.open(QIODevice::ReadOnly));
    const QString text = QString::fromUtf8(manual.readAll()).remove(QLatin1Char('\\'));

    static const QRegularExpression option(QStringLiteral("--[a-z][a-z-]*"));
    const auto optionsOf = [](const QString& page) {
        QSet<QString> options;
        for (auto matches = option.globalMatch(page); matches.hasNext();)
            options.insert(matches.next().captured());
        // Qt's own, for developers.
        options.remove(QStringLiteral("--help-all"));
        return options;
    };
    const QSet<QString> offered = optionsOf(QString::fromUtf8(host.readAllStandardOutput()));
    QVERIFY(offered.contains(QStringLiteral("--auto")));
    QCOMPARE(optionsOf(text), offered);
}

QTEST_MAIN(TestHostPage)
#include "tst_hostpage.moc"
