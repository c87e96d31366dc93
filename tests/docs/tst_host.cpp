#include "support/fulldisk.h"
#include "support/tempfiles.h"

#include <QFileInfo>
#include <QImage>
#include <QProcess>
#include <QTest>
#include <QXmlStreamReader>

namespace {

const QString mifOperation = QStringLiteral("Объекты из MIF");
const QString dxfOperation = QStringLiteral("Объекты из DXF");

QString sample(const char* name)
{
    return QStringLiteral(SAMPLES_DIR "/") + QLatin1String(name);
}

/// One object of a result: its designation and the designations of its points.
struct ResultObject {
    QString def;
    QStringList points;
};

/// The objects of a result whose object designations stand in column 1 and points in column 0.
QVector<ResultObject> readObjects(QIODevice& device)
{
    QVector<ResultObject> objects;
    QXmlStreamReader xml(&device);
    int tables = 0;
    int column = -1;
    while (!xml.atEnd()) {
        xml.readNext();
        if (xml.name() == QLatin1String("FormTable"))
            tables += xml.isStartElement() - xml.isEndElement();
        if (!xml.isStartElement())
            continue;
        if (xml.name() == QLatin1String("Row"))
            column = -1;
        if (xml.name() != QLatin1String("Cell"))
            continue;
        ++column;
        if (tables == 1 && column == 1)
            objects.append({ xml.readElementText(), {} });
        else if (tables == 2 && column == 0)
            objects.last().points.append(xml.readElementText());
    }
    if (xml.hasError())
        qFatal("%s", qUtf8Printable(xml.errorString()));
    return objects;
}

int countOf(const QVector<ResultObject>& objects, const QString& def)
{
    return static_cast<int>(std::count_if(objects.cbegin(), objects.cend(),
        [&](const ResultObject& object) { return object.def == def; }));
}

/// The points of the first object that has this designation.
QStringList pointsOf(const QVector<ResultObject>& objects, const QString& def)
{
    for (const ResultObject& object : objects) {
        if (object.def == def)
            return object.points;
    }
    qFatal("no object %s", qUtf8Printable(def));
}

} // namespace

class TestHost : public QObject {
    Q_OBJECT

private slots:
    void listsOperations();
    void namesUnknownOperation();
    void refusesWrongUse_data();
    void refusesWrongUse();
    void reportsUnwritableOutput();
    void reportsFullDisk();
    void passesMessagesOn();
    void takesScreenshots();
    void printsResult();
    void importsMifSample();
    void importsDxfSample();
    void importsDxfSampleWithPointFile();

private:
    /// Runs the host by itself and returns what it printed.
    QString run(const QStringList& arguments, int exitCode = 0);
    /// Runs an operation on a sample and returns the objects of its result.
    QVector<ResultObject> import(const QString& operation, const QStringList& arguments);

    TempFiles m_files;
};

QString TestHost::run(const QStringList& arguments, int exitCode)
{
    QProcess host;
    const QStringList always{ QStringLiteral("--auto"), QStringLiteral("--settings"),
        m_files.path(QLatin1String(QTest::currentTestFunction())) };
    host.start(QStringLiteral(HOST_PATH), always + arguments);
    if (!host.waitForFinished(60000))
        qFatal("the host does not end");
    if (host.exitStatus() != QProcess::NormalExit || host.exitCode() != exitCode) {
        const QString failure = QStringLiteral("exit code %1: %2")
                                    .arg(host.exitCode())
                                    .arg(QString::fromUtf8(host.readAllStandardError()));
        QTest::qFail(qUtf8Printable(failure), __FILE__, __LINE__);
    }
    return QString::fromUtf8(host.readAllStandardOutput());
}

QVector<ResultObject> TestHost::import(const QString& operation, const QStringList& arguments)
{
    const QString result = m_files.path(QStringLiteral("result.xml"));
    run(QStringList{ QStringLiteral("--operation"), operation, QStringLiteral("--encoding"),
            QStringLiteral("Windows-1251"), QStringLiteral("-o"), result }
        + arguments);
    QFile file(result);
    if (!file.open(QIODevice::ReadOnly))
        qFatal("no result");
    return readObjects(file);
}

void TestHost::listsOperations()
{
    const QString output = run({});
    QVERIFY(output.contains(QStringLiteral("Операции:\n  Объекты из MIF\n  Объекты из DXF\n")));
}

void TestHost::namesUnknownOperation()
{
    const QString output = run({ QStringLiteral("--operation"), QStringLiteral("Объекты") }, 2);
    QVERIFY(output.contains(QStringLiteral(
        "Сообщение: Ошибка. Операция импорта \"Объекты\" планином не поддерживается.\n")));
    QVERIFY(output.endsWith(QStringLiteral("Результата нет.\n")));
}

void TestHost::refusesWrongUse_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("unknown option") << QStringList{ QStringLiteral("--bogus") };
    QTest::newRow("too many columns")
        << QStringList{ QStringLiteral("--columns"), QStringLiteral("0,1,2,1,3") };
    QTest::newRow("too few columns")
        << QStringList{ QStringLiteral("--columns"), QStringLiteral("0,1,2") };
    QTest::newRow("column without a number")
        << QStringList{ QStringLiteral("--columns"), QStringLiteral("0,x,2,1") };
    QTest::newRow("value without a widget")
        << QStringList{ QStringLiteral("--set"), QStringLiteral("=1") };
    QTest::newRow("no plug-in") << QStringList{ QStringLiteral("--library"),
        m_files.path(QStringLiteral("none.so")) };
}

void TestHost::refusesWrongUse()
{
    QFETCH(QStringList, arguments);
    const QString output = run(arguments, 1);
    QVERIFY(!output.contains(QStringLiteral("Операции:")));
}

void TestHost::reportsUnwritableOutput()
{
    const QString output = run({ QStringLiteral("--operation"), dxfOperation, QStringLiteral("-o"),
                                   m_files.path(QStringLiteral("none/result.xml")) },
        1);
    QVERIFY(output.contains(QStringLiteral("Ошибка записи файла")));
}

void TestHost::reportsFullDisk()
{
    const QString result = m_files.write(QStringLiteral("older.xml"), "older");
    QString output;
    {
        // The program that it starts is under the same limit.
        const FullDisk disk;
        output =
            run({ QStringLiteral("--operation"), dxfOperation, QStringLiteral("-o"), result }, 1);
    }
    QVERIFY2(output.contains(QStringLiteral("Ошибка записи файла %1: ").arg(result)),
        qPrintable(output));
    QFile file(result);
    QVERIFY(file.open(QIODevice::ReadOnly));
    QCOMPARE(file.readAll(), QByteArray("older"));
}

void TestHost::passesMessagesOn()
{
    const QString file = m_files.path(QStringLiteral("none.mif"));
    const QString output =
        run({ QStringLiteral("--operation"), mifOperation, QStringLiteral("--file"), file });
    QVERIFY(output.contains(QStringLiteral("Сообщение: Ошибка открытия файла %1\n").arg(file)));
}

void TestHost::takesScreenshots()
{
    const QString dir = m_files.path(QStringLiteral("pictures"));
    run({ QStringLiteral("--operation"), dxfOperation, QStringLiteral("--file"), sample("lots.dxf"),
        QStringLiteral("--screenshots"), dir });
    const QImage before(dir + QStringLiteral("/before.png"));
    const QImage after(dir + QStringLiteral("/after.png"));
    QVERIFY(!before.isNull());
    QCOMPARE(after.size(), before.size());
    QVERIFY(after != before);
}

void TestHost::printsResult()
{
    const QString output = run({ QStringLiteral("--operation"), dxfOperation,
        QStringLiteral("--table"), QStringLiteral("Контуры"), QStringLiteral("--set"),
        QStringLiteral("updateCheck=true") });
    QVERIFY(output.endsWith(
        QStringLiteral("Результат:\n\n<FormTable Name=\"Контуры\" Update=\"1\"/>\n")));
}

void TestHost::importsMifSample()
{
    const QVector<ResultObject> objects = import(mifOperation,
        { QStringLiteral("--file"), sample("parcels.mif"), QStringLiteral("--point-file"),
            sample("parcels-points.mif"), QStringLiteral("--set"),
            QStringLiteral("pointStartNumSpin=301") });
    // 37 regions and a line; the caption is no object.
    QCOMPARE(objects.size(), 38);
    QCOMPARE(objects.first().def, QStringLiteral(":ЗУ1"));
    // The file holds :ЗУ20 twice, and the object without a designation becomes the next :ЗУ1.
    QCOMPARE(countOf(objects, QStringLiteral(":ЗУ20")), 2);
    QCOMPARE(countOf(objects, QStringLiteral(":ЗУ1")), 2);
    QCOMPARE(countOf(objects, QStringLiteral("ул. Полевая")), 1);

    // Two corners of the first parcel bear the same number.
    const QStringList corners{ QStringLiteral("н1"), QStringLiteral("н2"), QStringLiteral("н1"),
        QStringLiteral("н4"), QStringLiteral("н1") };
    QCOMPARE(objects.first().points, corners);

    // The meadow: six corners, two of them without a point, and two holes of four.
    const QStringList meadow = pointsOf(objects, QStringLiteral(":ЗУ33"));
    QCOMPARE(meadow.size(), 7 + 5 + 5);
    QCOMPARE(meadow.at(2), QStringLiteral("н301"));
    QCOMPARE(meadow.at(3), QStringLiteral("н302"));
    // The parcel in its first hole has the same corners.
    QCOMPARE(pointsOf(objects, QStringLiteral(":ЗУ35")), meadow.mid(7, 5));
}

void TestHost::importsDxfSample()
{
    const QVector<ResultObject> objects =
        import(dxfOperation, { QStringLiteral("--file"), sample("quarter.dxf") });
    QCOMPARE(objects.size(), 21);
    QCOMPARE(countOf(objects, QStringLiteral("ЗУ8")), 2);
    QCOMPARE(objects.last().def, QStringLiteral("Чзу-1 «Пруд»"));
    const QStringList corners{ QStringLiteral("т1"), QStringLiteral("т2"), QStringLiteral("т3"),
        QStringLiteral("т1"), QStringLiteral("т1") };
    QCOMPARE(objects.first().points, corners);
}

void TestHost::importsDxfSampleWithPointFile()
{
    const QVector<ResultObject> objects = import(dxfOperation,
        { QStringLiteral("--file"), sample("lots.dxf"), QStringLiteral("--point-file"),
            sample("lots-points.dxf") });
    // Twelve lots and a line, which takes the text nearest to it.
    QCOMPARE(objects.size(), 13);
    QCOMPARE(objects.first().def, QStringLiteral("уч. 1а"));
    QCOMPARE(countOf(objects, QStringLiteral("уч. 3а")), 2);
    const QStringList corners{ QStringLiteral("51"), QStringLiteral("52"), QStringLiteral("51"),
        QStringLiteral("54"), QStringLiteral("51") };
    QCOMPARE(objects.first().points, corners);
    // No point stands at the ends of the line.
    const QStringList ends{ QStringLiteral("н1"), QStringLiteral("н2") };
    QCOMPARE(objects.last().points, ends);
}

QTEST_GUILESS_MAIN(TestHost)
#include "tst_host.moc"
