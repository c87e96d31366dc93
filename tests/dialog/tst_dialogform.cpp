#include "dialog.h"
#include "support/dialogdriver.h"
#include "support/stricttest.h"
#include "ui_dialog.h"

#include <QApplication>
#include <QMetaMethod>
#include <QTest>
#include <QTranslator>

#include <functional>
#include <memory>

namespace {

struct LayoutSpec {
    const char* name;
    const char* className;
    QStringList items;
};

struct WidgetSpec {
    const char* name;
    const char* className;
    const char* text; // null where the widget has none of its own
    const char* toolTip;
    QStringList ownProperties; // all others keep the defaults of the class
};

QStringList names(const char* text)
{
    return QString::fromLatin1(text).split(QLatin1Char(' '), Qt::SkipEmptyParts);
}

const QVector<LayoutSpec>& layoutSpecs()
{
    static const QVector<LayoutSpec> specs = {
        { "verticalLayout", "QVBoxLayout",
            names("horizontalLayout horizontalLayout_2 horizontalLayout_5 horizontalLayout_3 "
                  "horizontalLayout_6 splitter horizontalLayout_4") },
        { "horizontalLayout", "QHBoxLayout",
            names("objectFileLabel objectFileNameEdit objectFileButton") },
        { "horizontalLayout_2", "QHBoxLayout",
            names("pointFileLabel pointFileNameEdit pointFileButton") },
        { "horizontalLayout_5", "QHBoxLayout",
            names("searchPointDefsCheck label_3 pointPrefEdit label_4 pointStartNumSpin "
                  "swapXYCheck usePointFileCheck") },
        { "horizontalLayout_3", "QHBoxLayout",
            names("searchObjectDefsCheck label_6 objectPrefEdit label_7 objectStartNumSpin "
                  "label_8 encodingCombo") },
        { "horizontalLayout_6", "QHBoxLayout",
            names("label horizontalLayout_7 plusToolButton minusToolButton") },
        { "horizontalLayout_7", "QHBoxLayout", names("fieldSpin_0 fieldEdit_0") },
        { "horizontalLayout_4", "QHBoxLayout",
            names("startButton sortButton updateCheck buttonBox") },
    };
    return specs;
}

const QVector<WidgetSpec>& widgetSpecs()
{
    static const QVector<WidgetSpec> specs = {
        { "objectFileLabel", "QLabel", "Файл объектов:", "", {} },
        { "objectFileNameEdit", "QLineEdit", "", "Основной файл для импорта объектов", {} },
        { "objectFileButton", "QPushButton", "Выбрать...", "", {} },
        { "pointFileLabel", "QLabel", "Файл точек:", "", {} },
        { "pointFileNameEdit", "QLineEdit", "", "Дополнительный файл для импорта точек", {} },
        { "pointFileButton", "QPushButton", "Выбрать...", "", {} },
        { "searchPointDefsCheck", "QCheckBox", "Искать номера точек",
            "Если указано, то номера точек будут отыскиваться среди точечных объектов", {} },
        { "label_3", "QLabel", "Префикс точек:", "", {} },
        { "pointPrefEdit", "QLineEdit", "",
            "Префикс не найденных или автоматически пронумерованных точек", names("maxLength") },
        { "label_4", "QLabel", "Начальный номер:", "", {} },
        { "pointStartNumSpin", "QSpinBox", "1",
            "Начальный номер для автоматической нумерации не найденных точек",
            names("sizePolicy minimum maximum value") },
        { "swapXYCheck", "QCheckBox", "Поменять X и Y",
            "Если указано, то координаты вершин X и Y будут поменяны местами", {} },
        { "usePointFileCheck", "QCheckBox", "Точки отдельно",
            "Если указано, то обозначения точек могут быть загружены из отдельного файла",
            names("checked") },
        { "searchObjectDefsCheck", "QCheckBox", "Искать обозначения объектов",
            "Если указано, то обозначения объектов будут браться с объектов типа полигон или "
            "полилиния",
            {} },
        { "label_6", "QLabel", "Префикс:", "", {} },
        { "objectPrefEdit", "QLineEdit", "",
            "Префикс объектов, чье обозначение не удалось определить", {} },
        { "label_7", "QLabel", "Начальный номер:", "", {} },
        { "objectStartNumSpin", "QSpinBox", "1",
            "Начальный номер для автоматической нумерации объектов, чье обозначение не удалось "
            "определить",
            names("sizePolicy minimum maximum value") },
        { "label_8", "QLabel", "Кодировка:", "", {} },
        { "encodingCombo", "QComboBox", nullptr,
            "Кодировка обрабатываемых файлов для чтения обозначений, Default - использовать "
            "системную по умолчанию",
            names("editable count currentIndex currentText") },
        { "label", "QLabel", "Заполнить поле:", "", {} },
        { "fieldSpin_0", "QSpinBox", "4", "Номер дополнительно заполняемого поля",
            names("minimum maximum value") },
        { "fieldEdit_0", "QLineEdit", "", "Значение дополнительно заполняемого поля", {} },
        { "plusToolButton", "QToolButton", "+", "Добавить дополнительные поля",
            names("sizePolicy font") },
        { "minusToolButton", "QToolButton", "-", "Удалить дополнительные поля",
            names("sizePolicy font") },
        { "splitter", "QSplitter", nullptr, "", names("sizePolicy") },
        { "listView", "QListView", nullptr, "", {} },
        { "tableView", "QTableView", nullptr, "", {} },
        { "startButton", "QPushButton", "Обработать файл(ы)!", "", names("enabled") },
        { "sortButton", "QPushButton", "Сортировать объекты", "", {} },
        { "updateCheck", "QCheckBox", "Обновить при импорте", "", {} },
        { "buttonBox", "QDialogButtonBox", nullptr, "", names("standardButtons") },
    };
    return specs;
}

/// A widget of the class as Qt makes it, in a dialog.
QWidget* plainWidget(const QByteArray& className, QDialog& dialog)
{
    static const QHash<QByteArray, std::function<QWidget*(QWidget*)>> makers = {
        { "QLabel", [](QWidget* parent) { return new QLabel(parent); } },
        { "QLineEdit", [](QWidget* parent) { return new QLineEdit(parent); } },
        { "QPushButton", [](QWidget* parent) { return new QPushButton(parent); } },
        { "QCheckBox", [](QWidget* parent) { return new QCheckBox(parent); } },
        { "QSpinBox", [](QWidget* parent) { return new QSpinBox(parent); } },
        { "QComboBox", [](QWidget* parent) { return new QComboBox(parent); } },
        { "QToolButton", [](QWidget* parent) { return new QToolButton(parent); } },
        { "QSplitter", [](QWidget* parent) { return new QSplitter(parent); } },
        { "QListView", [](QWidget* parent) { return new QListView(parent); } },
        { "QTableView", [](QWidget* parent) { return new QTableView(parent); } },
        { "QDialogButtonBox", [](QWidget* parent) { return new QDialogButtonBox(parent); } },
    };
    return makers.value(className)(&dialog);
}

/// Properties that tell of the place on the screen, of texts (checked by themselves), or what the
/// others imply.
bool isPassedOver(const QByteArray& property)
{
    static const QSet<QByteArray> names = { "objectName", "x", "y", "width", "height", "size",
        "visible", "text", "cleanText", "displayText", "toolTip", "cursorPosition",
        "minimumSizeHint", "sizeHint", "frameSize", "acceptableInput", "modelColumn",
        "isActiveWindow" };
    return names.contains(property);
}

bool isPlainValue(const QMetaProperty& property)
{
    static const QSet<int> types = { QMetaType::Bool, QMetaType::Int, QMetaType::QString,
        QMetaType::QSize, QMetaType::QSizePolicy, QMetaType::QFont };
    return property.isEnumType() || types.contains(property.userType());
}

/// The names, in alphabetical order, of the properties that differ.
QString changedProperties(const QWidget& widget, const QWidget& plain)
{
    QStringList changed;
    const QMetaObject& meta = *widget.metaObject();
    for (int i = 0; i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        if (!isPlainValue(property) || isPassedOver(property.name()))
            continue;
        if (property.read(&widget) != property.read(&plain))
            changed.append(QString::fromLatin1(property.name()));
    }
    changed.sort();
    return changed.join(QLatin1Char(' '));
}

QStringList itemNames(const QLayout& layout)
{
    QStringList result;
    for (int i = 0; i < layout.count(); ++i) {
        QLayoutItem* item = layout.itemAt(i);
        const QObject* object = item->widget();
        if (!object)
            object = item->layout();
        result.append(object ? object->objectName() : QStringLiteral("a spacer"));
    }
    return result;
}

/// The names of the direct children that are widgets of the form, in the order of their making.
QStringList childWidgets(const QWidget& parent)
{
    QStringList result;
    for (const QObject* child : parent.children()) {
        if (child->isWidgetType() && !child->objectName().startsWith(QLatin1String("qt_")))
            result.append(child->objectName());
    }
    return result;
}

QStringList focusChain(const QWidget& first, const QStringList& among)
{
    QStringList result;
    const QWidget* each = &first;
    do {
        if (among.contains(each->objectName()))
            result.append(each->objectName());
        each = each->nextInFocusChain();
    } while (each != &first);
    return result;
}

/// Says whether a text was asked for in the form's context.
class MarkingTranslator : public QTranslator {
public:
    bool isEmpty() const override { return false; }
    QString translate(const char* context, const char* source, const char*, int) const override
    {
        if (qstrcmp(context, "Dialog") != 0)
            return QString();
        return QStringLiteral("tr ") + QString::fromUtf8(source);
    }
};

} // namespace

/// The form alone, and the live dialog made with it.
class TestDialogForm : public StrictTest {
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void dialogItself();
    void layouts_data();
    void layouts();
    void widgets_data();
    void widgets();
    void orderOfWidgets();
    void splitterHoldsTheViews();
    void spacingsFollowTheDialog();
    void sizePolicies();
    void ranges();
    void encodings();
    void buttons();
    void toolButtonFonts();
    void tabOrder();
    void objectNameIsKept();
    void initialState();
    void translation();

    void liveLayouts_data() { layouts_data(); }
    void liveLayouts();
    void liveWidgets_data() { widgets_data(); }
    void liveWidgets();
    void liveToolButtons_data();
    void liveToolButtons();
    void liveState();
    void liveTabOrder();
    void tabOrderOfFieldRows();
    void slotTable_data();
    void slotTable();

private:
    std::unique_ptr<OwnStore> m_store;
    std::unique_ptr<QDialog> m_form;
    Ui_Dialog m_ui;
};

void TestDialogForm::init()
{
    m_store = std::make_unique<OwnStore>();
    m_form = std::make_unique<QDialog>();
    m_ui.setupUi(m_form.get());
}

void TestDialogForm::cleanup()
{
    m_form.reset();
    m_store.reset();
}

void TestDialogForm::dialogItself()
{
    QCOMPARE(m_form->objectName(), QStringLiteral("Dialog"));
    QCOMPARE(m_form->size(), QSize(753, 633));
    QCOMPARE(m_form->windowTitle(), QStringLiteral("Импорт объектов с каталогами координат"));
    QCOMPARE(m_form->layout(), m_ui.verticalLayout);
    QCOMPARE(m_form->toolTip(), QString());
    const QDialog plain;
    QCOMPARE(changedProperties(*m_form, plain), QStringLiteral("windowTitle"));
}

static void compareLayout(const QDialog& dialog, const LayoutSpec& spec)
{
    const auto* layout = dialog.findChild<QBoxLayout*>(QLatin1String(spec.name));
    QVERIFY(layout);
    QCOMPARE(layout->metaObject()->className(), spec.className);
    QCOMPARE(itemNames(*layout), spec.items);
    for (int i = 0; i < layout->count(); ++i) {
        QCOMPARE(layout->stretch(i), 0);
        QCOMPARE(layout->itemAt(i)->alignment(), Qt::Alignment());
    }
}

void TestDialogForm::layouts_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < layoutSpecs().size(); ++i)
        QTest::newRow(layoutSpecs().at(i).name) << i;
}

void TestDialogForm::layouts()
{
    QFETCH(int, index);
    QCOMPARE(m_form->findChildren<QBoxLayout*>(QRegularExpression(QStringLiteral("."))).size(),
        layoutSpecs().size());
    compareLayout(*m_form, layoutSpecs().at(index));
}

void TestDialogForm::widgets_data()
{
    QTest::addColumn<int>("index");
    for (int i = 0; i < widgetSpecs().size(); ++i)
        QTest::newRow(widgetSpecs().at(i).name) << i;
}

static void compareTexts(const QWidget& widget, const WidgetSpec& spec)
{
    QCOMPARE(widget.toolTip(), QString::fromUtf8(spec.toolTip));
    if (spec.text)
        QCOMPARE(widget.property("text").toString(), QString::fromUtf8(spec.text));
}

void TestDialogForm::widgets()
{
    QFETCH(int, index);
    const WidgetSpec& spec = widgetSpecs().at(index);
    const auto& form = widget<QWidget>(*m_form, spec.name);
    QCOMPARE(form.metaObject()->className(), spec.className);
    compareTexts(form, spec);
    QVERIFY(!form.isHidden());

    QDialog dialog;
    const QWidget* plain = plainWidget(spec.className, dialog);
    QStringList expected = spec.ownProperties;
    expected.sort();
    QCOMPARE(changedProperties(form, *plain), expected.join(QLatin1Char(' ')));
}

void TestDialogForm::orderOfWidgets()
{
    QStringList expected;
    for (const WidgetSpec& spec : widgetSpecs())
        expected.append(QString::fromLatin1(spec.name));
    for (const char* view : { "listView", "tableView" })
        expected.removeOne(QString::fromLatin1(view));
    QCOMPARE(childWidgets(*m_form), expected);
}

void TestDialogForm::splitterHoldsTheViews()
{
    QCOMPARE(m_ui.splitter->orientation(), Qt::Horizontal);
    QCOMPARE(m_ui.splitter->count(), 2);
    QCOMPARE(m_ui.splitter->widget(0), m_ui.listView);
    QCOMPARE(m_ui.splitter->widget(1), m_ui.tableView);
    QVERIFY(!m_ui.listView->model());
    QVERIFY(!m_ui.tableView->model());
}

// A layout without a spacing of its own takes that of the layout around it.
void TestDialogForm::spacingsFollowTheDialog()
{
    m_ui.verticalLayout->setSpacing(17);
    for (const LayoutSpec& spec : layoutSpecs()) {
        const bool own = qstrcmp(spec.name, "horizontalLayout_6") == 0
            || qstrcmp(spec.name, "horizontalLayout_7") == 0;
        QCOMPARE(m_form->findChild<QBoxLayout*>(QLatin1String(spec.name))->spacing(), own ? 2 : 17);
    }
    m_ui.horizontalLayout_6->setSpacing(9);
    QCOMPARE(m_ui.horizontalLayout_7->spacing(), 2);
}

void TestDialogForm::sizePolicies()
{
    const auto isPolicy = [](const QWidget* widget, QSizePolicy::Policy horizontal,
                              QSizePolicy::Policy vertical) {
        const QSizePolicy policy = widget->sizePolicy();
        return policy.horizontalPolicy() == horizontal && policy.verticalPolicy() == vertical
            && policy.horizontalStretch() == 0 && policy.verticalStretch() == 0
            && !policy.hasHeightForWidth();
    };
    QVERIFY(!QSpinBox().sizePolicy().hasHeightForWidth());
    QVERIFY(isPolicy(m_ui.pointStartNumSpin, QSizePolicy::Expanding, QSizePolicy::Fixed));
    QVERIFY(isPolicy(m_ui.objectStartNumSpin, QSizePolicy::Expanding, QSizePolicy::Fixed));
    QVERIFY(isPolicy(m_ui.plusToolButton, QSizePolicy::Preferred, QSizePolicy::Preferred));
    QVERIFY(isPolicy(m_ui.minusToolButton, QSizePolicy::Preferred, QSizePolicy::Preferred));
    QVERIFY(isPolicy(m_ui.splitter, QSizePolicy::Expanding, QSizePolicy::Expanding));
    QCOMPARE(m_ui.plusToolButton->minimumSize(), QSize(0, 0));
}

void TestDialogForm::ranges()
{
    for (const QSpinBox* spin : { m_ui.pointStartNumSpin, m_ui.objectStartNumSpin }) {
        QCOMPARE(spin->minimum(), 1);
        QCOMPARE(spin->maximum(), 999999999);
        QCOMPARE(spin->value(), 1);
    }
    QCOMPARE(m_ui.fieldSpin_0->minimum(), 1);
    QCOMPARE(m_ui.fieldSpin_0->maximum(), 20);
    QCOMPARE(m_ui.fieldSpin_0->value(), 4);
    QCOMPARE(m_ui.pointPrefEdit->maxLength(), 20);
    QCOMPARE(m_ui.objectPrefEdit->maxLength(), QLineEdit().maxLength());

    type(*m_form, "pointPrefEdit", QString(30, QLatin1Char('a')));
    QCOMPARE(m_ui.pointPrefEdit->text(), QString(20, QLatin1Char('a')));
    type(*m_form, "objectPrefEdit", QString(300, QLatin1Char('a')));
    QCOMPARE(m_ui.objectPrefEdit->text().size(), 300);
}

void TestDialogForm::encodings()
{
    QStringList items;
    for (int i = 0; i < m_ui.encodingCombo->count(); ++i)
        items.append(m_ui.encodingCombo->itemText(i));
    QCOMPARE(items, names("Default Windows-1251 IBM866 UTF-8"));
    QVERIFY(m_ui.encodingCombo->isEditable());
    QCOMPARE(m_ui.encodingCombo->currentText(), QStringLiteral("Default"));
}

void TestDialogForm::buttons()
{
    QCOMPARE(m_ui.buttonBox->standardButtons(), QDialogButtonBox::Ok | QDialogButtonBox::Cancel);
    QVERIFY(!m_ui.buttonBox->centerButtons());
    QVERIFY(!m_ui.startButton->isEnabled());
    QVERIFY(m_ui.sortButton->isEnabled());
}

void TestDialogForm::toolButtonFonts()
{
    for (const QToolButton* button : { m_ui.plusToolButton, m_ui.minusToolButton }) {
        QVERIFY(button->font().bold());
        QCOMPARE(button->font().weight(), 75);
    }
}

static const char tabChain[] =
    "objectFileNameEdit objectFileButton pointFileNameEdit pointFileButton searchPointDefsCheck "
    "pointPrefEdit pointStartNumSpin swapXYCheck usePointFileCheck searchObjectDefsCheck "
    "objectPrefEdit objectStartNumSpin encodingCombo listView tableView startButton";

void TestDialogForm::tabOrder()
{
    QCOMPARE(focusChain(*m_ui.objectFileNameEdit, names(tabChain)), names(tabChain));
}

void TestDialogForm::objectNameIsKept()
{
    QDialog dialog;
    dialog.setObjectName(QStringLiteral("named"));
    Ui_Dialog().setupUi(&dialog);
    QCOMPARE(dialog.objectName(), QStringLiteral("named"));
}

void TestDialogForm::initialState()
{
    QVERIFY(m_ui.usePointFileCheck->isChecked());
    QVERIFY(!m_ui.pointFileLabel->isHidden());
    QVERIFY(!m_ui.swapXYCheck->isChecked());
    QVERIFY(!m_ui.searchPointDefsCheck->isChecked());
    QVERIFY(!m_ui.searchObjectDefsCheck->isChecked());
    QVERIFY(!m_ui.updateCheck->isChecked());
    QVERIFY(!m_ui.pointPrefEdit->text().isNull());
}

void TestDialogForm::translation()
{
    MarkingTranslator translator;
    QVERIFY(QCoreApplication::installTranslator(&translator));
    m_ui.retranslateUi(m_form.get());
    QCoreApplication::removeTranslator(&translator);

    const QString mark = QStringLiteral("tr ");
    QCOMPARE(
        m_form->windowTitle(), mark + QStringLiteral("Импорт объектов с каталогами координат"));
    for (const WidgetSpec& spec : widgetSpecs()) {
        const auto& form = widget<QWidget>(*m_form, spec.name);
        const QString toolTip = QString::fromUtf8(spec.toolTip);
        QCOMPARE(form.toolTip(), toolTip.isEmpty() ? toolTip : mark + toolTip);
        const QByteArray className = spec.className;
        if (spec.text && className != "QLineEdit" && className != "QSpinBox")
            QCOMPARE(form.property("text").toString(), mark + QString::fromUtf8(spec.text));
    }
    QCOMPARE(m_ui.encodingCombo->itemText(3), QStringLiteral("tr UTF-8"));
    QCOMPARE(m_ui.encodingCombo->count(), 4);
}

void TestDialogForm::liveLayouts()
{
    QFETCH(int, index);
    const Dialog dialog;
    compareLayout(dialog, layoutSpecs().at(index));
}

void TestDialogForm::liveWidgets()
{
    QFETCH(int, index);
    WidgetSpec spec = widgetSpecs().at(index);
    const QByteArray name = spec.name;
    if (name == "objectFileLabel")
        spec.text = "Файл:";
    if (name == "pointPrefEdit")
        spec.text = "н";
    if (name == "objectPrefEdit")
        spec.text = ":ЗУ";
    const Dialog dialog;
    const auto& live = widget<QWidget>(dialog, spec.name);
    QCOMPARE(live.metaObject()->className(), spec.className);
    compareTexts(live, spec);
}

void TestDialogForm::liveToolButtons_data()
{
    QTest::addColumn<int>("pointSize");
    QTest::addColumn<int>("pixelSize");

    QTest::newRow("in points") << 11 << -1;
    QTest::newRow("in pixels") << -1 << 15;
}

void TestDialogForm::liveToolButtons()
{
    QFETCH(int, pointSize);
    QFETCH(int, pixelSize);
    const QFont before = QApplication::font();
    QFont font = before;
    if (pointSize > 0)
        font.setPointSize(pointSize);
    else
        font.setPixelSize(pixelSize);
    QApplication::setFont(font);
    const Dialog dialog;
    const auto& plus = widget<QToolButton>(dialog, "plusToolButton");
    const auto& minus = widget<QToolButton>(dialog, "minusToolButton");
    QApplication::setFont(before);

    if (pointSize > 0)
        QCOMPARE(plus.font().pointSize(), pointSize + 1);
    else
        QCOMPARE(plus.font().pixelSize(), pixelSize + 1);
    QVERIFY(plus.font().bold());
    QCOMPARE(minus.font(), plus.font());
    QCOMPARE(minus.minimumWidth(), plus.sizeHint().width());
    QCOMPARE(minus.maximumWidth(), plus.sizeHint().width());
    QCOMPARE(plus.maximumWidth(), QWIDGETSIZE_MAX);
}

void TestDialogForm::liveState()
{
    const Dialog dialog;
    QCOMPARE(dialog.objectName(), QStringLiteral("Dialog"));
    QCOMPARE(dialog.windowTitle(), QStringLiteral("Импорт объектов с каталогами координат"));
    QVERIFY(widget<QWidget>(dialog, "swapXYCheck").isHidden());
    QVERIFY(!widget<QAbstractButton>(dialog, "swapXYCheck").isChecked());
    QVERIFY(!widget<QWidget>(dialog, "startButton").isEnabled());
    for (const char* name : { "pointFileLabel", "pointFileNameEdit", "pointFileButton" })
        QVERIFY(widget<QWidget>(dialog, name).isHidden());
}

void TestDialogForm::liveTabOrder()
{
    const Dialog dialog;
    QCOMPARE(focusChain(widget<QWidget>(dialog, "objectFileNameEdit"), names(tabChain)),
        names(tabChain));
}

// The further rows of extra fields follow on the first one, spin box before edit, and what came
// behind the first row comes behind the last.
void TestDialogForm::tabOrderOfFieldRows()
{
    const Dialog dialog;
    const auto& first = widget<QWidget>(dialog, "fieldSpin_0");
    const auto chain = [&first] {
        QStringList result;
        const QWidget* each = &first;
        do {
            if (each->focusPolicy() & Qt::TabFocus && !each->focusProxy())
                result.append(each->objectName());
            each = each->nextInFocusChain();
        } while (each != &first);
        return result;
    };
    const QStringList before = chain();
    QCOMPARE(before.mid(0, 2), names("fieldSpin_0 fieldEdit_0"));

    QStringList rows;
    for (int row = 1; row < 5; ++row) {
        click(dialog, "plusToolButton");
        rows << QStringLiteral("fieldSpin_%1").arg(row) << QStringLiteral("fieldEdit_%1").arg(row);
        QCOMPARE(chain(), before.mid(0, 2) + rows + before.mid(2));
    }
    click(dialog, "minusToolButton");
    click(dialog, "minusToolButton");
    QCOMPARE(chain(), before.mid(0, 2) + rows.mid(0, 4) + before.mid(2));
    click(dialog, "plusToolButton");
    QCOMPARE(chain(), before.mid(0, 2) + rows.mid(0, 6) + before.mid(2));
    for (int i = 0; i < 3; ++i)
        click(dialog, "minusToolButton");
    QCOMPARE(chain(), before);
}

void TestDialogForm::slotTable_data()
{
    QTest::addColumn<int>("position");
    QTest::addColumn<QByteArray>("parameters");

    const QVector<QPair<const char*, QByteArray>> methods = {
        { "on_objectFileButton_clicked()", "" },
        { "on_pointFileButton_clicked()", "" },
        { "on_startButton_clicked()", "" },
        { "on_usePointFileCheck_toggled(bool)", "checked" },
        { "on_plusToolButton_clicked()", "" },
        { "on_minusToolButton_clicked()", "" },
        { "procCurrentChanged(QModelIndex,QModelIndex)", "current previous" },
        { "on_sortButton_clicked()", "" },
        { "on_objectFileNameEdit_textChanged(QString)", "arg1" },
    };
    for (int i = 0; i < methods.size(); ++i)
        QTest::newRow(methods.at(i).first) << i << methods.at(i).second;
}

void TestDialogForm::slotTable()
{
    QFETCH(int, position);
    QFETCH(QByteArray, parameters);
    const QMetaObject& meta = Dialog::staticMetaObject;
    QCOMPARE(meta.className(), "Dialog");
    QCOMPARE(meta.superClass(), &QDialog::staticMetaObject);
    QCOMPARE(meta.methodCount() - meta.methodOffset(), 9);
    QCOMPARE(meta.propertyCount(), QDialog::staticMetaObject.propertyCount());

    const QMetaMethod method = meta.method(meta.methodOffset() + position);
    QCOMPARE(method.methodSignature(), QByteArray(QTest::currentDataTag()));
    QCOMPARE(method.methodType(), QMetaMethod::Slot);
    QCOMPARE(method.access(), QMetaMethod::Private);
    QCOMPARE(method.parameterNames().join(' '), parameters);
}

QTEST_MAIN(TestDialogForm)
#include "tst_dialogform.moc"
