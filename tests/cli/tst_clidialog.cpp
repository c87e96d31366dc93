#include "commandrun.h"
#include "importgeometryinterface.h"
#include "support/dialogdriver.h"
#include "support/stricttest.h"
#include "support/tempfiles.h"

#include <QPluginLoader>
#include <QTest>

#include <functional>

/// Something that a user does in the dialog.
using Step = std::function<void(QDialog&)>;

/// One job, as the dialog and as the command line get it.
struct Job {
    const char* file = "parcels.mif";
    QStringList arguments;
    Step fillIn = [](QDialog&) {};
    bool sort = false;
    GeometryInfo info{ 0, 2, 1, 0 };
    QString table;
    QString catalogue;
    bool isDxf = false;
};
Q_DECLARE_METATYPE(Job)

namespace {

Step edit(const char* name, const QString& text)
{
    return [=](QDialog& dialog) { type(dialog, name, text); };
}

Step spin(const char* name, int value)
{
    return edit(name, QString::number(value));
}

Step tick(const char* name, bool checked)
{
    return [=](QDialog& dialog) { setChecked(dialog, name, checked); };
}

Step encoding(const char* name)
{
    return edit("encodingCombo", QString::fromLatin1(name));
}

Step field(int row, int column, const QString& text)
{
    return [=](QDialog& dialog) {
        if (row > 0)
            click(dialog, "plusToolButton");
        type(dialog, qPrintable(QStringLiteral("fieldSpin_%1").arg(row)), QString::number(column));
        type(dialog, qPrintable(QStringLiteral("fieldEdit_%1").arg(row)), text);
    };
}

Step points(const QString& fileName)
{
    return [=](QDialog& dialog) {
        tick("usePointFileCheck", true)(dialog);
        edit("pointFileNameEdit", fileName)(dialog);
    };
}

Step all(const QList<Step>& steps)
{
    return [=](QDialog& dialog) {
        for (const auto& step : steps)
            step(dialog);
    };
}

/// What the plug-in returns for a job that a user does in its dialog.
QByteArray dialogResult(const Job& job, const QString& fileName)
{
    const OwnStore store;
    QPluginLoader loader(QStringLiteral(PLUGIN_PATH));
    auto* plugin = qobject_cast<ImportGeometryInterface*>(loader.instance());
    if (!plugin)
        qFatal("%s", qPrintable(loader.errorString()));
    driveModal([&](QDialog& dialog) {
        type(dialog, "objectFileNameEdit", fileName);
        job.fillIn(dialog);
        click(dialog, "startButton");
        if (job.sort)
            click(dialog, "sortButton");
        clickOk(dialog);
    });
    return plugin
        ->operation(plugin->operations().at(job.isDxf ? 1 : 0), QString(), job.table, job.catalogue,
            job.info, nullptr)
        .toUtf8();
}

} // namespace

class TestCliDialog : public StrictTest {
    Q_OBJECT

private slots:
    void sameBytes_data()
    {
        QTest::addColumn<Job>("job");
        const auto row = [](const char* name, const QStringList& arguments,
                             const std::function<void(Job&)>& setUp) {
            Job job;
            job.arguments = arguments;
            setUp(job);
            QTest::newRow(name) << job;
        };
        const auto option = [&row](const char* argument, const Step& fillIn) {
            row(argument, words({ argument }), [&](Job& job) { job.fillIn = fillIn; });
        };
        const QString pointFile = dataFile("points.mif");

        row("defaults, MIF", {}, [](Job&) {});
        row("defaults, DXF", {}, [](Job& job) {
            job.file = "drawing.dxf";
            job.isDxf = true;
        });
        row("--points", words({ "--points" }) + QStringList(pointFile),
            [&](Job& job) { job.fillIn = points(pointFile); });
        option("--search-points=off", tick("searchPointDefsCheck", false));
        option("--search-objects=off", tick("searchObjectDefsCheck", false));
        option("--point-prefix=т", edit("pointPrefEdit", QStringLiteral("т")));
        option("--point-prefix=", edit("pointPrefEdit", QString()));
        option("--point-prefix=12345678901234567890",
            edit("pointPrefEdit", QStringLiteral("12345678901234567890")));
        option("--point-start=17", spin("pointStartNumSpin", 17));
        option("--object-prefix=Уч <&> ", edit("objectPrefEdit", QStringLiteral("Уч <&> ")));
        option("--object-start=999999999", spin("objectStartNumSpin", 999999999));
        option("--encoding=Windows-1251", encoding("Windows-1251"));
        option("--encoding=IBM866", encoding("IBM866"));
        option("--encoding=UTF-8", encoding("UTF-8"));
        option("--encoding=Default", encoding("Default"));
        option("--field=4=знак", field(0, 4, QStringLiteral("знак")));
        option("--field=20==", field(0, 20, QStringLiteral("=")));
        option("--field=4=", field(0, 4, QString()));
        row("--field twice", words({ "--field=6=a", "--field", "8=b" }), [](Job& job) {
            job.fillIn =
                all({ field(0, 6, QStringLiteral("a")), field(1, 8, QStringLiteral("b")) });
        });
        row("--field twice for a column", words({ "--field=5=a", "--field=5=b" }), [](Job& job) {
            job.fillIn =
                all({ field(0, 5, QStringLiteral("a")), field(1, 5, QStringLiteral("b")) });
        });
        row("--sort", words({ "--sort", "--encoding=Windows-1251" }), [](Job& job) {
            job.fillIn = encoding("Windows-1251");
            job.sort = true;
        });
        option("--update", tick("updateCheck", true));
        row("--table", words({ "--table=Участки & \"право\"" }),
            [](Job& job) { job.table = QStringLiteral("Участки & \"право\""); });
        row("--catalogue", words({ "--catalogue=Координаты" }),
            [](Job& job) { job.catalogue = QStringLiteral("Координаты"); });
        row("--columns", words({ "--columns=2,4,7" }), [](Job& job) { job.info = { 1, 3, 6, 0 }; });
        row("--object-column", words({ "--object-column=3" }),
            [](Job& job) { job.info.defColNum = 2; });
        row("everything, DXF",
            words({ "--search-points=off", "--point-prefix=x", "--point-start=5",
                "--object-prefix=y", "--object-start=3", "--encoding=Windows-1251", "--field=1=z",
                "--sort", "--update", "--table=t", "--catalogue=c", "--columns=3,2,1",
                "--object-column=2" }),
            [](Job& job) {
                job.file = "drawing.dxf";
                job.isDxf = true;
                job.fillIn = all({ tick("searchPointDefsCheck", false),
                    edit("pointPrefEdit", QStringLiteral("x")), spin("pointStartNumSpin", 5),
                    edit("objectPrefEdit", QStringLiteral("y")), spin("objectStartNumSpin", 3),
                    encoding("Windows-1251"), field(0, 1, QStringLiteral("z")),
                    tick("updateCheck", true) });
                job.sort = true;
                job.info = { 2, 1, 0, 1 };
                job.table = QStringLiteral("t");
                job.catalogue = QStringLiteral("c");
            });
    }

    void sameBytes()
    {
        QFETCH(Job, job);
        const QString file = dataFile(job.file);
        const CommandRun run =
            runCommand(words({ "convert", "--quiet" }) + QStringList(file) + job.arguments,
                QDir::currentPath());
        QCOMPARE(run.err, QString());
        QCOMPARE(run.status, 0);
        const QByteArray expected = dialogResult(job, file);
        // All jobs find objects: two equal outputs of nothing would prove little.
        QVERIFY(expected.contains("<Cell>100.00</Cell>"));
        QCOMPARE(run.out, expected);
    }

    void formatByOption()
    {
        const TempFiles folder;
        const QString file =
            folder.write(QStringLiteral("drawing.txt"), contentOf(dataFile("drawing.dxf")));
        Job job;
        job.isDxf = true;
        const CommandRun run = runCommand(
            words({ "convert", "--format=dxf" }) + QStringList(file), folder.path(QString()));
        QCOMPARE(run.status, 0);
        QCOMPARE(run.out, dialogResult(job, file));
    }

    void partial()
    {
        // The dialog shows what an import has built before its error.
        const QString file = dataFile("broken.mif");
        const CommandRun run = runCommand(
            words({ "convert", "--partial", "--encoding=Windows-1251" }) + QStringList(file),
            QDir::currentPath());
        Job job;
        job.fillIn = encoding("Windows-1251");
        QCOMPARE(run.status, 1);
        QVERIFY(run.out.contains("Целый"));
        QCOMPARE(run.out, dialogResult(job, file));
    }

    void halfASurrogatePair()
    {
        // Only UTF-16 can smuggle one in; the encoder of a stream would shift it behind its cell.
        const TempFiles folder;
        const auto utf16 = [](const QString& text) {
            return QByteArray("\xFF\xFE")
                + QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * 2);
        };
        const QString file = folder.write(QStringLiteral("half.mif"),
            utf16(QStringLiteral("Version 300\nCharset \"Neutral\"\nDelimiter \",\"\nData\n"
                                 "Line 0 0 100 0\nLine 0 0 100 5\n")));
        folder.write(QStringLiteral("half.mid"),
            utf16(QStringLiteral("\"a%1\"\n\"%2b\"\n").arg(QChar(0xD83D)).arg(QChar(0xDE00))));
        const CommandRun run =
            runCommand(words({ "convert", "--search-points=off" }) + QStringList(file),
                folder.path(QString()));
        Job job;
        job.fillIn = tick("searchPointDefsCheck", false);
        QCOMPARE(run.status, 0);
        QVERIFY(run.out.contains("<Cell>a?</Cell>"));
        QCOMPARE(run.out, dialogResult(job, file));
    }
};

QTEST_MAIN(TestCliDialog)
#include "tst_clidialog.moc"
