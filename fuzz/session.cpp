#include "geometry/designation.h"
#include "import/dxfimport.h"
#include "import/mifimport.h"
#include "importing.h"
#include "literal/literalgeometry.h"
#include "models/defmaptablemodel.h"
#include "models/defpolygontablemodel.h"

#include <QAbstractItemModelTester>

namespace {

/// What a user does between the import and the result, on the models that the dialog shows.
class Session {
public:
    Session(const ImportOptions& options, bool isDxf)
        : m_options(options)
        , m_isDxf(isDxf)
    {
        m_catalogue.setNxyColNum(0, 1, 2);
    }

    /// Takes the next step from the script; false at its end.
    bool step(const QByteArray& script);

private:
    int next(const QByteArray& script);
    void import();
    void sort();
    void select(int row);
    void editObject(int row, int text);
    void editVertex(int row, int text);
    void requirePainting() const;

    ImportOptions m_options;
    bool m_isDxf;
    int m_position = 0;
    int m_selected = -1;
    QVector<DefPolygon> m_objects;
    QVector<DefPolygon> m_expected; ///< what the steps should have made of the objects
    DefMapTableModel m_list;
    DefPolygonTableModel m_catalogue;
    QAbstractItemModelTester m_listTester{ &m_list,
        QAbstractItemModelTester::FailureReportingMode::Fatal };
    QAbstractItemModelTester m_catalogueTester{ &m_catalogue,
        QAbstractItemModelTester::FailureReportingMode::Fatal };
};

/// Designations that are alike but for case, null, empty, and hard to sort.
QString textOf(int choice)
{
    static const QStringList texts{ QString(), QStringLiteral(""), QStringLiteral("ЗУ1"),
        QStringLiteral("зу1"), QStringLiteral("ЗУ01"), QStringLiteral("ЗУ99999999999"),
        QStringLiteral("1\n"), QStringLiteral("а"), QStringLiteral("ß"), QStringLiteral("SS") };
    return texts.at(choice % texts.size());
}

/// Replaces a designation by another text; false when it is the same already.
bool replace(QString& def, int text)
{
    if (def == textOf(text))
        return false;
    def = textOf(text);
    return true;
}

/// The number that the script goes on with; 0 at its end.
int Session::next(const QByteArray& script)
{
    return m_position < script.size() ? static_cast<uchar>(script.at(m_position++)) : 0;
}

bool Session::step(const QByteArray& script)
{
    if (m_position >= script.size())
        return false;
    switch (script.at(m_position++)) {
    case 'i':
        import();
        break;
    case 's':
        sort();
        break;
    case 'c':
        select(next(script));
        break;
    case 'o': {
        const int row = next(script);
        editObject(row, next(script));
        break;
    }
    case 'v': {
        const int row = next(script);
        editVertex(row, next(script));
        break;
    }
    case 'w':
        requireReadBack(m_objects);
        break;
    default:
        return true;
    }
    require(sameObjects(m_objects, m_expected), "the steps change what they say");
    require(m_list.rowCount() == m_objects.size(), "the list has a row for each object");
    requirePainting();
    return true;
}

void Session::import()
{
    m_catalogue.setPolygon(nullptr);
    m_list.setMap(nullptr);
    const ImportOutcome outcome = [this] {
        if (m_isDxf) {
            DxfImport importer;
            prepare(importer, m_options, m_options.objectFileName);
            return run(importer);
        }
        MifImport importer;
        prepare(importer, m_options, m_options.objectFileName);
        return run(importer);
    }();
    m_objects = outcome.objects;
    m_expected = m_objects;
    m_list.setMap(&m_objects);
    select(0);
}

void Session::sort()
{
    m_catalogue.setPolygon(nullptr);
    m_list.setMap(nullptr);
    sortObjects(m_objects);
    literal::sortObjects(m_expected);
    for (int i = 0; i < m_objects.size(); ++i) {
        QString prefixes[2];
        int numbers[2];
        literal::splitDef(m_objects.at(i).def, prefixes[0], numbers[0]);
        literal::splitDef(m_expected.at(i).def, prefixes[1], numbers[1]);
        require(sameDef(prefixes[0], prefixes[1]) && numbers[0] == numbers[1],
            "the objects stand in the literal order");
    }
    // The order of equal keys is open.
    m_expected = m_objects;
    m_list.setMap(&m_objects);
    select(0);
}

void Session::select(int row)
{
    m_selected = m_objects.isEmpty() ? -1 : row % m_objects.size();
    m_catalogue.setPolygon(m_selected < 0 ? nullptr : &m_objects[m_selected]);
}

void Session::editObject(int row, int text)
{
    if (m_objects.isEmpty())
        return;
    row %= m_objects.size();
    const bool isEdited = m_list.setData(m_list.index(row, 0), textOf(text));
    require(isEdited == replace(m_expected[row].def, text), "an object takes another text");
}

void Session::editVertex(int row, int text)
{
    if (m_catalogue.rowCount() == 0)
        return;
    row %= m_catalogue.rowCount();
    const bool isEdited = m_catalogue.setData(m_catalogue.index(row, 0), textOf(text));
    for (QVector<DefPoint>& contour : m_expected[m_selected].contours) {
        if (row < contour.size()) {
            require(isEdited == replace(contour[row].def, text), "a vertex takes another text");
            return;
        }
        row -= contour.size();
        if (row == 0) {
            require(!isEdited, "a row between contours cannot be edited");
            return;
        }
        --row;
    }
    require(false, "each row is a vertex's or stands between contours");
}

void Session::requirePainting() const
{
    const QBitArray duplicates = literal::duplicateDefs(m_objects);
    for (int row = 0; row < m_objects.size(); ++row)
        require(m_list.isDuplicateDef(row) == duplicates.at(row), "the duplicates are painted");
    if (m_selected < 0)
        return;
    const DefPolygon& object = m_objects.at(m_selected);
    const QBitArray conflicts = literal::conflictingPoints(object);
    int row = 0;
    int vertex = 0;
    for (const QVector<DefPoint>& contour : object.contours) {
        row += &contour == &object.contours.first() ? 0 : 1;
        for (int i = 0; i < contour.size(); ++i, ++row, ++vertex) {
            require(m_catalogue.isConflictingPoint(row) == conflicts.at(vertex),
                "the conflicts are painted");
        }
    }
    require(m_catalogue.rowCount() == row, "the catalogue has a row for each vertex");
}

} // namespace

/// The texts: the steps, then with the letter d a drawing, else a MIF file and its MID file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TempFiles folder;
    const PackedInput input(data, size);
    const bool isDxf = input.has('d');
    ImportOptions options = input.options();
    options.objectFileName = writeText(
        folder, isDxf ? QStringLiteral("plan.dxf") : QStringLiteral("plan.mif"), input.text(1));
    if (!isDxf)
        writeText(folder, QStringLiteral("plan.mid"), input.text(2));
    // Enough for every order of a few; each checks all of the models.
    constexpr int mostSteps = 64;
    Session session(options, isDxf);
    for (int steps = 0; steps < mostSteps && session.step(input.text(0)); ++steps) { }
    return 0;
}
