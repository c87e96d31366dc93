#include "drawing.h"

#include <QTextCodec>

QStringList pairs(const char* notation)
{
    QStringList lines;
    const QString text = QString::fromUtf8(notation);
    for (const QString& pair : text.split(QLatin1String(", "), Qt::SkipEmptyParts)) {
        lines << pair.section(QLatin1Char(' '), 0, 0);
        lines << pair.section(QLatin1Char(' '), 1);
    }
    return lines;
}

QStringList drawingStart()
{
    return pairs("0 SECTION, 2 HEADER, 0 ENDSEC, 0 SECTION, 2 ENTITIES");
}

QStringList openDrawing(const char* entities)
{
    return drawingStart() + pairs(entities);
}

QStringList drawing(const char* entities)
{
    return openDrawing(entities) + pairs("0 ENDSEC, 0 EOF");
}

QStringList rightAligned(QStringList lines)
{
    constexpr int columns = 3;
    for (int i = 0; i < lines.size(); i += 2)
        lines[i] = lines.at(i).rightJustified(columns);
    return lines;
}

QByteArray encoded(const QStringList& lines, const char* codecName, LineEnd end)
{
    const QString lineEnd = end == LineEnd::CrLf ? QStringLiteral("\r\n") : QStringLiteral("\n");
    QString text;
    for (const QString& line : lines)
        text += line + lineEnd;
    return QTextCodec::codecForName(codecName)->fromUnicode(text);
}
