#include "import/importfailure.h"

#include <QDir>
#include <QtTest>

Q_DECLARE_METATYPE(FailureKind)

/// The message of every failure, letter for letter.
class TestImportFailure : public QObject {
    Q_OBJECT

private slots:
    void text_data();
    void text();
};

void TestImportFailure::text_data()
{
    QTest::addColumn<FailureKind>("kind");
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<int>("number");
    QTest::addColumn<QString>("expected");
    const auto row = [](const char* name, FailureKind kind, int number, const char* expected) {
        QTest::newRow(name) << kind << QStringLiteral("a.mif") << number
                            << QString::fromUtf8(expected);
    };
    row("file", FailureKind::FileNotOpened, 0, "Ошибка открытия файла a.mif");
    row("mif", FailureKind::NotMif, 0, "Ошибка. Файл a.mif не соответствует формату MIF");
    row("mid", FailureKind::MidNotOpened, 0, "Ошибка открытия MID файла a.mif");
    row("point", FailureKind::PointCoordinates, 7, "Ошибка чтения координат точки из строки: 7");
    row("point designation", FailureKind::PointDesignation, 8,
        "Ошибка чтения обозначения точки из строки: 8");
    row("object data", FailureKind::ObjectData, 9, "Ошибка чтения данных объекта из строки: 9");
    row("object designation", FailureKind::ObjectDesignation, 10,
        "Ошибка чтения обозначения объекта из строки: 10");
    row("collection", FailureKind::Collection, 11,
        "Ошибка в стоке 11. Коллекции в MIF файлах не поддерживаются.");
    row("line", FailureKind::Line, 12, "Ошибка чтения линии из строки: 12");
    row("the first line", FailureKind::Line, 1, "Ошибка чтения линии из строки: 1");
    row("polyline", FailureKind::Polyline, 13, "Ошибка чтения полилинии из строки: 13");
    row("region", FailureKind::Region, 14, "Ошибка чтения области из строки: 14");
    row("dxf", FailureKind::NotDxf, 0, "Ошибка. Файл a.mif не соответствует формату DXF");
    row("dxf entity", FailureKind::DxfEntity, 2147483647,
        "Ошибка чтения DXF файла в строке: 2147483647");
    QTest::newRow("a name that looks like a place")
        << FailureKind::NotDxf << QStringLiteral("/строке: 7 x/%1 %2.dxf") << 0
        << QStringLiteral("Ошибка. Файл %1 не соответствует формату DXF")
               .arg(QDir::toNativeSeparators(QStringLiteral("/строке: 7 x/%1 %2.dxf")));
}

void TestImportFailure::text()
{
    QFETCH(FailureKind, kind);
    QFETCH(QString, fileName);
    QFETCH(int, number);
    QFETCH(QString, expected);
    const ImportFailure failure{ kind, fileName, number, number };
    QCOMPARE(failure.text(), expected);
}

QTEST_GUILESS_MAIN(TestImportFailure)
#include "tst_importfailure.moc"
