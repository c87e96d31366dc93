#include "dialog.h"
#include "import/formats.h"
#include "literal/literaldialog.h"
#include "samplefiles.h"
#include "support/dialogdriver.h"
#include "support/random.h"
#include "support/statuslog.h"
#include "support/stricttest.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCryptographicHash>
#include <QDir>
#include <QHeaderView>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QPointer>
#include <QProxyStyle>
#include <QScrollBar>
#include <QSettings>
#include <QSpinBox>
#include <QSplitter>
#include <QTableView>
#include <QTest>
#include <QWheelEvent>

#include <functional>
#include <memory>

namespace {

/// Without what goes by the clock, which no two runs have in common.
class StillStyle : public QProxyStyle {
public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
        QStyleHintReturn* returned) const override
    {
        if (hint == SH_Widget_Animate || hint == SH_Widget_Animation_Duration)
            return 0;
        return QProxyStyle::styleHint(hint, option, widget, returned);
    }
};

void settle()
{
    for (int round = 0; round < 3; ++round) {
        QCoreApplication::sendPostedEvents();
        QCoreApplication::processEvents();
    }
}

/// Presses at one place, moves and releases at another, as the user drags.
void drag(QWidget& widget, const QPoint& from, const QPoint& to)
{
    const auto send = [&widget](QEvent::Type type, const QPoint& place, Qt::MouseButton button,
                          Qt::MouseButtons buttons) {
        QMouseEvent event(type, place, widget.mapToGlobal(place), button, buttons, Qt::NoModifier);
        QApplication::sendEvent(&widget, &event);
    };
    send(QEvent::MouseMove, from, Qt::NoButton, Qt::NoButton);
    send(QEvent::MouseButtonPress, from, Qt::LeftButton, Qt::LeftButton);
    send(QEvent::MouseMove, (from + to) / 2, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseMove, to, Qt::NoButton, Qt::LeftButton);
    send(QEvent::MouseButtonRelease, to, Qt::LeftButton, Qt::NoButton);
}

/// Letters of any alphabet; Qt Test's own keyClicks knows only Latin ones.
void typeLetters(QWidget& target, const QString& text)
{
    for (const QChar letter : text) {
        QKeyEvent press(QEvent::KeyPress, Qt::Key_unknown, Qt::NoModifier, letter);
        QApplication::sendEvent(&target, &press);
    }
}

/// Somebody at the mouse and the keyboard of a dialog. What he does follows from his seed and from
/// what he sees.
class RandomUser {
public:
    RandomUser(QDialog& dialog, const QStringList& files, unsigned seed)
        : m_dialog(dialog)
        , m_files(files)
        , m_random(seed)
        , m_list(widget<QListView>(dialog, "listView"))
        , m_table(widget<QTableView>(dialog, "tableView"))
    {
    }

    /// Does something and says what.
    QString act()
    {
        struct Act {
            const char* name;
            int weight;
            void (RandomUser::*run)();
        };
        static const QVector<Act> acts = {
            { "import", 3, &RandomUser::import },
            { "start again", 2, &RandomUser::startAgain },
            { "sort", 2, &RandomUser::sort },
            { "click the list", 5, &RandomUser::clickList },
            { "click the table", 4, &RandomUser::clickTable },
            { "edit an object", 5, &RandomUser::editObject },
            { "edit a point", 5, &RandomUser::editPoint },
            { "end the edit", 3, &RandomUser::endEdit },
            { "keys in the list", 4, &RandomUser::keysInList },
            { "keys in the table", 4, &RandomUser::keysInTable },
            { "drag a column", 3, &RandomUser::dragColumn },
            { "drag a row", 3, &RandomUser::dragRow },
            { "fit a section", 1, &RandomUser::fitSection },
            { "drag the splitter", 2, &RandomUser::dragSplitter },
            { "resize", 2, &RandomUser::resize },
            { "wheel", 2, &RandomUser::wheel },
            { "plus", 2, &RandomUser::plus },
            { "minus", 2, &RandomUser::minus },
            { "fill a field", 3, &RandomUser::fillField },
            { "tab", 4, &RandomUser::tab },
            { "toggle", 2, &RandomUser::toggle },
            { "change a style sheet", 1, &RandomUser::changeSheet },
            { "change the font", 1, &RandomUser::changeFont },
        };
        int total = 0;
        for (const Act& act : acts)
            total += act.weight;
        int chosen = m_random.below(total);
        for (const Act& act : acts) {
            chosen -= act.weight;
            if (chosen >= 0)
                continue;
            (this->*act.run)();
            settle();
            return QString::fromLatin1(act.name);
        }
        return QString();
    }

private:
    void import()
    {
        type(m_dialog, "objectFileNameEdit", m_random.pick(m_files));
        click(m_dialog, "startButton");
    }
    void startAgain() { click(m_dialog, "startButton"); }
    void sort() { click(m_dialog, "sortButton"); }

    QPoint placeIn(const QWidget& widget)
    {
        return { m_random.below(std::max(widget.width(), 1)),
            m_random.below(std::max(widget.height(), 1)) };
    }

    void clickView(QAbstractItemView& view)
    {
        const QVector<Qt::KeyboardModifiers> modifiers = { Qt::NoModifier, Qt::NoModifier,
            Qt::ControlModifier, Qt::ShiftModifier };
        QTest::mouseClick(
            view.viewport(), Qt::LeftButton, m_random.pick(modifiers), placeIn(*view.viewport()));
    }
    void clickList() { clickView(m_list); }
    void clickTable() { clickView(m_table); }

    void edit(QAbstractItemView& view, int column)
    {
        if (!view.model() || view.model()->rowCount() == 0)
            return;
        const QModelIndex top = view.indexAt(QPoint(3, 3));
        const int row =
            std::min(std::max(top.row(), 0) + m_random.below(5), view.model()->rowCount() - 1);
        const QPoint place = view.visualRect(view.model()->index(row, column)).center();
        if (m_random.oneIn(3)) {
            QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, place);
            QTest::keyClick(&view, Qt::Key_F2);
        } else {
            QTest::mouseClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, place);
            QTest::mouseDClick(view.viewport(), Qt::LeftButton, Qt::NoModifier, place);
        }
        QWidget* editor = view.viewport()->findChild<QLineEdit*>();
        if (!editor)
            return;
        typeLetters(*editor, m_random.text(QStringLiteral("аЩ1 W"), 12));
        if (!m_random.oneIn(3))
            endEdit();
    }
    void editObject() { edit(m_list, 0); }
    void editPoint() { edit(m_table, 0); }

    void endEdit()
    {
        for (QAbstractItemView* view : { static_cast<QAbstractItemView*>(&m_list),
                 static_cast<QAbstractItemView*>(&m_table) }) {
            QWidget* editor = view->viewport()->findChild<QLineEdit*>();
            const QVector<Qt::Key> keys = { Qt::Key_Return, Qt::Key_Return, Qt::Key_Escape,
                Qt::Key_Tab };
            if (editor)
                QTest::keyClick(editor, m_random.pick(keys));
        }
    }

    void pressIn(QWidget& widget)
    {
        const QVector<Qt::Key> keys = { Qt::Key_Down, Qt::Key_Down, Qt::Key_Up, Qt::Key_PageDown,
            Qt::Key_PageUp, Qt::Key_End, Qt::Key_Home, Qt::Key_Right, Qt::Key_Left };
        widget.setFocus();
        for (int i = 1 + m_random.below(3); i > 0; --i)
            QTest::keyClick(&widget, m_random.pick(keys));
    }
    void keysInList() { pressIn(m_list); }
    void keysInTable() { pressIn(m_table); }

    /// The middle of the handle behind a section that can be seen; null when there is none.
    QPoint handleIn(const QHeaderView& header)
    {
        if (header.count() == 0)
            return QPoint();
        const int first = std::max(header.logicalIndexAt(0), 0);
        const int section = std::min(first + m_random.below(4), header.count() - 1);
        const int end = header.sectionViewportPosition(section) + header.sectionSize(section) - 1;
        const bool isHorizontal = header.orientation() == Qt::Horizontal;
        const int limit = isHorizontal ? header.viewport()->width() : header.viewport()->height();
        if (end < 0 || end >= limit)
            return QPoint();
        return isHorizontal ? QPoint(end, 5) : QPoint(5, end);
    }

    void dragHandle(QHeaderView& header)
    {
        const QPoint handle = handleIn(header);
        const int distance = m_random.below(80) - 30;
        if (!handle.isNull())
            drag(*header.viewport(), handle, handle + QPoint(distance, distance));
    }
    void dragColumn() { dragHandle(*m_table.horizontalHeader()); }
    void dragRow() { dragHandle(*m_table.verticalHeader()); }

    void fitSection()
    {
        QHeaderView* header =
            m_random.oneIn(2) ? m_table.horizontalHeader() : m_table.verticalHeader();
        const QPoint handle = handleIn(*header);
        if (handle.isNull())
            return;
        QMouseEvent event(
            QEvent::MouseButtonDblClick, handle, Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(header->viewport(), &event);
        QTest::mouseRelease(header->viewport(), Qt::LeftButton, Qt::NoModifier, handle);
    }

    void dragSplitter()
    {
        QWidget* handle = widget<QSplitter>(m_dialog, "splitter").handle(1);
        const QPoint from = handle->rect().center();
        drag(*handle, from, from + QPoint(m_random.below(120) - 60, 0));
    }

    void resize()
    {
        const int width = m_dialog.minimumSizeHint().width() + m_random.below(300);
        m_dialog.resize(width, 350 + m_random.below(300));
    }

    void wheel()
    {
        const QVector<QAbstractItemView*> views = { &m_list, &m_table };
        QWidget* viewport = m_random.pick(views)->viewport();
        const QPoint place = viewport->rect().center();
        QWheelEvent event(place, viewport->mapToGlobal(place), QPoint(),
            QPoint(0, 120 * (m_random.below(7) - 3)), Qt::NoButton, Qt::NoModifier,
            Qt::NoScrollPhase, false);
        QApplication::sendEvent(viewport, &event);
    }

    void plus() { click(m_dialog, "plusToolButton"); }
    void minus() { click(m_dialog, "minusToolButton"); }

    void fillField()
    {
        const QByteArray row = QByteArray::number(m_random.below(5));
        const int column = 1 + m_random.below(8);
        const QString text = m_random.text(QStringLiteral("знак"), 6);
        if (!m_dialog.findChild<QSpinBox*>(QLatin1String("fieldSpin_" + row)))
            return;
        type(m_dialog, "fieldSpin_" + row, QString::number(column));
        type(m_dialog, "fieldEdit_" + row, text);
    }

    void tab()
    {
        for (int i = 1 + m_random.below(4); i > 0; --i) {
            QWidget* focus = m_dialog.focusWidget() ? m_dialog.focusWidget() : &m_dialog;
            QTest::keyClick(focus, m_random.oneIn(3) ? Qt::Key_Backtab : Qt::Key_Tab);
        }
    }

    void toggle()
    {
        const QVector<const char*> boxes = { "searchPointDefsCheck", "searchObjectDefsCheck",
            "usePointFileCheck", "updateCheck" };
        click(m_dialog, m_random.pick(boxes));
    }

    void changeSheet()
    {
        const QStringList sheets = { QString(),
            QStringLiteral("QListView::item{padding:4px} QLineEdit{color:blue}"),
            QStringLiteral("QListView::item:active{padding:9px}"),
            QStringLiteral("QTableView{font-size:15px} QListView::item:focus{min-height:30px}") };
        m_dialog.setStyleSheet(m_random.pick(sheets));
    }

    void changeFont()
    {
        QFont font = m_dialog.font();
        font.setPointSize(8 + m_random.below(6));
        m_dialog.setFont(font);
    }

    QDialog& m_dialog;
    QStringList m_files;
    Random m_random;
    QListView& m_list;
    QTableView& m_table;
};

/// What there is to see of a dialog, in words.
class Sight {
public:
    explicit Sight(const QDialog& dialog)
    {
        const QWidget* focus = dialog.focusWidget();
        add(QStringLiteral("focus %1").arg(focus ? focus->objectName() : QString()));
        for (const QWidget* each : dialog.findChildren<QWidget*>())
            addWidget(*each, dialog);
        addView(widget<QListView>(dialog, "listView"));
        const auto& table = widget<QTableView>(dialog, "tableView");
        addView(table);
        addHeader(*table.horizontalHeader());
        addHeader(*table.verticalHeader());
    }

    QStringList lines;

private:
    void add(const QString& line) { lines.append(line); }

    static QString text(const QRect& rect)
    {
        return QStringLiteral("%1,%2 %3x%4")
            .arg(rect.x())
            .arg(rect.y())
            .arg(rect.width())
            .arg(rect.height());
    }

    void addWidget(const QWidget& each, const QDialog& dialog)
    {
        if (!each.isVisibleTo(&dialog))
            return;
        QString line = QStringLiteral("%1 %2 %3 enabled %4")
                           .arg(QLatin1String(each.metaObject()->className()), each.objectName(),
                               text(each.geometry()))
                           .arg(each.isEnabled());
        for (const char* property : { "text", "value", "checked", "currentText", "maximum" }) {
            const QVariant value = each.property(property);
            if (value.isValid())
                line += QStringLiteral(" %1 '%2'").arg(QLatin1String(property), value.toString());
        }
        add(line);
    }

    void addView(const QAbstractItemView& view)
    {
        const QAbstractItemModel* model = view.model();
        if (!model) {
            add(QStringLiteral("no model"));
            return;
        }
        const QModelIndex current = view.currentIndex();
        add(QStringLiteral("%1 rows, %2 columns, current %3.%4, %5 selected")
                .arg(model->rowCount())
                .arg(model->columnCount())
                .arg(current.row())
                .arg(current.column())
                .arg(view.selectionModel()->selectedIndexes().size()));
        for (int row = 0; row < model->rowCount(); ++row) {
            for (int column = 0; column < model->columnCount(); ++column)
                addItem(view, model->index(row, column));
        }
    }

    void addItem(const QAbstractItemView& view, const QModelIndex& index)
    {
        const QRect rect = view.visualRect(index);
        QString line = QStringLiteral("item %1.%2 ").arg(index.row()).arg(index.column());
        line += text(rect) + QLatin1Char(' ') + index.data().toString();
        if (view.viewport()->rect().intersects(rect))
            line +=
                QLatin1Char(' ') + index.data(Qt::BackgroundRole).value<QBrush>().color().name();
        add(line);
    }

    void addHeader(const QHeaderView& header)
    {
        QString line = QStringLiteral("header");
        for (int i = 0; i < header.count(); ++i)
            line += QStringLiteral(" %1").arg(header.sectionSize(i));
        add(line);
    }
};

struct Moment {
    QString act;
    QStringList sight;
    QByteArray pixels;
};

QByteArray pixelsOf(QDialog& dialog)
{
    const QImage image = dialog.grab().toImage().convertToFormat(QImage::Format_RGB32);
    QCryptographicHash hash(QCryptographicHash::Md5);
    hash.addData(reinterpret_cast<const char*>(image.constBits()), int(image.sizeInBytes()));
    return hash.result();
}

QMap<QString, QVariant> storedSettings()
{
    const QSettings settings;
    QMap<QString, QVariant> result;
    for (const QString& key : settings.allKeys())
        result.insert(key, settings.value(key));
    return result;
}

} // namespace

/// A user who does anything, at the dialog and at one written step by step with plain parts.
class TestRandomUser : public StrictTest {
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void seesNoDifference_data();
    void seesNoDifference();

private:
    struct Life {
        QVector<Moment> moments;
        QStringList messages;
        QMap<QString, QVariant> settings;
    };

    void writeFiles(const TempFiles& folder);
    template <typename MakeDialog>
    void live(unsigned seed, const MakeDialog& makeDialog, Life& life);

    QStringList m_files;
    const QString m_folder = QDir::currentPath();
};

void TestRandomUser::init()
{
    QApplication::setStyle(new StillStyle);
    QApplication::setCursorFlashTime(0);
    QApplication::setKeyboardInputInterval(-1);
}

void TestRandomUser::cleanup()
{
    QDir::setCurrent(m_folder);
    QVERIFY(!QGuiApplication::overrideCursor());
}

/// Few objects with contours and conflicts, many objects, none, and some before an error.
void TestRandomUser::writeFiles(const TempFiles& folder)
{
    writeMif(folder.path(QStringLiteral("few")),
        "Point 0 0\n"
        "Region 2\n  4\n0 0\n10 0\n10 10.25\n0 0\n  3\n2 1\n3 1\n2 1\n"
        "Pline 2\n100 100\n110 100\n"
        "Line 5 5 6 6\n",
        "т1\nЗУ2\nЗУ1\nзу2\n");
    QByteArray objects;
    QByteArray rows;
    for (int i = 0; i < 180; ++i) {
        objects += "Pline " + QByteArray::number(2 + i % 9) + '\n';
        for (int vertex = 0; vertex < 2 + i % 9; ++vertex)
            objects += QByteArray::number(7 * i) + ' ' + QByteArray::number(11 * vertex) + '\n';
        rows += QByteArray(i % 23, 'W') + QByteArray::number(i * 37 % 180) + '\n';
    }
    writeMif(folder.path(QStringLiteral("many")), objects, rows);
    writeMif(folder.path(QStringLiteral("broken")), "Line 0 0 1 1\nLine 5 5 6 6\nCollection 3\n",
        "б\nа\n");
    m_files.clear();
    for (const char* name : { "few", "few", "many", "many", "broken", "missing" })
        m_files.append(QLatin1String(name) + QStringLiteral(".mif"));
}

template <typename MakeDialog>
void TestRandomUser::live(unsigned seed, const MakeDialog& makeDialog, Life& life)
{
    constexpr int actCount = 120;
    OwnStore store;
    const StatusLog messages;
    writeFiles(store);
    // The name of the folder is another each time; none of it may be seen.
    QVERIFY(QDir::setCurrent(store.path(QString())));
    {
        const auto dialog = makeDialog();
        dialog->resize(900, 500);
        dialog->show();
        dialog->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(dialog.get()));
        RandomUser user(*dialog, m_files, seed);
        for (int i = 0; i < actCount; ++i) {
            const QString act = user.act();
            life.moments.append(Moment{ act, Sight(*dialog).lines, pixelsOf(*dialog) });
        }
    }
    life.messages = messages.messages();
    life.settings = storedSettings();
}

void TestRandomUser::seesNoDifference_data()
{
    QTest::addColumn<unsigned>("seed");
    for (unsigned seed = 1; seed <= 3; ++seed)
        QTest::addRow("seed %u", seed) << seed;
}

void TestRandomUser::seesNoDifference()
{
    QFETCH(unsigned, seed);
    const Format& format = formats().front();
    const GeometryInfo info{ 0, 2, 1, 0 };
    Life product;
    live(
        seed,
        [&] {
            auto dialog = std::make_unique<Dialog>();
            dialog->setUp(format, QString(), QString(), QString(), info);
            return dialog;
        },
        product);
    Life literal;
    live(
        seed,
        [&] {
            auto dialog = std::make_unique<literal::Dialog>();
            dialog->setUp(format, info);
            return dialog;
        },
        literal);

    QCOMPARE(product.moments.size(), literal.moments.size());
    for (int i = 0; i < product.moments.size(); ++i) {
        const Moment& moment = product.moments.at(i);
        const Moment& expected = literal.moments.at(i);
        const QByteArray act = QStringLiteral("act %1: %2").arg(i).arg(moment.act).toUtf8();
        QVERIFY2(moment.act == expected.act, act);
        for (int line = 0; line < std::min(moment.sight.size(), expected.sight.size()); ++line) {
            const QString differs =
                QStringLiteral("%1\n%2\nexpected\n%3")
                    .arg(QString::fromUtf8(act), moment.sight.at(line), expected.sight.at(line));
            QVERIFY2(moment.sight.at(line) == expected.sight.at(line), qPrintable(differs));
        }
        QVERIFY2(moment.sight.size() == expected.sight.size(), act);
        QVERIFY2(moment.pixels == expected.pixels, act);
    }
    QCOMPARE(product.messages, literal.messages);
    QCOMPARE(product.settings, literal.settings);
}

QTEST_MAIN(TestRandomUser)
#include "tst_randomuser.moc"
