#include "models/defmaptablemodel.h"
#include "sizecachingdelegate.h"
#include "support/random.h"
#include "support/stricttest.h"

#include <QApplication>
#include <QLineEdit>
#include <QListView>
#include <QProxyStyle>
#include <QTest>

#include <functional>
#include <memory>

namespace {

/// Long enough for sizes to come from memory.
constexpr int objectCount = 250;

/// A host's style with metrics that change while it is in use.
class HostStyle : public QProxyStyle {
public:
    int margin = 1;
    int leastWidth = 0; // of items with a text, and of the view in one of its states
    QStyle::State leastWidthIn = QStyle::State_None;
    QChar wideLetter; // items with this letter are wider

    int pixelMetric(
        PixelMetric metric, const QStyleOption* option, const QWidget* widget) const override
    {
        return metric == PM_FocusFrameHMargin ? margin
                                              : QProxyStyle::pixelMetric(metric, option, widget);
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& contents,
        const QWidget* widget) const override
    {
        QSize size = QProxyStyle::sizeFromContents(type, option, contents, widget);
        if (type == CT_ItemViewItem && (option->state & leastWidthIn) == leastWidthIn)
            size.setWidth(std::max(size.width(), leastWidth));
        const auto* item = qstyleoption_cast<const QStyleOptionViewItem*>(option);
        if (item && !wideLetter.isNull() && item->text.contains(wideLetter))
            size.rwidth() += 50;
        return size;
    }
};

class View : public QListView {
public:
    using QListView::QListView;
    using QListView::viewOptions;
};

QVector<DefPolygon> makeObjects()
{
    Random random(3);
    const QString alphabet = QStringLiteral("Щя1 iW-&\n");
    QVector<DefPolygon> objects(objectCount);
    for (DefPolygon& object : objects)
        object.def = random.text(alphabet, 30);
    // Nulls beside empty ones among the first, the measured and the remembered rows.
    for (const int row : { 1, 120, 200, 248 }) {
        objects[row].def = QString();
        objects[row - 1].def = QStringLiteral("");
    }
    return objects;
}

} // namespace

/// The object list's delegate beside Qt's own, in one and the same view.
class TestListSizes : public StrictTest {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void sizesAreThoseOfQt_data();
    void sizesAreThoseOfQt();
    void singleQuestions();
    void brokenRuns();
    void invalidIndex();
    void textsAreMeasuredOnce();

private:
    QVector<QSize> laidOut();
    QVector<QSize> laidOutByQt();

    std::unique_ptr<QWidget> m_window;
    View* m_view = nullptr;
    QLineEdit* m_other = nullptr; // something else that can have the focus
    HostStyle* m_style = nullptr;
    QVector<DefPolygon> m_objects;
    std::unique_ptr<DefMapTableModel> m_model;
};

void TestListSizes::init()
{
    m_objects = makeObjects();
    m_model = std::make_unique<DefMapTableModel>();
    m_model->setMap(&m_objects);
    m_window = std::make_unique<QWidget>();
    m_window->resize(400, 500);
    m_view = new View(m_window.get());
    m_view->resize(180, 400);
    m_other = new QLineEdit(m_window.get());
    m_other->move(200, 0);
    m_style = new HostStyle;
    m_style->setParent(m_window.get());
    m_view->setStyle(m_style);
    m_view->setItemDelegate(new SizeCachingDelegate(m_view));
    m_view->setModel(m_model.get());
    m_window->show();
    m_window->activateWindow();
    QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
    m_other->setFocus();
}

void TestListSizes::cleanup()
{
    m_window.reset();
    m_model.reset();
    qApp->setStyleSheet(QString());
}

QVector<QSize> TestListSizes::laidOut()
{
    m_view->doItemsLayout();
    QVector<QSize> sizes;
    for (int row = 0; row < m_model->rowCount(); ++row)
        sizes.append(m_view->visualRect(m_model->index(row, 0)).size());
    // The view widens what it shows: as the delegate gives them the sizes tell more.
    const QStyleOptionViewItem option = m_view->viewOptions();
    for (int row = 0; row < m_model->rowCount(); ++row)
        sizes.append(m_view->itemDelegate()->sizeHint(option, m_model->index(row, 0)));
    return sizes;
}

/// The same with Qt's own delegate.
QVector<QSize> TestListSizes::laidOutByQt()
{
    QAbstractItemDelegate* const own = m_view->itemDelegate();
    QStyledItemDelegate plain;
    m_view->setItemDelegate(&plain);
    const QVector<QSize> sizes = laidOut();
    m_view->setItemDelegate(own);
    return sizes;
}

Q_DECLARE_METATYPE(QVector<QString>)

void TestListSizes::sizesAreThoseOfQt_data()
{
    // Steps, each followed by a layout. "plain:" sets a sheet of the view, "window:" and "app:"
    // those around it.
    QTest::addColumn<QVector<QString>>("steps");
    const auto row = [](const char* name, const char* steps) {
        QTest::newRow(name) << QString::fromUtf8(steps).split(QStringLiteral(" | ")).toVector();
    };
    row("as it is", "layout | layout");
    row("renamed", "rename | rename | layout");
    row("sorted", "reverse | reverse");
    row("other objects", "shorten | lengthen");
    row("a sheet replaced",
        "view:QListView::item{padding:2px} | view:QListView::item{padding:9px}");
    row("a sheet of the window replaced",
        "window:QListView::item{padding:2px} | window:QListView::item{height:40px} | window:");
    row("a sheet of the application replaced",
        "app:QListView::item{margin:2px} | app:QListView::item{border:5px solid red} | app:");
    row("least sizes", "view:QListView::item{min-width:150px} | view:QListView::item{width:90px}");
    row("a font in a sheet", "view:QListView{font:20px} | view:QListView{font:9px}");
    row("active", "view:QListView::item:active{padding:11px} | focus | leave | focus");
    row("focus", "view:QListView::item:focus{padding:11px} | focus | leave");
    row("disabled", "view:QListView::item:disabled{padding:7px} | disable | enable");
    row("focus of the view", "view:QListView:focus::item{padding:5px} | focus | leave");
    row("a font", "font | layout");
    row("a metric", "margin | margin | layout");
    row("a least width in some states", "width | focus | leave");
    row("a wide letter", "letter | layout");
    row("word wrap", "wrap | resize | resize | unwrap");
    row("word wrap and other sheets", "wrap | view:QListView::item{padding:12px} | resize");
    row("icons", "icons | layout");
    row("from right to left", "mirror | layout");
    row("in batches", "batches | layout | rename");
}

void TestListSizes::sizesAreThoseOfQt()
{
    QFETCH(QVector<QString>, steps);
    const auto sheet = [](const QString& step) { return step.section(QLatin1Char(':'), 1); };
    const QMap<QString, std::function<void()>> actions = {
        { QStringLiteral("layout"), [] {} },
        { QStringLiteral("rename"),
            [this] {
                m_model->setData(m_model->index(200, 0), m_objects.at(200).def + QLatin1Char('W'));
            } },
        { QStringLiteral("reverse"),
            [this] {
                std::reverse(m_objects.begin(), m_objects.end());
                m_model->setMap(&m_objects);
            } },
        { QStringLiteral("shorten"),
            [this] {
                m_objects.resize(150);
                m_model->setMap(&m_objects);
            } },
        { QStringLiteral("lengthen"),
            [this] {
                m_objects = makeObjects() + m_objects;
                m_model->setMap(&m_objects);
            } },
        { QStringLiteral("focus"), [this] { m_view->setFocus(); } },
        { QStringLiteral("leave"), [this] { m_other->setFocus(); } },
        { QStringLiteral("disable"), [this] { m_view->setEnabled(false); } },
        { QStringLiteral("enable"), [this] { m_view->setEnabled(true); } },
        { QStringLiteral("font"), [this] { m_view->setFont(QFont(m_view->font().family(), 17)); } },
        { QStringLiteral("margin"), [this] { m_style->margin += 5; } },
        { QStringLiteral("width"),
            [this] {
                m_style->leastWidth = 200;
                m_style->leastWidthIn = QStyle::State_Active;
            } },
        { QStringLiteral("letter"), [this] { m_style->wideLetter = QLatin1Char('W'); } },
        { QStringLiteral("wrap"), [this] { m_view->setWordWrap(true); } },
        { QStringLiteral("unwrap"), [this] { m_view->setWordWrap(false); } },
        { QStringLiteral("resize"), [this] { m_view->resize(m_view->width() - 40, 400); } },
        { QStringLiteral("icons"), [this] { m_view->setIconSize(QSize(60, 60)); } },
        { QStringLiteral("mirror"), [this] { m_view->setLayoutDirection(Qt::RightToLeft); } },
        { QStringLiteral("batches"),
            [this] {
                m_view->setLayoutMode(QListView::Batched);
                m_view->setBatchSize(30);
            } },
    };
    QCOMPARE(laidOut(), laidOutByQt());
    for (const QString& step : steps) {
        if (step.startsWith(QLatin1String("view:")))
            m_view->setStyleSheet(sheet(step));
        else if (step.startsWith(QLatin1String("window:")))
            m_window->setStyleSheet(sheet(step));
        else if (step.startsWith(QLatin1String("app:")))
            qApp->setStyleSheet(sheet(step));
        else
            actions.value(step)();
        QCoreApplication::processEvents();
        QVERIFY2(laidOut() == laidOutByQt(), qPrintable(step));
    }
}

// What is asked about single rows is answered as things stand.
void TestListSizes::singleQuestions()
{
    laidOut();
    const QStyleOptionViewItem option = m_view->viewOptions();
    const QStyledItemDelegate plain;
    const QAbstractItemDelegate& own = *m_view->itemDelegate();
    for (const int row : { 249, 0, 200, 201, 202, 240, 239, 120 }) {
        m_style->margin += 3;
        const QModelIndex index = m_model->index(row, 0);
        QCOMPARE(own.sizeHint(option, index), plain.sizeHint(option, index));
    }
}

// A run of rows that is broken off tells nothing of what is asked behind it.
void TestListSizes::brokenRuns()
{
    laidOut();
    QStyleOptionViewItem option = m_view->viewOptions();
    option.rect = QRect(0, 0, 60, 400);
    QStyleOptionViewItem wrapped = option;
    wrapped.features.setFlag(QStyleOptionViewItem::WrapText);
    const QStyledItemDelegate plain;
    const QAbstractItemDelegate& own = *m_view->itemDelegate();
    const auto size = [&](const QAbstractItemDelegate& delegate, const auto& asked, int row) {
        return delegate.sizeHint(asked, m_model->index(row, 0));
    };
    const auto run = [&] {
        for (int row = 0; row < 150; ++row)
            QCOMPARE(size(own, option, row), size(plain, option, row));
    };
    run();
    run();
    for (int row = 150; row < 180; ++row)
        QCOMPARE(size(own, wrapped, row), size(plain, wrapped, row));
    for (int row = 0; row < objectCount; ++row)
        QCOMPARE(size(own, option, row), size(plain, option, row));
    run();
    m_style->margin += 5;
    QCOMPARE(size(own, option, 210), size(plain, option, 210));
}

void TestListSizes::invalidIndex()
{
    const QStyleOptionViewItem option = m_view->viewOptions();
    QCOMPARE(m_view->itemDelegate()->sizeHint(option, QModelIndex()),
        QStyledItemDelegate().sizeHint(option, QModelIndex()));
}

void TestListSizes::textsAreMeasuredOnce()
{
    // Qt's delegate asks for a size of the model's own before it measures.
    class CountingModel : public DefMapTableModel {
    public:
        mutable int measured = 0;
        QVariant data(const QModelIndex& index, int role) const override
        {
            if (role == Qt::SizeHintRole)
                ++measured;
            return DefMapTableModel::data(index, role);
        }
    };
    QVector<DefPolygon> objects(5000);
    for (int i = 0; i < objects.size(); ++i)
        objects[i].def = QString::number(i);
    CountingModel model;
    model.setMap(&objects);
    m_view->setModel(&model);
    m_view->doItemsLayout();
    const auto measuredBy = [&](const std::function<void()>& action) {
        model.measured = 0;
        action();
        m_view->doItemsLayout();
        return model.measured;
    };
    // The first rows of the run, and some that the view asks for by themselves.
    constexpr int few = 120;
    QVERIFY(measuredBy([] {}) < few);
    QVERIFY(measuredBy([&] { m_view->setFocus(); }) < few);
    QVERIFY(measuredBy([&] { m_view->resize(150, 300); }) < few);
    QVERIFY(measuredBy([&] { model.setData(model.index(3000, 0), QStringLiteral("a")); }) < few);
    // After sorting the texts are in other rows.
    QVERIFY(measuredBy([&] {
        std::reverse(objects.begin(), objects.end());
        model.setMap(&objects);
    }) < 2500);
    QVERIFY(measuredBy([&] { m_style->margin = 6; }) >= objects.size());
    QVERIFY(measuredBy([] {}) < few);
    m_view->setModel(m_model.get());
}

QTEST_MAIN(TestListSizes)
#include "tst_listsizes.moc"
