// What the window says is the matter with a file, and what to do about it.

#include "diagnosispane.h"
#include "support/stricttest.h"

#include <QComboBox>
#include <QPushButton>
#include <QSignalSpy>
#include <QTest>
#include <QTextBrowser>

#include <memory>

Q_DECLARE_METATYPE(Cause)

namespace {

Report reportOn(const QString& fileName)
{
    Report report;
    report.fileName = fileName;
    report.objectCount = 3;
    report.vertexCount = 15;
    return report;
}

Report reportOn(const QString& fileName, const QVector<FoundCause>& causes)
{
    Report report = reportOn(fileName);
    FileSurvey survey;
    survey.fileName = fileName;
    survey.causes = causes;
    report.surveys.append(survey);
    return report;
}

FoundCause found(Cause cause, int line = 0)
{
    return { cause, QStringLiteral("/план/а.dxf"), line, {}, 4, QStringLiteral("/план/а.dxf") };
}

} // namespace

class TestDiagnosis : public StrictTest {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void saysWhatToDo_data();
    void saysWhatToDo();
    void speaksOfNoCommand();
    void startsWithoutFile();
    void praisesWholeFile();
    void tellsMessages();
    void countsObjectFindings_data();
    void countsObjectFindings();
    void offersCopy();
    void offersNoCopyOfUnreadableFile();
    void asksForCopy_data();
    void asksForCopy();
    void showsNamesAsTheyAre();
    void tellsChanges();
    void forgetsOlderFindingOfFile();
    void keepsLossInSight();
    void keepsNewestFiles();

private:
    QString told() const { return m_browser->toPlainText(); }
    QStringList files() const;

    std::unique_ptr<DiagnosisPane> m_pane;
    QTextBrowser* m_browser = nullptr;
    QComboBox* m_files = nullptr;
    QPushButton* m_mend = nullptr;
};

void TestDiagnosis::init()
{
    m_pane = std::make_unique<DiagnosisPane>();
    m_browser = m_pane->findChild<QTextBrowser*>(QStringLiteral("diagnosisText"));
    m_files = m_pane->findChild<QComboBox*>(QStringLiteral("diagnosisFiles"));
    m_mend = m_pane->findChild<QPushButton*>(QStringLiteral("mendButton"));
    QVERIFY(m_browser && m_files && m_mend);
}

void TestDiagnosis::cleanup()
{
    m_pane.reset();
}

QStringList TestDiagnosis::files() const
{
    QStringList texts;
    for (int row = 0; row < m_files->count(); ++row)
        texts.append(m_files->itemText(row));
    return texts;
}

void TestDiagnosis::saysWhatToDo_data()
{
    QTest::addColumn<Cause>("cause");
    QTest::addColumn<QString>("detail");
    QTest::addColumn<QString>("remedy");
    QTest::addColumn<bool>("isMendable");
    int rows = 0;
    const auto row = [&rows](const char* name, Cause cause, const QString& remedy, bool isMendable,
                         const QString& detail = QStringLiteral("то и это")) {
        QTest::newRow(name) << cause << detail << remedy << isMendable;
        ++rows;
    };
    const QString copy = QStringLiteral("Откройте исправленную копию: её пишет кнопка справа.");
    row("empty-file", Cause::EmptyFile, QStringLiteral("Получите файл заново."), false);
    row("not-text", Cause::NotText,
        QStringLiteral("Двоичный DXF станет текстовым в исправленной копии; DWG сохраните в "
                       "программе черчения как текстовый (ASCII) DXF."),
        true);
    row("other-format", Cause::OtherFormat,
        QStringLiteral("Выгрузите объекты в MIF или DXF из программы, в которой файл сделан."),
        false);
    row("blank-first-line", Cause::BlankFirstLine, copy, true);
    row("leading-comment", Cause::LeadingComment, copy, true);
    row("missing-header", Cause::MissingHeader, copy, true);
    row("not-dxf", Cause::NotDxf,
        QStringLiteral("Проверьте, тот ли это файл, и сохраните чертёж в DXF заново."), false);
    row("block-inserts", Cause::BlockInsertsOnly, copy, true);
    row("mtext", Cause::MTextOnly, copy, true);
    row("unsorted-texts", Cause::UnsortedTexts,
        QStringLiteral("Отключите в диалоге поиск обозначений точек, укажите файл точек или "
                       "откройте исправленную копию."),
        true);
    row("closed-flag", Cause::ClosedFlag, copy, true);
    row("bulges", Cause::Bulges, copy, true);
    row("left-out", Cause::LeftOut, copy, true);
    row("hidden-layers", Cause::HiddenLayers, QStringLiteral("В исправленной копии их нет."), true);
    row("paper-space", Cause::PaperSpace, copy, true);
    row("mesh", Cause::Mesh, copy, true);
    row("one-vertex", Cause::OneVertex, copy, true);
    row("mif-header", Cause::MifHeader, copy, true);
    row("delimiter", Cause::Delimiter, copy, true);
    row("delimiter-missing", Cause::DelimiterMissing, copy, true);
    row("mid-delimiter", Cause::MidDelimiter,
        QStringLiteral("Впишите этот разделитель в строку Delimiter или выгрузите пару файлов "
                       "заново."),
        false);
    row("no-data", Cause::NoData, QStringLiteral("Получите файл заново: он, видимо, оборван."),
        false);
    row("mid-other-case", Cause::MidOtherCase,
        QStringLiteral("Переименуйте его так, как указано в сообщении, или откройте исправленную "
                       "копию."),
        true);
    row("mid-missing", Cause::MidMissing,
        QStringLiteral("Положите файл MID рядом или отключите в диалоге поиск обозначений точек и "
                       "объектов."),
        false);
    row("mid-unreadable", Cause::MidUnreadable,
        QStringLiteral("Проверьте, файл ли это и есть ли право его читать."), false);
    row("mid-blank-row", Cause::MidBlankRow, copy, true);
    row("mid-too-short", Cause::MidTooShort,
        QStringLiteral("Выгрузите пару файлов заново; в исправленной копии вместо недостающих "
                       "строк стоят пустые."),
        true);
    row("mid-too-long", Cause::MidTooLong, copy, true);
    row("collection", Cause::Collection, copy, true);
    row("count-on-next-line", Cause::CountOnNextLine, copy, true);
    row("blank-line", Cause::BlankLine, copy, true);
    row("trailing-blank-line", Cause::TrailingBlankLine, copy, true);
    row("bad-object", Cause::BadObject,
        QStringLiteral("Исправьте объект в этом месте или выгрузите файл заново; в исправленной "
                       "копии этого объекта нет."),
        true);
    row("nothing-inside", Cause::NothingInside,
        QStringLiteral("Проверьте, тот ли это файл, и выгрузите его заново."), false);
    row("no-objects", Cause::NoObjects,
        QStringLiteral("Если это файл точек, укажите его в диалоге как файл точек; кривые и "
                       "надписи есть в исправленной копии."),
        true);
    // A copy would not put the columns of the program's own tables right.
    row("axes", Cause::Axes,
        QStringLiteral("Поменяйте местами столбцы координат: «Правка», «Таблицы программы», и "
                       "откройте файл снова."),
        false);
    row("degrees", Cause::Degrees,
        QStringLiteral("Пересчитайте координаты в метры, например командой: ogr2ogr -f \"MapInfo "
                       "File\" -dsco FORMAT=MIF -s_srs EPSG:4326 -t_srs EPSG:32637 "
                       "/план/а-метры.mif /план/а.dxf"),
        false, QStringLiteral("32637"));
    row("encoding", Cause::Encoding,
        QStringLiteral("Откройте файл снова и выберите в диалоге кодировку UTF-8."), false,
        QStringLiteral("UTF-8"));
    QCOMPARE(rows, static_cast<int>(allCauses().size()));
}

void TestDiagnosis::saysWhatToDo()
{
    QFETCH(Cause, cause);
    QFETCH(QString, detail);
    QFETCH(QString, remedy);
    FoundCause what = found(cause, 7);
    what.detail = detail;
    QCOMPARE(windowRemedy(what), remedy);
    m_pane->show(reportOn(what.fileName, { what }));
    QCOMPARE(told(),
        QStringLiteral("Файл «а.dxf»: объектов 3, вершин 15.\n%1\nГде: а.dxf, строка 7\nЧто "
                       "делать: %2")
            .arg(causeText(what), remedy));
    QVERIFY(m_pane->hasCauses());
    QTEST(m_mend->isEnabled(), "isMendable");
}

void TestDiagnosis::speaksOfNoCommand()
{
    for (const Cause cause : allCauses()) {
        const QString remedy = windowRemedy(found(cause));
        QVERIFY(!remedy.isEmpty());
        QVERIFY2(!remedy.contains(QLatin1String("importgeometry")), qPrintable(causeId(cause)));
        QVERIFY2(!remedy.contains(QLatin1String("--")), qPrintable(causeId(cause)));
    }
}

void TestDiagnosis::startsWithoutFile()
{
    QCOMPARE(told(), QStringLiteral("Здесь будет сказано, что не так с открытым файлом."));
    QVERIFY(!m_mend->isEnabled());
    QVERIFY(!m_pane->hasCauses());
    QVERIFY(m_files->isHidden());
}

void TestDiagnosis::praisesWholeFile()
{
    m_pane->show(reportOn(QStringLiteral("/план/а.mif")));
    QCOMPARE(told(),
        QStringLiteral("Файл «а.mif»: объектов 3, вершин 15.\n"
                       "Файл прочитан целиком, замечаний к нему нет."));
    QVERIFY(!m_pane->hasCauses());
    QVERIFY(!m_mend->isEnabled());
}

void TestDiagnosis::tellsMessages()
{
    Report report = reportOn(QStringLiteral("/план/а.mif"));
    report.messages = { { QStringLiteral("Что-то с объектом."), QStringLiteral("/план/а.mif"), 12 },
        { QStringLiteral("Что-то с файлом."), QStringLiteral("/план/а.mid"), 0 } };
    m_pane->show(report);
    QCOMPARE(told(),
        QStringLiteral("Файл «а.mif»: объектов 3, вершин 15.\n"
                       "Что-то с объектом.\nГде: а.mif, строка 12\n"
                       "Что-то с файлом.\nГде: а.mid"));
    QVERIFY(m_pane->hasCauses());
    QCOMPARE(files(), QStringList(QStringLiteral("а.mif: замечаний 2")));
}

void TestDiagnosis::countsObjectFindings_data()
{
    QTest::addColumn<int>("conflicts");
    QTest::addColumn<int>("duplicates");
    QTest::addColumn<int>("incomplete");
    QTest::addColumn<QString>("text");
    QTest::newRow("points") << 2 << 0 << 0
                            << QStringLiteral("В объектах: точек с одним обозначением в разных "
                                              "местах: 2. Они отмечены красным.");
    QTest::newRow("objects") << 0 << 1 << 0
                             << QStringLiteral("В объектах: повторяющихся обозначений объектов: 1. "
                                               "Они отмечены красным.");
    QTest::newRow("all") << 2 << 1 << 5
                         << QStringLiteral("В объектах: точек с одним обозначением в разных "
                                           "местах: 2; повторяющихся обозначений объектов: 1; "
                                           "неполных контуров: 5. Они отмечены красным.");
}

void TestDiagnosis::countsObjectFindings()
{
    QFETCH(int, conflicts);
    QFETCH(int, duplicates);
    QFETCH(int, incomplete);
    Report report = reportOn(QStringLiteral("а.mif"));
    report.conflicts.total = conflicts;
    report.duplicates.total = duplicates;
    report.incomplete.total = incomplete;
    m_pane->show(report);
    QTEST(told().section(QLatin1Char('\n'), 2), "text");
    // They are no matter of the file.
    QVERIFY(!m_pane->hasCauses());
}

void TestDiagnosis::offersCopy()
{
    // One cause that a copy mends is enough.
    m_pane->show(
        reportOn(QStringLiteral("/план/а.dxf"), { found(Cause::Axes), found(Cause::Bulges) }));
    QVERIFY(m_mend->isEnabled());
    QCOMPARE(files(), QStringList(QStringLiteral("а.dxf: замечаний 2")));
    m_pane->show(reportOn(QStringLiteral("/план/б.dxf"), { found(Cause::Axes) }));
    QVERIFY(!m_mend->isEnabled());
}

void TestDiagnosis::offersNoCopyOfUnreadableFile()
{
    Report report = reportOn(QStringLiteral("/план/а.dxf"), { found(Cause::Bulges) });
    report.unreadable = true;
    m_pane->show(report);
    QVERIFY(!m_mend->isEnabled());
}

void TestDiagnosis::asksForCopy_data()
{
    QTest::addColumn<QVector<Cause>>("causes");
    QTest::addColumn<bool>("visibleOnly");
    QTest::newRow("arcs") << QVector<Cause>{ Cause::Bulges } << false;
    QTest::newRow("hidden layers") << QVector<Cause>{ Cause::HiddenLayers } << true;
    QTest::newRow("both") << QVector<Cause>{ Cause::HiddenLayers, Cause::Bulges } << true;
}

void TestDiagnosis::asksForCopy()
{
    QFETCH(QVector<Cause>, causes);
    QFETCH(bool, visibleOnly);
    QVector<FoundCause> all;
    for (const Cause cause : causes)
        all.append(found(cause));
    m_pane->show(reportOn(QStringLiteral("/план/а.dxf"), all));
    const QSignalSpy asked(m_pane.get(), &DiagnosisPane::mendRequested);
    m_mend->click();
    QCOMPARE(asked.size(), 1);
    QCOMPARE(asked.first(), (QVariantList{ QStringLiteral("/план/а.dxf"), visibleOnly }));
}

void TestDiagnosis::showsNamesAsTheyAre()
{
    Report report = reportOn(QStringLiteral("/план/<b>&а.mif"));
    report.messages = { { QStringLiteral("x < y & z"), QStringLiteral("/план/<i>.mif"), 1 } };
    m_pane->show(report);
    QVERIFY(told().startsWith(QStringLiteral("Файл «<b>&а.mif»: ")));
    QVERIFY(told().contains(QStringLiteral("x < y & z")));
    QVERIFY(told().contains(QStringLiteral("Где: <i>.mif, строка 1")));
}

void TestDiagnosis::tellsChanges()
{
    m_pane->show(reportOn(QStringLiteral("/план/а.dxf"), { found(Cause::Bulges) }));
    m_pane->showChanges(QStringLiteral("/план/а.dxf"), QStringLiteral("/план/а-готов.dxf"),
        { QStringLiteral("одно & другое"), QStringLiteral("третье") });
    const QString changes = QStringLiteral("Файл «а.dxf» исправлен, копия записана в "
                                           "«а-готов.dxf».\nодно & другое\nтретье");
    QCOMPARE(told(), changes);
    QVERIFY(!m_mend->isEnabled());
    // They stay above what the copy is found to be, and there alone.
    m_pane->show(reportOn(QStringLiteral("/план/а-готов.dxf")));
    QCOMPARE(told(),
        changes
            + QStringLiteral("\nФайл «а-готов.dxf»: объектов 3, вершин 15.\n"
                             "Файл прочитан целиком, замечаний к нему нет."));
    m_pane->show(reportOn(QStringLiteral("/план/б.dxf")));
    QVERIFY(told().startsWith(QStringLiteral("Файл «б.dxf»: объектов 3")));
}

void TestDiagnosis::forgetsOlderFindingOfFile()
{
    m_pane->show(reportOn(QStringLiteral("/план/а.dxf"), { found(Cause::Bulges) }));
    m_pane->show(reportOn(QStringLiteral("/план/б.dxf")));
    m_pane->startBatch();
    m_pane->show(reportOn(QStringLiteral("/план/а.dxf")));
    QCOMPARE(files(),
        (QStringList{
            QStringLiteral("а.dxf: замечаний 0"), QStringLiteral("б.dxf: замечаний 0") }));
    QCOMPARE(m_files->currentIndex(), 0);
    QVERIFY(told().startsWith(QStringLiteral("Файл «а.dxf»")));
    QVERIFY(!m_pane->hasCauses());
    QVERIFY(!m_mend->isEnabled());
}

void TestDiagnosis::keepsLossInSight()
{
    m_pane->show(reportOn(QStringLiteral("/план/а.dxf"), { found(Cause::Bulges) }));
    m_pane->show(reportOn(QStringLiteral("/план/б.dxf")));
    QVERIFY(!m_files->isHidden());
    QCOMPARE(m_files->currentText(), QStringLiteral("а.dxf: замечаний 1"));
    QVERIFY(m_pane->hasCauses());
    // Another batch: what was found before is at hand, and no longer in sight.
    m_pane->startBatch();
    m_pane->show(reportOn(QStringLiteral("/план/в.dxf")));
    QCOMPARE(m_files->currentText(), QStringLiteral("в.dxf: замечаний 0"));
    QVERIFY(!m_pane->hasCauses());
    QTest::keyClick(m_files, Qt::Key_End);
    QVERIFY(told().startsWith(QStringLiteral("Файл «а.dxf»")));
    QVERIFY(m_mend->isEnabled());
}

void TestDiagnosis::keepsNewestFiles()
{
    for (int i = 1; i <= 25; ++i)
        m_pane->show(reportOn(QStringLiteral("/план/%1.dxf").arg(i)));
    QCOMPARE(m_files->count(), 20);
    QCOMPARE(files().first(), QStringLiteral("25.dxf: замечаний 0"));
    QCOMPARE(files().last(), QStringLiteral("6.dxf: замечаний 0"));
    QTest::keyClick(m_files, Qt::Key_End);
    QVERIFY(told().startsWith(QStringLiteral("Файл «6.dxf»")));
}

QTEST_MAIN(TestDiagnosis)
#include "tst_diagnosis.moc"
