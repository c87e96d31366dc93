#include "drawing.h"
#include "importgeometryinterface.h"
#include "importrun.h"
#include "support/dialogdriver.h"
#include "support/stricttest.h"

#include <QPluginLoader>
#include <QtTest>

namespace {

struct Object {
    const char* def;
    QList<const char*> vertices; ///< "def x y"
};

/// A point without a designation has an empty cell in its place.
QString cell(const QString& text)
{
    return text.isEmpty() ? QStringLiteral("<Cell/>")
                          : QStringLiteral("<Cell>") + text + QStringLiteral("</Cell>");
}

/// The text that the host is to receive, without the white space between tags.
QString resultOf(const QList<Object>& objects)
{
    QString xml = QStringLiteral("<FormTable Name=\"Участки\">");
    for (const Object& object : objects) {
        xml += QStringLiteral("<Row>") + cell(QString::fromUtf8(object.def))
            + QStringLiteral("<FormTable Name=\"Координаты\">");
        for (const char* vertex : object.vertices) {
            xml += QStringLiteral("<Row>");
            for (const QString& text : QString::fromUtf8(vertex).split(QLatin1Char(' ')))
                xml += cell(text);
            xml += QStringLiteral("</Row>");
        }
        xml += QStringLiteral("</FormTable></Row>");
    }
    return xml + QStringLiteral("</FormTable>");
}

QString withoutLayout(const QString& xml)
{
    QString joined;
    for (const QString& line : xml.split(QLatin1Char('\n')))
        joined += line.trimmed();
    return joined;
}

const char* const corners = "0 POINT, 10 0, 20 0, 0 POINT, 10 100, 20 0, "
                            "0 POINT, 10 100, 20 100, 0 POINT, 10 0, 20 100, ";
const char* const numbers = "0 TEXT, 10 0.2, 20 0.3, 1 1, 0 TEXT, 10 100.1, 20 0.2, 1 2, "
                            "0 TEXT, 10 100.2, 20 100.1, 1 3, 0 TEXT, 10 0.1, 20 100.3, 1 4, ";
const char* const parcel = "0 TEXT, 10 50, 20 50, 1 ЗУ1, ";
const char* const square =
    "0 LWPOLYLINE, 90 4, 70 1, 10 0, 20 0, 10 100, 20 0, 10 100, 20 100, 10 0, 20 100, ";

QByteArray drawingOf(std::initializer_list<const char*> parts)
{
    QByteArray entities;
    for (const char* part : parts)
        entities += part;
    return encoded(drawing(entities.constData()), "Windows-1251");
}

} // namespace

Q_DECLARE_METATYPE(QList<Object>)

/// What the host receives of a drawing, from its call of the plug-in to the text.
class TestDxfResult : public StrictTest {
    Q_OBJECT

private:
    const TempFiles m_folder;
    ImportGeometryInterface* m_plugin = nullptr;

    /// Fills in the dialog, has the files processed, and accepts the result.
    void driveDialog(QDialog& dialog, const QString& pointFile, bool searchPointDefs,
        bool searchObjectDefs) const
    {
        setChecked(dialog, "usePointFileCheck", !pointFile.isEmpty());
        setChecked(dialog, "searchPointDefsCheck", searchPointDefs);
        setChecked(dialog, "searchObjectDefsCheck", searchObjectDefs);
        type(dialog, "pointPrefEdit", QString());
        type(dialog, "objectPrefEdit", QString());
        type(dialog, "objectFileNameEdit", m_folder.path(QStringLiteral("objects.dxf")));
        if (!pointFile.isEmpty())
            type(dialog, "pointFileNameEdit", pointFile);
        type(dialog, "encodingCombo", QStringLiteral("Windows-1251"));
        click(dialog, "startButton");
        clickOk(dialog);
    }

    QString import(const QString& pointFile, bool searchPointDefs, bool searchObjectDefs)
    {
        const OwnStore store;
        driveModal([&](QDialog& dialog) {
            driveDialog(dialog, pointFile, searchPointDefs, searchObjectDefs);
        });
        return m_plugin->operation(QStringLiteral("Объекты из DXF"), QStringLiteral("Земли"),
            QStringLiteral("Участки"), QStringLiteral("Координаты"), GeometryInfo{ 0, 1, 2, 0 },
            &MessageLog::receive);
    }

private slots:
    void init();
    void drawing_data();
    void drawing();
    void failedDrawingKeepsWhatWasRead();
};

void TestDxfResult::init()
{
    QPluginLoader loader(QStringLiteral(PLUGIN_PATH));
    m_plugin = qobject_cast<ImportGeometryInterface*>(loader.instance());
    QVERIFY2(m_plugin, qPrintable(loader.errorString()));
}

void TestDxfResult::drawing_data()
{
    QTest::addColumn<QByteArray>("objectDrawing");
    QTest::addColumn<QByteArray>("pointDrawing");
    QTest::addColumn<bool>("searchPointDefs");
    QTest::addColumn<bool>("searchObjectDefs");
    QTest::addColumn<QList<Object>>("objects");
    const QByteArray none;
    const QList<const char*> ring{ "1 0.00 0.00", "2 100.00 0.00", "3 100.00 100.00",
        "4 0.00 100.00", "1 0.00 0.00" };

    QTest::newRow("points and texts") << drawingOf({ corners, numbers, parcel, square }) << none
                                      << true << true << QList<Object>{ { "ЗУ1", ring } };
    QTest::newRow("no points") << drawingOf({ numbers, parcel, square }) << none << true << true
                               << QList<Object>{ { "ЗУ1", ring } };
    QTest::newRow("points in a file of their own")
        << drawingOf({ parcel, square }) << drawingOf({ corners, numbers }) << true << true
        << QList<Object>{ { "ЗУ1", ring } };
    QTest::newRow("no texts") << drawingOf({ corners, square }) << none << true << true
                              << QList<Object>{ { "1",
                                     { " 0.00 0.00", " 100.00 0.00", " 100.00 100.00",
                                         " 0.00 100.00", " 0.00 0.00" } } };
    QTest::newRow("object designations not searched")
        << drawingOf({ corners, numbers, parcel, square }) << none << true << false
        << QList<Object>{ { "1", ring } };
    // Both the text and its point lie off the centre; the one nearer to it names the square.
    QTest::newRow("point numbers only")
        << drawingOf({ "0 TEXT, 10 40, 20 40, 1 8, 0 TEXT, 10 55, 20 50, 1 7, ", square }) << none
        << true << true << QList<Object>{ { "7", ring } };
    QTest::newRow("an object without a text of its own")
        << drawingOf(
               { corners, numbers, parcel, square, "0 LINE, 10 100, 20 0, 11 300, 21 0.25, " })
        << none << true << true
        << QList<Object>{ { "ЗУ1", ring }, { "ЗУ1", { "2 100.00 0.00", "1 300.00 0.25" } } };
}

void TestDxfResult::drawing()
{
    QFETCH(QByteArray, objectDrawing);
    QFETCH(QByteArray, pointDrawing);
    QFETCH(bool, searchPointDefs);
    QFETCH(bool, searchObjectDefs);
    QFETCH(QList<Object>, objects);
    m_folder.write(QStringLiteral("objects.dxf"), objectDrawing);
    const QString pointFile = pointDrawing.isEmpty()
        ? QString()
        : m_folder.write(QStringLiteral("points.dxf"), pointDrawing);
    const MessageLog log;
    const QString result = import(pointFile, searchPointDefs, searchObjectDefs);
    QCOMPARE(log.messages(), QStringList());
    QCOMPARE(withoutLayout(result), resultOf(objects));
}

void TestDxfResult::failedDrawingKeepsWhatWasRead()
{
    m_folder.write(QStringLiteral("objects.dxf"),
        drawingOf({ "0 LINE, 10 0, 20 0, 11 1, 21 1, ", "0 LINE, 10 0, 20 abc, " }));
    const MessageLog log;
    const QString result = import(QString(), false, false);
    // Ten lines of the start, ten of the first line, and six up to the bad number.
    QCOMPARE(log.messages(), QStringList{ readError(26) });
    QCOMPARE(withoutLayout(result), resultOf({ { "1", { "1 0.00 0.00", "2 1.00 1.00" } } }));
}

QTEST_MAIN(TestDxfResult)
#include "tst_dxfresult.moc"
