#include "randomdrawing.h"

#include "drawing.h"

#include <iterator>

RandomDrawing::RandomDrawing(quint32 seed)
    : m_random(seed)
    , m_places(static_cast<Places>(below(5)))
    , m_withPoints(chance(70))
    , m_sound(chance(60))
{
    static const char* const encodings[] = { "UTF-8", "Windows-1251", "IBM866" };
    m_encoding = encodings[below(3)];
}

ImportOptions RandomDrawing::options()
{
    ImportOptions options = numbered();
    options.searchPointDefs = chance(70);
    options.searchObjectDefs = chance(80);
    options.swapXY = chance(30);
    options.pointPref = chance(50) ? QStringLiteral("н") : QString();
    options.objectPref = chance(50) ? QStringLiteral(":ЗУ") : QString();
    options.pointStartNum = 1 + below(20);
    options.objectStartNum = 1 + below(20);
    options.encoding = m_encoding;
    return options;
}

QString RandomDrawing::coordinate()
{
    static const char* const strange[] = { "nan", "inf", "-inf", "-0", "1e200", "-1e200", "1e308",
        "1e-300", "0", "1", "+2", "3.", ".5", "1E1", "1e400" };
    if (!m_sound && chance(1))
        return QStringLiteral("1,5");
    switch (m_places) {
    case Places::Grid:
        return QString::number(below(4));
    case Places::FineGrid:
        return QString::number(below(40) / 4.0);
    case Places::Crowd:
        return QString::number(below(8) * 0.005, 'f', 3);
    case Places::Anywhere:
        return QString::number(m_random.between(-500, 500), 'f', below(20));
    case Places::Strange:
        break;
    }
    return QLatin1String(strange[below(static_cast<int>(std::size(strange)) - (m_sound ? 1 : 0))]);
}

QString RandomDrawing::label()
{
    static const QString labels[] = { QStringLiteral("1"), QStringLiteral("2"),
        QStringLiteral("13"), QStringLiteral("т5"), QStringLiteral("A07"), QStringLiteral("ё9"),
        QStringLiteral("ЗУ1"), QStringLiteral("ЗУ2"), QStringLiteral("12а"), QStringLiteral("A-7"),
        QStringLiteral("50:21:0101"), QStringLiteral("%%c50"), QStringLiteral("%%204%%205"),
        QStringLiteral("%%0650"), QStringLiteral("%%999"), QStringLiteral("  "), QString() };
    return labels[below(static_cast<int>(std::size(labels)))];
}

void RandomDrawing::add(const char* code, const QString& value)
{
    if (!m_sound && chance(1))
        return;
    m_lines << QLatin1String(code) << value;
}

void RandomDrawing::add(const char* code, const char* value)
{
    add(code, QString(QLatin1String(value)));
}

void RandomDrawing::addPlace(const char* codeX, const char* codeY)
{
    const QString x = coordinate();
    const QString y = coordinate();
    if (chance(90)) {
        add(codeX, x);
        add(codeY, y);
    } else {
        add(codeY, y);
        add(codeX, x);
    }
}

void RandomDrawing::addExtras()
{
    if (chance(30))
        add("8", "0");
    if (chance(20))
        add("62", "7");
    if (chance(10))
        add("330", "1F");
}

void RandomDrawing::addPoint()
{
    static const char* const types[] = { "POINT", "INSERT", "CIRCLE", "ELLIPSE" };
    add("0", types[below(4)]);
    addExtras();
    addPlace("10", "20");
    if (chance(50))
        add("30", "0.0");
}

void RandomDrawing::addText()
{
    static const char* const justifications[] = { "0", "1", "2", "-1", "x" };
    add("0", "TEXT");
    addExtras();
    addPlace("10", "20");
    add("1", label());
    if (chance(30))
        add("72", justifications[below(5)]);
    if (chance(30))
        addPlace("11", "21");
    if (chance(30))
        add("73", justifications[below(5)]);
}

void RandomDrawing::addLine()
{
    add("0", "LINE");
    addExtras();
    addPlace("10", "20");
    addPlace("11", "21");
}

void RandomDrawing::addPolyline()
{
    static const char* const flags[] = { "0", "1", "9", "129" };
    add("0", "POLYLINE");
    addExtras();
    add("70", flags[below(4)]);
    const int count = (m_sound ? 2 : 1) + below(5);
    for (int i = 0; i < count; ++i) {
        add("0", "VERTEX");
        addExtras();
        addPlace("10", "20");
        if (chance(20))
            add("70", flags[below(4)]);
    }
    add("0", "SEQEND");
    addExtras();
}

void RandomDrawing::addLwpolyline()
{
    static const char* const flags[] = { "0", "1", "128", "129" };
    const int count = (m_sound ? 2 : 1) + below(5);
    add("0", "LWPOLYLINE");
    addExtras();
    add("90", QString::number(m_sound || chance(80) ? count : count + below(3) - 1));
    add("70", flags[below(4)]);
    for (int i = 0; i < count; ++i) {
        addPlace("10", "20");
        if (chance(10))
            add("42", "0.5");
    }
    if (!m_sound && chance(10))
        add("90", QString::number(below(4)));
    if (chance(10))
        add("210", "0.0");
}

void RandomDrawing::addEntity()
{
    switch (below(m_withPoints ? 7 : 5)) {
    case 0:
    case 1:
        return addText();
    case 2:
        return addLine();
    case 3:
        return addPolyline();
    case 4:
        return addLwpolyline();
    default:
        return addPoint();
    }
}

void RandomDrawing::addEntities(int count)
{
    for (int i = 0; i < count; ++i)
        addEntity();
}

void RandomDrawing::addSection(const char* name, int entityCount)
{
    add("0", "SECTION");
    add("2", name);
    addEntities(entityCount);
    if (chance(95))
        add("0", "ENDSEC");
}

QStringList RandomDrawing::lines(int mostEntities)
{
    // The order of more than sixteen points is unspecified once a coordinate is not a number.
    const int most = m_places == Places::Strange ? 15 : mostEntities;
    m_lines = pairs("0 SECTION, 2 HEADER");
    if (chance(50))
        add("9", "$ACADVER");
    if (chance(95))
        add("0", "ENDSEC");
    if (chance(20))
        addSection("BLOCKS", below(3));
    addSection("ENTITIES", below(most));
    if (chance(20))
        addSection("OBJECTS", below(3));
    if (chance(90))
        add("0", "EOF");
    if (chance(10))
        addText();
    if (chance(5))
        addSection("ENTITIES", 1);
    if (chance(3))
        add("0", "SECTION");
    return m_lines;
}

QStringList RandomDrawing::spoiled(QStringList lines)
{
    for (int count = 1 + below(3); count > 0 && !lines.isEmpty(); --count) {
        const int at = below(lines.size());
        const int other = below(lines.size());
        switch (below(8)) {
        case 0:
            lines.removeAt(at);
            break;
        case 1:
            lines.insert(at, lines.at(other));
            break;
        case 2:
            lines[at] = QString();
            break;
        case 3:
            lines.swapItemsAt(at, other);
            break;
        case 4:
            lines[at] = lines.at(other);
            break;
        case 5:
            lines[at] = QStringLiteral("abc");
            break;
        case 6:
            lines[at] = QLatin1Char(' ') + lines.at(at) + QLatin1Char('\t');
            break;
        default:
            lines = lines.mid(0, chance(30) ? at : lines.size());
            break;
        }
    }
    return lines;
}

QByteArray RandomDrawing::bytes(const QStringList& lines) const
{
    return encoded(lines, m_encoding.constData());
}
