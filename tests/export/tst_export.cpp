#include "export/exportfile.h"
#include "export/measures.h"
#include "support/tempfiles.h"

#include <QBuffer>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QStandardPaths>
#include <QTest>
#include <QTextCodec>

#include <limits>

namespace {

QVector<DefPoint> ring(double left, double bottom, double size, bool clockwise = false)
{
    const double right = left + size;
    const double top = bottom + size;
    QVector<DefPoint> points{ { QStringLiteral("1"), left, bottom },
        { QStringLiteral("2"), right, bottom }, { QStringLiteral("3"), right, top },
        { QStringLiteral("4"), left, top } };
    if (clockwise)
        std::reverse(points.begin() + 1, points.end());
    points.append(DefPoint(points.first()));
    return points;
}

/// An outer ring with a hole, an island in the hole, and a part that lies apart.
DefPolygon parts()
{
    return { QStringLiteral("У; \"1\""),
        { ring(0, 0, 100, true), ring(20, 20, 60), ring(40, 40, 20), ring(200, 0, 10) } };
}

DefPolygon path()
{
    return { QStringLiteral("Л"), { { { {}, 0, 0 }, { {}, 3, 4 } } } };
}

template <typename Write>
QByteArray written(Write write, const ExportOptions& options)
{
    QBuffer out;
    out.open(QIODevice::WriteOnly);
    write(out, { parts(), path(), { {}, {} } }, { Shape::Area, Shape::Line, Shape::Area }, options);
    return out.data();
}

} // namespace

class TestExport : public QObject {
    Q_OBJECT

private slots:
    void measures()
    {
        const ObjectShape shape(parts(), true, false);
        // 100 x 100 without 60 x 60, with 20 x 20 and 10 x 10.
        QCOMPARE(shape.area, 10000.0 - 3600 + 400 + 100);
        QCOMPARE(shape.perimeter, 4.0 * (100 + 60 + 20 + 10));
        QCOMPARE(shape.parts.size(), 3);
        QCOMPARE(shape.parts.first().holes, QVector<int>({ 1 }));
        QCOMPARE(ObjectShape(path(), false, false).perimeter, 5.0);
        QCOMPARE(ObjectShape(path(), false, false).area, 0.0);
    }

    void largeCoordinatesKeepTheArea()
    {
        const DefPolygon object{ {}, { ring(32213641, 6468214, 0.5) } };
        QCOMPARE(ObjectShape(object, true, false).area, 0.25);
    }

    void noNumbers()
    {
        constexpr double nan = std::numeric_limits<double>::quiet_NaN();
        const DefPolygon object{ {}, { { { {}, nan, 0 }, { {}, 1, 1 } } } };
        QVERIFY(ObjectShape(object, true, false).contours.isEmpty());
        QVERIFY(ObjectShape(object, false, false).contours.isEmpty());
    }

    void csv()
    {
        const QByteArray text = written(writeCsv, {});
        QVERIFY(text.startsWith("\xEF\xBB\xBF"));
        const QStringList lines = QString::fromUtf8(text.mid(3)).split(QStringLiteral("\r\n"));
        QCOMPARE(lines.at(0), QStringLiteral("Объект,Контур,Номер,Точка,X,Y,Площадь,Периметр"));
        QCOMPARE(lines.at(1), QStringLiteral("\"У; \"\"1\"\"\",1,1,1,0,0,6900.00,760.00"));
        QCOMPARE(lines.size(), 1 + 20 + 2 + 1);
        const QStringList russian =
            QString::fromUtf8(written(writeCsv, { true, false, {} })).split(QStringLiteral("\r\n"));
        QCOMPARE(russian.at(22), QStringLiteral("Л;1;2;\"\";3;4;0,00;5,00"));
    }

    void geoJson()
    {
        const QJsonObject json =
            QJsonDocument::fromJson(written(writeGeoJson, { false, true, {} })).object();
        const QJsonArray features = json.value(QLatin1String("features")).toArray();
        QCOMPARE(features.size(), 3);
        const QJsonObject geometry =
            features.at(0).toObject().value(QLatin1String("geometry")).toObject();
        QCOMPARE(geometry.value(QLatin1String("type")).toString(), QStringLiteral("MultiPolygon"));
        const QJsonArray polygons = geometry.value(QLatin1String("coordinates")).toArray();
        QCOMPARE(polygons.size(), 3);
        QCOMPARE(polygons.at(0).toArray().size(), 2);
        // Outer rings run counter-clockwise, holes clockwise; all are closed, easting first.
        QVERIFY(turns(polygons.at(0).toArray().at(0)) > 0);
        QVERIFY(turns(polygons.at(0).toArray().at(1)) < 0);
        QVERIFY(features.at(2).toObject().value(QLatin1String("geometry")).isNull());
        const QJsonArray line = features.at(1)
                                    .toObject()
                                    .value(QLatin1String("geometry"))
                                    .toObject()
                                    .value(QLatin1String("coordinates"))
                                    .toArray();
        QCOMPARE(line.at(1).toArray(), QJsonArray({ 4, 3 }));
    }

    void mif()
    {
        QBuffer mid;
        mid.open(QIODevice::WriteOnly);
        const QByteArray text = written(
            [&mid](QIODevice& out, const QVector<DefPolygon>& objects, const QVector<Shape>& shapes,
                const ExportOptions& options) {
                QCOMPARE(writeMif(out, mid, objects, shapes, options), 0);
            },
            {});
        QVERIFY(text.startsWith("Version 300\nCharset \"WindowsCyrillic\"\nDelimiter \",\"\n"));
        QVERIFY(text.contains("\nRegion 4\n  5\n0 0\n"));
        QVERIFY(text.endsWith("Pline 2\n0 0\n3 4\nNone\n"));
        QCOMPARE(QTextCodec::codecForName("Windows-1251")->toUnicode(mid.data()),
            QStringLiteral("\"У; \"\"1\"\"\",6900.00,760.00\n\"Л\",0.00,5.00\n\"\",0.00,0.00\n"));
    }

    /// Such measures are no numbers in any of the formats; neither do they disturb the others.
    void hugeMeasures()
    {
        const DefPolygon huge{ QStringLiteral("H"),
            { { { {}, -1e308, -1e308 }, { {}, 1e308, -1e308 }, { {}, 1e308, 1e308 },
                  { {}, -1e308, 1e308 } },
                ring(0, 0, 1) } };
        const auto writeHuge = [&huge](auto write) {
            QBuffer out;
            out.open(QIODevice::WriteOnly);
            write(out, QVector<DefPolygon>{ huge }, QVector<Shape>{ Shape::Area });
            return out.data();
        };
        const QByteArray json =
            writeHuge([](QIODevice& out, const auto& objects, const auto& shapes) {
                writeGeoJson(out, objects, shapes, {});
            });
        QVERIFY(!QJsonDocument::fromJson(json).isNull());
        QVERIFY(json.contains(R"("area":null,"perimeter":null)"));
        const QByteArray csv =
            writeHuge([](QIODevice& out, const auto& objects, const auto& shapes) {
                writeCsv(out, objects, shapes, {});
            });
        QVERIFY(csv.contains("H,2,1,1,0,0,,\r\n"));
        QBuffer mid;
        mid.open(QIODevice::WriteOnly);
        writeHuge([&mid](QIODevice& out, const auto& objects, const auto& shapes) {
            writeMif(out, mid, objects, shapes, {});
        });
        QCOMPARE(mid.data(), QByteArray("\"H\",,\n"));
    }

    void readBack_data()
    {
        QTest::addColumn<QString>("name");
        QTest::addColumn<QString>("count");
        QTest::newRow("CSV") << QStringLiteral("a.csv") << QStringLiteral("Feature Count: 22");
        QTest::newRow("GeoJSON") << QStringLiteral("a.geojson")
                                 << QStringLiteral("Feature Count: 3");
        QTest::newRow("MIF") << QStringLiteral("a.mif") << QStringLiteral("Feature Count: 3");
    }

    void readBack()
    {
        QFETCH(QString, name);
        QFETCH(QString, count);
        if (QStandardPaths::findExecutable(QStringLiteral("ogrinfo")).isEmpty())
            QSKIP("ogrinfo is not installed");
        const TempFiles folder;
        folder.write(QStringLiteral("a.csv"), written(writeCsv, {}));
        folder.write(QStringLiteral("a.geojson"), written(writeGeoJson, {}));
        QBuffer mid;
        mid.open(QIODevice::WriteOnly);
        folder.write(QStringLiteral("a.mif"),
            written(
                [&mid](QIODevice& out, const QVector<DefPolygon>& objects,
                    const QVector<Shape>& shapes,
                    const ExportOptions& options) { writeMif(out, mid, objects, shapes, options); },
                {}));
        folder.write(QStringLiteral("a.mid"), mid.data());
        QProcess process;
        process.start(QStringLiteral("ogrinfo"),
            { QStringLiteral("-al"), QStringLiteral("-q"), folder.path(name) });
        QVERIFY(process.waitForFinished());
        const QString features = QString::fromUtf8(process.readAllStandardOutput());
        process.start(QStringLiteral("ogrinfo"),
            { QStringLiteral("-al"), QStringLiteral("-so"), folder.path(name) });
        QVERIFY(process.waitForFinished());
        QVERIFY2(process.readAllStandardOutput().contains(count.toUtf8()), qPrintable(features));
        QCOMPARE(process.readAllStandardError(), QByteArray());
        QVERIFY2(features.contains(QStringLiteral("6900")), qPrintable(features));
    }

private:
    /// Positive for a ring that runs counter-clockwise and is closed.
    static double turns(const QJsonValue& value)
    {
        Places places;
        for (const QJsonValue& place : value.toArray())
            places.append({ place.toArray().at(0).toDouble(), place.toArray().at(1).toDouble() });
        return places.first() == places.last() ? signedTwiceArea(places) : 0;
    }
};

QTEST_GUILESS_MAIN(TestExport)
#include "tst_export.moc"
