#include "export/exportfile.h"
#include "export/measures.h"

#include <algorithm>

namespace {

class CsvWriter {
public:
    CsvWriter(QIODevice& out, bool russian)
        : m_out(out)
        , m_separator(russian ? ';' : ',')
        , m_russian(russian)
    {
    }

    void start()
    {
        m_out.write("\xEF\xBB\xBF");
        for (const char* title :
            { "Объект", "Контур", "Номер", "Точка", "X", "Y", "Площадь", "Периметр" })
            addText(QString::fromUtf8(title));
        endRow();
    }

    void write(const DefPolygon& object, bool isArea)
    {
        const ObjectShape shape(object, isArea, false);
        for (int contour = 0; contour < object.contours.size(); ++contour) {
            for (int i = 0; i < object.contours.at(contour).size(); ++i) {
                const DefPoint& vertex = object.contours.at(contour).at(i);
                addText(object.def);
                add(QByteArray::number(contour + 1));
                add(QByteArray::number(i + 1));
                addText(vertex.def);
                addNumber(plainNumber(vertex.x));
                addNumber(plainNumber(vertex.y));
                addNumber(measureText(shape.area));
                addNumber(measureText(shape.perimeter));
                endRow();
            }
        }
    }

private:
    void add(const QByteArray& value)
    {
        if (!m_row.isEmpty())
            m_row += m_separator;
        m_row += value;
    }

    void addNumber(QByteArray number)
    {
        if (m_russian)
            number.replace('.', ',');
        add(number);
    }

    void addText(const QString& text)
    {
        QByteArray value = text.toUtf8();
        const bool isPlain = !value.isEmpty()
            && std::none_of(value.begin(), value.end(),
                [](char c) { return c == ';' || c == ',' || c == '"' || c == '\n' || c == '\r'; });
        add(isPlain ? value : '"' + value.replace('"', "\"\"") + '"');
    }

    void endRow()
    {
        m_out.write(m_row + "\r\n");
        m_row.clear();
    }

    QIODevice& m_out;
    const char m_separator;
    const bool m_russian;
    QByteArray m_row;
};

} // namespace

void writeCsv(QIODevice& out, const QVector<DefPolygon>& objects, const QVector<Shape>& shapes,
    const ExportOptions& options)
{
    CsvWriter writer(out, options.russianNumbers);
    writer.start();
    for (int i = 0; i < objects.size(); ++i) {
        writer.write(objects.at(i), shapes.value(i, Shape::Line) == Shape::Area);
        if (options.objectWritten)
            options.objectWritten();
    }
}
