// What the window writes: forms and mended copies, and why it could not.

#include "formexport.h"
#include "preparecopy.h"
#include "support/fulldisk.h"
#include "support/miftext.h"
#include "support/permissions.h"
#include "support/stricttest.h"
#include "support/tempfiles.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTest>

#include <limits>
#include <memory>

#include <sys/stat.h>

Q_DECLARE_METATYPE(FormFile)

namespace {

FormTable plainForm()
{
    FormTable table;
    table.name = QStringLiteral("Участки");
    table.objects = { { QStringLiteral("А"),
        { { { QStringLiteral("1"), 0, 0 }, { QStringLiteral("2"), 10, 0 },
            { QStringLiteral("3"), 10, 10 }, { QStringLiteral("1"), 0, 0 } } } } };
    table.others.resize(1);
    return table;
}

constexpr int roomForRows = 1000; // bytes

const std::atomic_bool goesOn{ false };
const std::atomic_bool cancelled{ true };

const QByteArray region = "Region 1\n  4\n0 0\n10 0\n10 10\n0 0\n";

} // namespace

class TestHostFiles : public StrictTest {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void tellsLettersThatMifLacks();
    void remarksNothingOfPlainForm();
    void tellsWriteErrors_data();
    void tellsWriteErrors();
    void pairStaysWhole_data();
    void pairStaysWhole();
    void copiesNoHalfOfPair_data();
    void copiesNoHalfOfPair();
    void tellsFolderInPlaceOfMid();
    void tellsCancelledExport_data();
    void tellsCancelledExport();
    void copiesPair();
    void takesMidOfOtherCase();
    void tellsWhyNoCopy_data();
    void tellsWhyNoCopy();
    void copiesNoPipe();
    void copiesNoHugeFile();
    void copiesNothingIntoLockedFolder();
    void copiesNothingOntoFullDisk_data();
    void copiesNothingOntoFullDisk();
    void leavesForeignFileAlone_data();
    void leavesForeignFileAlone();

private:
    FormExport exportOf(FormFile form, const QString& name) const;
    QStringList files() const;
    QString shown(const QString& name) const
    {
        return QDir::toNativeSeparators(m_files->path(name));
    }

    std::unique_ptr<TempFiles> m_files;
};

void TestHostFiles::init()
{
    m_files = std::make_unique<TempFiles>();
}

void TestHostFiles::cleanup()
{
    m_files.reset();
}

FormExport TestHostFiles::exportOf(FormFile form, const QString& name) const
{
    FormExport task;
    task.table = plainForm();
    task.objects = { 0 };
    task.title = QStringLiteral("План");
    task.fileName = m_files->path(name);
    task.form = form;
    return task;
}

QStringList TestHostFiles::files() const
{
    return QDir(m_files->path(QString())).entryList(QDir::Files | QDir::Hidden);
}

void TestHostFiles::tellsLettersThatMifLacks()
{
    FormExport task = exportOf(FormFile::Mif, QStringLiteral("a.mif"));
    task.table.objects[0].def = QStringLiteral("Ω1");
    QString remark;
    QCOMPARE(writeFormFile(task, goesOn, &remark), QString());
    QCOMPARE(remark, QStringLiteral("Обозначений с буквами, которых нет в Windows-1251: 1"));
    QCOMPARE(files(), (QStringList{ QStringLiteral("a.mid"), QStringLiteral("a.mif") }));
    // Nobody has to listen.
    QCOMPARE(writeFormFile(task, goesOn), QString());
}

void TestHostFiles::remarksNothingOfPlainForm()
{
    QString remark;
    QCOMPARE(writeFormFile(exportOf(FormFile::Mif, QStringLiteral("a.mif")), goesOn, &remark),
        QString());
    QCOMPARE(remark, QString());
}

void TestHostFiles::tellsWriteErrors_data()
{
    QTest::addColumn<FormFile>("form");
    QTest::addColumn<QString>("name");
    QTest::addColumn<QString>("told");
    QTest::newRow("XML") << FormFile::Xml << QStringLiteral("а.xml") << QStringLiteral("а.xml");
    QTest::newRow("CSV") << FormFile::Csv << QStringLiteral("а.csv") << QStringLiteral("а.csv");
    QTest::newRow("GeoJSON") << FormFile::GeoJson << QStringLiteral("а.geojson")
                             << QStringLiteral("а.geojson");
    QTest::newRow("SVG") << FormFile::Svg << QStringLiteral("а.svg") << QStringLiteral("а.svg");
    QTest::newRow("PDF") << FormFile::Pdf << QStringLiteral("а.pdf") << QStringLiteral("а.pdf");
    // The first of the two to be finished.
    QTest::newRow("MIF") << FormFile::Mif << QStringLiteral("а.mif") << QStringLiteral("а.mid");
}

void TestHostFiles::tellsWriteErrors()
{
    QFETCH(FormFile, form);
    QFETCH(QString, name);
    QFETCH(QString, told);
    const FormExport task = exportOf(form, name);
    m_files->write(name, "older");
    QString trouble;
    {
        const FullDisk disk;
        trouble = writeFormFile(task, goesOn);
    }
    const QString start = QStringLiteral("Ошибка записи файла %1: ").arg(shown(told));
    QVERIFY2(trouble.startsWith(start), qPrintable(trouble));
    QVERIFY(trouble.size() > start.size());
    // The older file is whole, and alone.
    QCOMPARE(files(), QStringList(name));
    QFile file(task.fileName);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("older"));
}

void TestHostFiles::pairStaysWhole_data()
{
    QTest::addColumn<int>("vertices");
    // What is left to be written at the end, and what fails before.
    QTest::newRow("end") << 500;
    QTest::newRow("middle") << 50000;
}

/// There is room for the rows of objects, but not for their places.
void TestHostFiles::pairStaysWhole()
{
    QFETCH(int, vertices);
    FormExport task = exportOf(FormFile::Mif, QStringLiteral("a.mif"));
    task.table.objects[0].contours[0].fill(DefPoint{ QStringLiteral("1"), 10, 10 }, vertices);
    m_files->write(QStringLiteral("a.mif"), "older");
    m_files->write(QStringLiteral("a.mid"), "rows");
    const auto contentOf = [this](const char* name) {
        QFile file(m_files->path(QLatin1String(name)));
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    };
    QString trouble;
    {
        const FullDisk disk(roomForRows);
        trouble = writeFormFile(task, goesOn);
    }
    const QString start =
        QStringLiteral("Ошибка записи файла %1: ").arg(shown(QStringLiteral("a.mif")));
    QVERIFY2(trouble.startsWith(start), qPrintable(trouble));
    QCOMPARE(files(), (QStringList{ QStringLiteral("a.mid"), QStringLiteral("a.mif") }));
    QCOMPARE(contentOf("a.mif"), QByteArray("older"));
    QCOMPARE(contentOf("a.mid"), QByteArray("rows"));
    // With room for both there is a new pair.
    QCOMPARE(writeFormFile(task, goesOn), QString());
    QVERIFY(contentOf("a.mif").startsWith("Version 300"));
    // The letter is that of Windows-1251.
    QVERIFY(contentOf("a.mid").startsWith("\"\xC0\","));
}

void TestHostFiles::copiesNoHalfOfPair_data()
{
    pairStaysWhole_data();
}

void TestHostFiles::copiesNoHalfOfPair()
{
    QFETCH(int, vertices);
    const QByteArray places = QByteArray("10 10\n").repeated(vertices);
    const QString file = m_files->write(
        QStringLiteral("a.mif"), mif("Pline " + QByteArray::number(vertices) + '\n' + places));
    m_files->write(QStringLiteral("a.mid"), "\"1\"\n");
    const QStringList before = files();
    QString error;
    {
        const FullDisk disk(roomForRows);
        error = prepareCopy(file, false, goesOn).error;
    }
    const QString start =
        QStringLiteral("ошибка записи файла %1: ").arg(shown(QStringLiteral("a-готов.mif")));
    QVERIFY2(error.startsWith(start), qPrintable(error));
    QCOMPARE(files(), before);
}

void TestHostFiles::tellsFolderInPlaceOfMid()
{
    QVERIFY(QDir(m_files->path(QString())).mkdir(QStringLiteral("a.mid")));
    const QString trouble = writeFormFile(exportOf(FormFile::Mif, QStringLiteral("a.mif")), goesOn);
    const QString start =
        QStringLiteral("Ошибка записи файла %1: ").arg(shown(QStringLiteral("a.mid")));
    QVERIFY2(trouble.startsWith(start), qPrintable(trouble));
    QCOMPARE(files(), QStringList());
}

void TestHostFiles::tellsCancelledExport_data()
{
    QTest::addColumn<FormFile>("form");
    QTest::newRow("CSV") << FormFile::Csv;
    // Its pages are given up half-way.
    QTest::newRow("PDF") << FormFile::Pdf;
}

void TestHostFiles::tellsCancelledExport()
{
    QFETCH(FormFile, form);
    QCOMPARE(writeFormFile(exportOf(form, QStringLiteral("a.out")), cancelled),
        QStringLiteral("Отменено."));
    QCOMPARE(files(), QStringList());
}

void TestHostFiles::copiesPair()
{
    // A tab as delimiter is not taken; the copy has a comma.
    const QString file =
        m_files->write(QStringLiteral("план.mif"), mif(region).replace("\",\"", "\"\t\""));
    m_files->write(QStringLiteral("план.mid"), "\"1\"\n");
    const PreparedCopy copy = prepareCopy(file, false, goesOn);
    QCOMPARE(copy.error, QString());
    QCOMPARE(copy.fileName, m_files->path(QStringLiteral("план-готов.mif")));
    QCOMPARE(files(),
        (QStringList{ QStringLiteral("план-готов.mid"), QStringLiteral("план-готов.mif"),
            QStringLiteral("план.mid"), QStringLiteral("план.mif") }));
    QFile written(copy.fileName);
    QVERIFY(written.open(QIODevice::ReadOnly));
    QVERIFY(written.readAll().contains("Delimiter \",\""));
    QVERIFY(!copy.changes.isEmpty());
    // Half of a pair takes its name, too.
    m_files->remove(QStringLiteral("план-готов.mif"));
    QCOMPARE(prepareCopy(file, false, goesOn).fileName,
        m_files->path(QStringLiteral("план-готов-2.mif")));
}

void TestHostFiles::takesMidOfOtherCase()
{
    const QString file = m_files->write(QStringLiteral("a.mif"), mif(region));
    m_files->write(QStringLiteral("A.MID"), "\"\xC0\xE1\xE2\"\n");
    const PreparedCopy copy = prepareCopy(file, false, goesOn);
    QCOMPARE(copy.error, QString());
    QFile mid(m_files->path(QStringLiteral("a-готов.mid")));
    QVERIFY(mid.open(QIODevice::ReadOnly));
    QCOMPARE(mid.readAll().trimmed(), QByteArray("\"\xC0\xE1\xE2\""));
    QVERIFY2(copy.changes.join(QLatin1Char('\n')).contains(QStringLiteral("MID")),
        qPrintable(copy.changes.join(QLatin1Char('\n'))));
}

void TestHostFiles::tellsWhyNoCopy_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("error");
    QTest::newRow("unknown suffix") << QStringLiteral("a.txt") << QByteArray("слова")
                                    << QStringLiteral("вид файла по расширению не определить");
    QTest::newRow("no drawing") << QStringLiteral("a.dxf") << QByteArray("no drawing\n")
                                << QStringLiteral("это не чертёж DXF");
    QTest::newRow("no MIF") << QStringLiteral("a.mif") << QByteArray("no drawing\n")
                            << QStringLiteral("это не файл MIF: в нём нет строки Data");
}

void TestHostFiles::tellsWhyNoCopy()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    const PreparedCopy copy = prepareCopy(m_files->write(name, content), false, goesOn);
    QTEST(copy.error, "error");
    QVERIFY(copy.changes.isEmpty());
    QCOMPARE(files(), QStringList(name));
    // Nor is there one of a file that is not there.
    m_files->remove(name);
    QVERIFY(!prepareCopy(m_files->path(name), false, goesOn).error.isEmpty());
    QCOMPARE(files(), QStringList());
}

void TestHostFiles::copiesNoPipe()
{
    const QString pipe = m_files->path(QStringLiteral("a.dxf"));
    QCOMPARE(mkfifo(QFile::encodeName(pipe).constData(), 0600), 0);
    QCOMPARE(prepareCopy(pipe, false, goesOn).error,
        QStringLiteral("Ошибка открытия файла %1: это не файл, а канал или устройство")
            .arg(shown(QStringLiteral("a.dxf"))));
}

void TestHostFiles::copiesNoHugeFile()
{
    const QString name = m_files->path(QStringLiteral("a.dxf"));
    QFile file(name);
    QVERIFY(file.open(QIODevice::WriteOnly));
    // A hole takes no room.
    QVERIFY(file.resize(std::numeric_limits<int>::max()));
    file.close();
    QCOMPARE(prepareCopy(name, false, goesOn).error, QStringLiteral("файл слишком велик"));
    QCOMPARE(files(), QStringList(QStringLiteral("a.dxf")));
}

void TestHostFiles::copiesNothingIntoLockedFolder()
{
    const QString file = m_files->write(QStringLiteral("a.mif"), mif(region));
    m_files->write(QStringLiteral("a.mid"), "\"1\"\n");
    const PermissionsHold hold;
    if (!hold.isSet())
        QSKIP("permissions do not hold for this user");
    const QString folder = QFileInfo(file).path();
    const auto before = QFile::permissions(folder);
    QVERIFY(QFile::setPermissions(folder, QFile::ReadOwner | QFile::ExeOwner));
    const QString error = prepareCopy(file, false, goesOn).error;
    QVERIFY(QFile::setPermissions(folder, before));
    const QString start =
        QStringLiteral("файл %1 не записывается: ").arg(shown(QStringLiteral("a-готов.mif")));
    QVERIFY2(error.startsWith(start), qPrintable(error));
}

void TestHostFiles::copiesNothingOntoFullDisk_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("copy");
    QTest::newRow("MIF") << QStringLiteral("a.mif") << mif(region) << QStringLiteral("a-готов.mid");
    QTest::newRow("DXF") << QStringLiteral("a.dxf")
                         << QByteArray("0\nSECTION\n2\nENTITIES\n0\nLINE\n8\n0\n10\n0\n20\n0\n"
                                       "11\n5\n21\n5\n0\nENDSEC\n0\nEOF\n")
                         << QStringLiteral("a-готов.dxf");
}

void TestHostFiles::copiesNothingOntoFullDisk()
{
    QFETCH(QString, name);
    QFETCH(QByteArray, content);
    QFETCH(QString, copy);
    const QString file = m_files->write(name, content);
    m_files->write(QStringLiteral("a.mid"), "\"1\"\n");
    const QStringList before = files();
    QString error;
    {
        const FullDisk disk;
        error = prepareCopy(file, false, goesOn).error;
    }
    const QString start = QStringLiteral("ошибка записи файла %1: ").arg(shown(copy));
    QVERIFY2(error.startsWith(start), qPrintable(error));
    QCOMPARE(files(), before);
    QCOMPARE(prepareCopy(file, false, cancelled).error, QStringLiteral("отменено"));
    QCOMPARE(files(), before);
}

void TestHostFiles::leavesForeignFileAlone_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("unknown suffix") << QStringLiteral("a.txt");
    QTest::newRow("no GeoJSON") << QStringLiteral("a.geojson");
}

void TestHostFiles::leavesForeignFileAlone()
{
    QFETCH(QString, name);
    const QString file = m_files->write(name, "no features\n");
    const PreparedCopy copy = prepareForeignCopy(file, QStringLiteral("a"), {}, goesOn);
    const bool isKnown = name != QLatin1String("a.txt");
    // Where the program that reads it is not installed, that is what it says.
    if (isKnown)
        QVERIFY2(copy.error.contains(QStringLiteral("программ")), qPrintable(copy.error));
    else
        QCOMPARE(copy.error, QStringLiteral("вид файла по расширению не определить"));
    QCOMPARE(files(), QStringList(name));
}

QTEST_MAIN(TestHostFiles)
#include "tst_hostfiles.moc"
