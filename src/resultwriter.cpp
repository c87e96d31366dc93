#include "resultwriter.h"

#include "catalogue/cataloguerows.h"
#include "catalogue/coordformat.h"
#include "textsinks.h"

#include <string_view>

namespace {

// The tags with their indents: the catalogue's rows are on the fourth level.
constexpr std::string_view tableTag = "\n<FormTable";
constexpr std::string_view tableEnd = "\n</FormTable>";
constexpr std::string_view objectTag = "\n    <Row>";
constexpr std::string_view objectEnd = "\n    </Row>";
constexpr std::string_view objectCell = "\n        <Cell>";
constexpr std::string_view objectEmptyCell = "\n        <Cell/>";
constexpr std::string_view catalogueTag = "\n        <FormTable";
constexpr std::string_view catalogueEnd = "\n        </FormTable>";
constexpr std::string_view rowTag = "\n            <Row>";
constexpr std::string_view rowEnd = "\n            </Row>";
constexpr std::string_view emptyRow = "\n            <Row/>";
constexpr std::string_view cell = "\n                <Cell>";
constexpr std::string_view emptyCell = "\n                <Cell/>";
constexpr std::string_view cellEnd = "</Cell>";
constexpr std::string_view tagEnd = ">";
constexpr std::string_view emptyTagEnd = "/>";

enum class TextPlace { Element, Attribute };

/// What stands for a character that XML text cannot hold as it is; empty when it can.
std::string_view entityOf(QChar c, TextPlace place)
{
    const bool isAttribute = place == TextPlace::Attribute;
    switch (c.unicode()) {
    case '<':
        return "&lt;";
    case '>':
        return "&gt;";
    case '&':
        return "&amp;";
    case '"':
        return "&quot;";
    case '\t':
        return isAttribute ? "&#9;" : "";
    case '\n':
        return isAttribute ? "&#10;" : "";
    case '\r':
        return isAttribute ? "&#13;" : "";
    default:
        return "";
    }
}
constexpr qint64 longestEntity = 6;

/// Whether XML allows the unit of a text at all.
bool isXmlCharacter(QChar c)
{
    return c.unicode() >= ' '
        ? c.unicode() < 0xFFFE
        : c == QLatin1Char('\t') || c == QLatin1Char('\n') || c == QLatin1Char('\r');
}

/// The text without what XML does not allow; halves of a surrogate pair may meet by that.
QString withoutIllegal(const QString& text)
{
    QString legal;
    std::copy_if(text.cbegin(), text.cend(), std::back_inserter(legal), isXmlCharacter);
    return legal;
}

/// The result as text, put into a sink.
template <typename Sink>
class Result {
public:
    template <typename... Arguments>
    explicit Result(const ResultOptions& options, Arguments&&... arguments)
        : m_sink(std::forward<Arguments>(arguments)...)
        , m_options(options)
    {
        CatalogueColumns columns;
        columns.setNxyColNum(options.info.nColNum, options.info.xColNum, options.info.yColNum);
        columns.setFieldNumValueMap(options.fields);
        m_columnCount = columns.count();
        for (const int column : columns.filledColumns())
            m_cells.push_back({ column, columns.content(column), columns.field(column) });
        putTag(tableTag, options.tableName);
        if (options.update)
            put(" Update=\"1\"");
    }

    void putObject(const DefPolygon& object)
    {
        openTable();
        put(objectTag);
        for (int i = 0; i < m_options.info.defColNum; ++i)
            put(objectEmptyCell);
        put(objectCell);
        putEscaped(object.def, TextPlace::Element);
        put(cellEnd);
        putCatalogue(object);
        put(objectEnd);
    }

    void end() { put(m_isOpen ? tableEnd : emptyTagEnd); }

    Sink& sink() { return m_sink; }

private:
    /// A cell that each row of a vertex has.
    struct FilledCell {
        int column;
        CellContent content;
        QString field;
    };

    void openTable()
    {
        if (!m_isOpen)
            put(tagEnd);
        m_isOpen = true;
    }

    void putTag(std::string_view tag, const QString& name)
    {
        put(tag);
        if (name.isEmpty())
            return;
        put(" Name=\"");
        putEscaped(name, TextPlace::Attribute);
        put("\"");
    }

    void putCatalogue(const DefPolygon& object)
    {
        putTag(catalogueTag, m_options.catalogueTableName);
        bool isEmpty = true;
        visitCatalogueRows(object, [&](const RowInfo& row) {
            if (isEmpty)
                put(tagEnd);
            isEmpty = false;
            if (row.contourIndex < 0)
                put(emptyRow);
            else
                putVertex(object.contours.at(row.contourIndex).at(row.pointIndex));
        });
        put(isEmpty ? emptyTagEnd : catalogueEnd);
    }

    static bool isEmpty(const FilledCell& filled, const DefPoint& point)
    {
        switch (filled.content) {
        case CellContent::Designation:
            return point.def.isNull();
        case CellContent::Field:
            return filled.field.isNull();
        case CellContent::X:
        case CellContent::Y:
            return false;
        case CellContent::Nothing:
            break;
        }
        return true;
    }

    void putVertex(const DefPoint& point)
    {
        if (std::all_of(m_cells.cbegin(), m_cells.cend(),
                [&](const FilledCell& filled) { return isEmpty(filled, point); })) {
            put(emptyRow);
            return;
        }
        put(rowTag);
        int next = 0;
        for (const FilledCell& filled : m_cells) {
            putEmptyCells(filled.column - next);
            putCell(filled, point);
            next = filled.column + 1;
        }
        putEmptyCells(m_columnCount - next);
        put(rowEnd);
    }

    void putEmptyCells(int count)
    {
        for (; count > 0; --count)
            put(emptyCell);
    }

    void putCell(const FilledCell& filled, const DefPoint& point)
    {
        if (isEmpty(filled, point)) {
            put(emptyCell);
            return;
        }
        put(cell);
        switch (filled.content) {
        case CellContent::Designation:
            putEscaped(point.def, TextPlace::Element);
            break;
        case CellContent::X:
            putCoord(point.x);
            break;
        case CellContent::Y:
            putCoord(point.y);
            break;
        case CellContent::Field:
            putEscaped(filled.field, TextPlace::Element);
            break;
        case CellContent::Nothing:
            break;
        }
        put(cellEnd);
    }

    void putCoord(double value)
    {
        FixedDigits digits;
        const int size = writeFixed(digits, value, m_decimals);
        if (size > 0)
            put({ digits.data(), static_cast<size_t>(size) });
        else
            putEscaped(formatCoord(value, false), TextPlace::Element);
    }

    void put(std::string_view ascii)
    {
        auto* const out = m_sink.room(static_cast<qint64>(ascii.size()));
        m_sink.done(std::copy(ascii.begin(), ascii.end(), out));
    }

    void putEscaped(const QString& text, TextPlace place)
    {
        if (!std::all_of(text.cbegin(), text.cend(), isXmlCharacter)) {
            putEscaped(withoutIllegal(text), place);
            return;
        }
        auto* out = m_sink.room(qint64(text.size()) * longestEntity);
        const QChar* const end = text.cend();
        for (const QChar* c = text.cbegin(); c != end;) {
            const std::string_view entity = entityOf(*c, place);
            if (entity.empty()) {
                out = Sink::put(out, c, end);
                continue;
            }
            out = std::copy(entity.begin(), entity.end(), out);
            ++c;
        }
        m_sink.done(out);
    }

    Sink m_sink;
    const ResultOptions m_options;
    std::vector<FilledCell> m_cells; ///< in the order of the columns
    int m_columnCount = 0;
    const int m_decimals = coordDecimals();
    bool m_isOpen = false; ///< the outer table holds an object
};

} // namespace

QString resultText(const QVector<DefPolygon>& objects, const ResultOptions& options)
{
    Result<Utf16Sink> result(options);
    for (const DefPolygon& object : objects)
        result.putObject(object);
    result.end();
    return result.sink().take();
}

class ResultWriter::Private {
public:
    Private(QIODevice& device, const ResultOptions& options)
        : result(options, device)
    {
    }

    Result<Utf8Sink> result;
};

ResultWriter::ResultWriter(QIODevice& device, const ResultOptions& options)
    : d(std::make_unique<Private>(device, options))
{
}

ResultWriter::~ResultWriter() = default;

void ResultWriter::write(const DefPolygon& object)
{
    d->result.putObject(object);
}

void ResultWriter::finish()
{
    d->result.end();
    d->result.sink().flush();
}
