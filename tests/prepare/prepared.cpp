#include "prepared.h"

#include "drawing.h"
#include "prepare/preparedxf.h"

#include <QBuffer>
#include <QTextCodec>

namespace {

/// Reads the entities of a drawing that holds nothing but what the writer writes.
class Outline {
public:
    QStringList of(const QStringList& lines)
    {
        int start = lines.indexOf(QStringLiteral("ENTITIES")) + 1;
        for (int i = start; i + 1 < lines.size(); i += 2)
            take(lines.at(i).toInt(), lines.at(i + 1));
        return m_texts;
    }

private:
    void take(int code, const QString& value)
    {
        if (code == 0)
            startEntity(value);
        else if (code == 10 || code == 11)
            m_x = value;
        else if (code == 20 || (code == 21 && m_type == QLatin1String("LINE")))
            m_places.append(m_x + QLatin1Char(' ') + value);
        else if (code == 70)
            m_closed = value == QLatin1String("1");
        else if (code == 1)
            m_text = QLatin1Char(' ') + value;
    }

    void startEntity(const QString& type)
    {
        if (type == QLatin1String("VERTEX"))
            return;
        if (m_type == QLatin1String("POLYLINE"))
            m_type = m_closed ? QStringLiteral("closed") : QStringLiteral("open");
        if (!m_places.isEmpty())
            m_texts.append(
                m_type.toLower() + QLatin1Char(' ') + m_places.join(QStringLiteral(", ")) + m_text);
        m_type = type;
        m_places.clear();
        m_text.clear();
    }

    QStringList m_texts;
    QString m_type;
    QString m_x;
    QStringList m_places;
    QString m_text;
    bool m_closed = false;
};

} // namespace

QStringList Prepared::notes() const
{
    QStringList names;
    for (const auto& [note, count] : report.notes())
        names.append(prep::noteId(note));
    names.sort();
    return names;
}

Prepared prepared(const QByteArray& drawing, const prep::PrepareOptions& options)
{
    Prepared result;
    QBuffer buffer(&result.bytes);
    buffer.open(QIODevice::WriteOnly);
    result.written = prep::prepareDxf(drawing, options, buffer, result.report);
    return result;
}

QStringList outline(const QByteArray& drawing, const char* codecName)
{
    const QTextCodec* codec = QTextCodec::codecForName(codecName);
    return Outline().of(codec->toUnicode(drawing).split(QLatin1Char('\n')));
}

QByteArray drawingOf(const char* entities, const char* blocks, const char* tables)
{
    QStringList lines = pairs("0 SECTION, 2 HEADER, 0 ENDSEC, 0 SECTION, 2 TABLES");
    lines += pairs(tables);
    lines += pairs("0 ENDSEC, 0 SECTION, 2 BLOCKS");
    lines += pairs(blocks);
    lines += pairs("0 ENDSEC, 0 SECTION, 2 ENTITIES");
    lines += pairs(entities);
    return encoded(lines + pairs("0 ENDSEC, 0 EOF"));
}
