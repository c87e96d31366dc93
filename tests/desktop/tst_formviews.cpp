// The lists of the window: objects, catalogue, messages, and the colours of their rows.

#include "cataloguemodel.h"
#include "document.h"
#include "messagespane.h"
#include "objectsmodel.h"
#include "support/stricttest.h"
#include "theme.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QLocale>
#include <QPalette>
#include <QSignalSpy>
#include <QTest>
#include <QTextDocument>
#include <QTime>

#include <memory>

namespace {

DefPoint point(const char* def, double x, double y)
{
    return { QString::fromUtf8(def), x, y };
}

QVector<DefPoint> triangle(const char* first, double x)
{
    return { point(first, x, 0), point("2", x + 1.5, 0), point("3", x, 1), point(first, x, 0) };
}

/// A triangle with a hole that has the same names at other places, a line, and a triangle of the
/// first one's name.
FormTable plainForm()
{
    FormTable table;
    table.objects = { { QStringLiteral("А"), { triangle("1", 0), triangle("7", 0.25) } },
        { QStringLiteral("Б"), { { point("а", 5, 5), point("б", 6, 7) } } },
        { QStringLiteral("А"), { triangle("1", 0) } } };
    table.others.resize(3);
    // A column behind those of the coordinates.
    table.others[1].points = { { {}, {}, {}, QStringLiteral("межевой\tзнак") }, {} };
    return table;
}

QPalette paletteOf(const QColor& base, const QColor& text)
{
    QPalette palette;
    palette.setColor(QPalette::Base, base);
    palette.setColor(QPalette::Text, text);
    return palette;
}

const QPalette light = paletteOf(Qt::white, Qt::black);
const QPalette dark = paletteOf(QColor(30, 30, 30), QColor(240, 240, 240));

constexpr auto strictly = QAbstractItemModelTester::FailureReportingMode::QtTest;

} // namespace

class TestFormViews : public StrictTest {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void listsObjects();
    void marksObjectsOfOneName();
    void renamesObjects();
    void showsCatalogue();
    void partsContours();
    void marksPointsOfOneName();
    void renamesPoints();
    void heedsItsOwnObject();
    void followsNewForm();
    void namesColumns();
    void givesTextOfRows();
    void mixesColours();
    void drawsPlanForTheme();
    void keepsNewestMessages();
    void showsMessagesAsTheyAre();

private:
    static QStringList rowOf(const QAbstractItemModel& model, int row);
    static QVariant dataAt(const QAbstractItemModel& model, int row, int column, int role)
    {
        return model.index(row, column).data(role);
    }

    std::unique_ptr<Document> m_document;
    std::unique_ptr<ObjectsModel> m_objects;
    std::unique_ptr<CatalogueModel> m_catalogue;
    std::unique_ptr<QAbstractItemModelTester> m_testers[2];
    QPalette m_usual;
};

void TestFormViews::init()
{
    QLocale::setDefault(QLocale(QLocale::Russian, QLocale::Russia));
    m_usual = QApplication::palette();
    QApplication::setPalette(light);
    m_document = std::make_unique<Document>();
    m_objects = std::make_unique<ObjectsModel>(*m_document);
    m_catalogue = std::make_unique<CatalogueModel>(*m_document);
    m_testers[0] = std::make_unique<QAbstractItemModelTester>(m_objects.get(), strictly);
    m_testers[1] = std::make_unique<QAbstractItemModelTester>(m_catalogue.get(), strictly);
    m_document->reset(plainForm(), {});
}

void TestFormViews::cleanup()
{
    for (auto& tester : m_testers)
        tester.reset();
    m_catalogue.reset();
    m_objects.reset();
    m_document.reset();
    QApplication::setPalette(m_usual);
}

QStringList TestFormViews::rowOf(const QAbstractItemModel& model, int row)
{
    QStringList cells;
    for (int column = 0; column < model.columnCount(); ++column)
        cells.append(model.index(row, column).data().toString());
    return cells;
}

void TestFormViews::listsObjects()
{
    QCOMPARE(m_objects->rowCount(), 3);
    QCOMPARE(rowOf(*m_objects, 0), (QStringList{ QStringLiteral("А"), QStringLiteral("8") }));
    QCOMPARE(rowOf(*m_objects, 1), (QStringList{ QStringLiteral("Б"), QStringLiteral("2") }));
    QCOMPARE(m_objects->headerData(0, Qt::Horizontal, Qt::DisplayRole).toString(),
        QStringLiteral("Обозначение"));
    QCOMPARE(m_objects->headerData(1, Qt::Horizontal, Qt::DisplayRole).toString(),
        QStringLiteral("Точек"));
    QCOMPARE(m_objects->headerData(2, Qt::Vertical, Qt::DisplayRole).toInt(), 3);
    QCOMPARE(dataAt(*m_objects, 0, ObjectsModel::Points, Qt::TextAlignmentRole).toInt(),
        int(Qt::AlignRight | Qt::AlignVCenter));
    QVERIFY(!m_objects->data({}, Qt::DisplayRole).isValid());
}

void TestFormViews::marksObjectsOfOneName()
{
    for (const int row : { 0, 2 }) {
        QCOMPARE(
            dataAt(*m_objects, row, 0, Qt::BackgroundRole).value<QColor>(), QColor(255, 220, 220));
        for (const int role : { Qt::ToolTipRole, Qt::AccessibleDescriptionRole }) {
            QCOMPARE(dataAt(*m_objects, row, 0, role).toString(),
                QStringLiteral("Обозначение повторяется"));
        }
    }
    QVERIFY(!dataAt(*m_objects, 1, 0, Qt::BackgroundRole).isValid());
    QVERIFY(!dataAt(*m_objects, 1, 0, Qt::ToolTipRole).isValid());
}

void TestFormViews::renamesObjects()
{
    QVERIFY(m_objects->flags(m_objects->index(0, ObjectsModel::Designation)) & Qt::ItemIsEditable);
    QVERIFY(!(m_objects->flags(m_objects->index(0, ObjectsModel::Points)) & Qt::ItemIsEditable));
    QVERIFY(!m_objects->setData(m_objects->index(0, 1), QStringLiteral("9"), Qt::EditRole));
    QVERIFY(m_objects->setData(m_objects->index(2, 0), QStringLiteral("В"), Qt::EditRole));
    QCOMPARE(rowOf(*m_objects, 2).first(), QStringLiteral("В"));
    QVERIFY(!dataAt(*m_objects, 0, 0, Qt::BackgroundRole).isValid());
    QCOMPARE(m_document->undoStack().undoText(), QStringLiteral("обозначение объекта «В»"));
}

void TestFormViews::showsCatalogue()
{
    QCOMPARE(m_catalogue->rowCount(), 0);
    m_catalogue->setObject(1);
    QCOMPARE(m_catalogue->rowCount(), 2);
    // The first coordinate of the form stands in the third column.
    QCOMPARE(rowOf(*m_catalogue, 0),
        (QStringList{ QStringLiteral("а"), QStringLiteral("5,00"), QStringLiteral("5,00"),
            QStringLiteral("межевой\tзнак") }));
    QCOMPARE(rowOf(*m_catalogue, 1),
        (QStringList{
            QStringLiteral("б"), QStringLiteral("7,00"), QStringLiteral("6,00"), QString() }));
    QVERIFY(!dataAt(*m_catalogue, 0, 0, Qt::TextAlignmentRole).isValid());
    QCOMPARE(dataAt(*m_catalogue, 0, 1, Qt::TextAlignmentRole).toInt(),
        int(Qt::AlignRight | Qt::AlignVCenter));
    QVERIFY(!m_catalogue->data({}, Qt::DisplayRole).isValid());
}

void TestFormViews::partsContours()
{
    m_catalogue->setObject(0);
    QCOMPARE(m_catalogue->rowCount(), 9);
    QCOMPARE(rowOf(*m_catalogue, 4), QStringList({ {}, {}, {}, {} }));
    QCOMPARE(dataAt(*m_catalogue, 4, 0, Qt::BackgroundRole).value<QColor>(), QColor(240, 240, 240));
    QVERIFY(!dataAt(*m_catalogue, 4, 0, Qt::ToolTipRole).isValid());
    QCOMPARE(m_catalogue->flags(m_catalogue->index(4, 0)), Qt::NoItemFlags);
    QVERIFY(!m_catalogue->setData(m_catalogue->index(4, 0), QStringLiteral("9"), Qt::EditRole));
    QCOMPARE(m_catalogue->placeOf(4).contour, -1);
    QCOMPARE(m_catalogue->placeOf(5).contour, 1);
    QCOMPARE(m_catalogue->placeOf(5).vertex, 0);
    QCOMPARE(m_catalogue->rowOf({ 1, 3 }), 8);
    QCOMPARE(m_catalogue->placeOf(9).contour, -1);
}

void TestFormViews::marksPointsOfOneName()
{
    m_catalogue->setObject(0);
    const QString why =
        QStringLiteral("Точка с этим обозначением стоит в объекте и в другом месте");
    // "2" and "3" of the hole stand beside those of the triangle.
    const QVector<int> marked{ 1, 2, 6, 7 };
    for (int row = 0; row < 9; ++row) {
        const bool isMarked = marked.contains(row);
        QCOMPARE(
            dataAt(*m_catalogue, row, 1, Qt::ToolTipRole).toString(), isMarked ? why : QString());
        QCOMPARE(dataAt(*m_catalogue, row, 1, Qt::AccessibleDescriptionRole).toString(),
            isMarked ? why : QString());
        if (row != 4) {
            QCOMPARE(dataAt(*m_catalogue, row, 1, Qt::BackgroundRole).value<QColor>(),
                isMarked ? QColor(255, 220, 220) : QColor());
        }
    }
}

void TestFormViews::renamesPoints()
{
    m_catalogue->setObject(0);
    const QModelIndex index = m_catalogue->index(6, 0);
    // Its own name is no change, and no step to take back.
    QVERIFY(!m_catalogue->setData(index, QStringLiteral("2"), Qt::EditRole));
    QVERIFY(!m_catalogue->setData(index, QStringLiteral("8"), Qt::DisplayRole));
    QCOMPARE(m_document->undoStack().count(), 0);
    QVERIFY(m_catalogue->setData(index, QStringLiteral("8"), Qt::EditRole));
    QCOMPARE(index.data().toString(), QStringLiteral("8"));
    QVERIFY(!dataAt(*m_catalogue, 1, 0, Qt::BackgroundRole).isValid());
    QVERIFY(dataAt(*m_catalogue, 2, 0, Qt::BackgroundRole).isValid());
    QCOMPARE(m_document->undoStack().undoText(), QStringLiteral("обозначение точки «8»"));
}

void TestFormViews::heedsItsOwnObject()
{
    m_catalogue->setObject(1);
    const QSignalSpy changed(m_catalogue.get(), &QAbstractItemModel::dataChanged);
    m_document->renamePoint(0, 0, 1, QStringLiteral("новая"));
    QVERIFY(changed.isEmpty());
    m_document->renamePoint(1, 0, 1, QStringLiteral("новая"));
    QVERIFY(!changed.isEmpty());
    QCOMPARE(rowOf(*m_catalogue, 1).first(), QStringLiteral("новая"));
    // Back, whatever is shown.
    m_document->undoStack().undo();
    QCOMPARE(rowOf(*m_catalogue, 1).first(), QStringLiteral("б"));
}

void TestFormViews::followsNewForm()
{
    m_catalogue->setObject(2);
    FormTable table;
    table.objects = { { QStringLiteral("один"), { { point("т", 1, 2) } } } };
    table.others.resize(1);
    m_document->replaceTable(table, QString());
    QCOMPARE(m_objects->rowCount(), 1);
    QCOMPARE(m_catalogue->object(), -1);
    QCOMPARE(m_catalogue->rowCount(), 0);
    QCOMPARE(m_catalogue->columnCount(), 3);
    m_document->undoStack().undo();
    QCOMPARE(m_objects->rowCount(), 3);
    QCOMPARE(m_catalogue->columnCount(), 4);
}

void TestFormViews::namesColumns()
{
    const auto title = [this](int column) {
        return m_catalogue->headerData(column, Qt::Horizontal, Qt::DisplayRole).toString();
    };
    QCOMPARE(title(0), QStringLiteral("1"));
    m_catalogue->setTitles({ QStringLiteral("Точка"), QString(), QStringLiteral("Y") });
    QCOMPARE(title(0), QStringLiteral("Точка"));
    QCOMPARE(title(1), QStringLiteral("2"));
    QCOMPARE(title(2), QStringLiteral("Y"));
    QCOMPARE(title(3), QStringLiteral("4"));
    QCOMPARE(m_catalogue->headerData(1, Qt::Vertical, Qt::DisplayRole).toInt(), 2);
    QVERIFY(!m_catalogue->headerData(0, Qt::Horizontal, Qt::ToolTipRole).isValid());
}

void TestFormViews::givesTextOfRows()
{
    m_catalogue->setTitles({ QStringLiteral("Точка"), QStringLiteral("X") });
    const std::atomic_bool goesOn{ false };
    QCOMPARE(m_catalogue->text().rowCount(), 0);
    m_catalogue->setObject(1);
    const CatalogueText line = m_catalogue->text();
    QCOMPARE(line.rowCount(), 2);
    // A tab within a text would be one cell more.
    QCOMPARE(line.plain({ 0, 1 }, goesOn),
        QStringLiteral("Точка\tX\t3\t4\nа\t5,00\t5,00\tмежевой знак\nб\t7,00\t6,00\t\n"));
    m_catalogue->setObject(0);
    QCOMPARE(m_catalogue->text().rowCount(), 9);
    QCOMPARE(m_catalogue->text().plain({ 3, 4, 5 }, goesOn),
        QStringLiteral("Точка\tX\t3\t4\n1\t0,00\t0,00\t\n\t\t\t\n7\t0,00\t0,25\t\n"));
    QCOMPARE(m_catalogue->text().html({ 4 }, goesOn),
        QStringLiteral("<table border=\"1\"><tr><th>Точка</th><th>X</th><th>3</th><th>4</th></tr>\n"
                       "<tr><td></td><td></td><td></td><td></td></tr>\n</table>"));
    // What was asked for is no longer wanted.
    const std::atomic_bool cancelled{ true };
    QCOMPARE(line.plain({ 0, 1 }, cancelled), QStringLiteral("Точка\tX\t3\t4\n"));
}

void TestFormViews::mixesColours()
{
    QVERIFY(!isDark(light));
    QVERIFY(isDark(dark));
    // Six parts of a hundred of black on white; a tenth of 210 steps on 30.
    QCOMPARE(separatorBackground(light), QColor(240, 240, 240));
    QCOMPARE(separatorBackground(dark), QColor(51, 51, 51));
    QCOMPARE(conflictBackground(light), QColor(255, 220, 220));
    // Four tenths of the way to red.
    QCOMPARE(conflictBackground(dark), QColor(120, 18, 18));
}

void TestFormViews::drawsPlanForTheme()
{
    QCOMPARE(planColors(light).paper, QColor(Qt::white));
    const PlanColors colors = planColors(dark);
    QCOMPARE(colors.paper, QColor(30, 30, 30));
    QCOMPARE(colors.text, QColor(240, 240, 240));
    for (const QColor& color : { colors.line, colors.red, colors.grey })
        QVERIFY(color.lightness() > 140);
}

void TestFormViews::keepsNewestMessages()
{
    MessagesPane messages;
    // Each that is added measures all.
    for (int i = 1; i <= 998; ++i)
        new QTreeWidgetItem(&messages, { {}, {}, QStringLiteral("сообщение %1").arg(i) });
    for (int i = 999; i <= 1003; ++i)
        messages.add(QStringLiteral("/план/а.mif"), QStringLiteral("сообщение %1").arg(i));
    QCOMPARE(messages.topLevelItemCount(), 1000);
    QCOMPARE(messages.topLevelItem(0)->text(2), QStringLiteral("сообщение 4"));
    const QTreeWidgetItem& last = *messages.topLevelItem(999);
    QVERIFY(QTime::fromString(last.text(0), QStringLiteral("HH:mm:ss")).isValid());
    QCOMPARE(last.text(1), QStringLiteral("а.mif"));
    QCOMPARE(last.text(2), QStringLiteral("сообщение 1003"));
    QCOMPARE(last.toolTip(1), QStringLiteral("/план/а.mif"));
    QCOMPARE(last.toolTip(2), QStringLiteral("сообщение 1003"));
}

void TestFormViews::showsMessagesAsTheyAre()
{
    MessagesPane messages;
    const QString name = QStringLiteral("<b>а & б.mif");
    messages.add(name, QStringLiteral("сообщение о %1").arg(name));
    const QTreeWidgetItem& item = *messages.topLevelItem(0);
    QCOMPARE(item.text(1), name);
    // What is read as HTML must say the same.
    for (int column : { 1, 2 }) {
        QTextDocument shown;
        shown.setHtml(item.toolTip(column));
        QCOMPARE(shown.toPlainText(), item.text(column));
    }
}

QTEST_MAIN(TestFormViews)
#include "tst_formviews.moc"
