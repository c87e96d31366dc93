#include "literaldxf.h"

#include <QDir>
#include <QHash>
#include <QRegularExpression>
#include <QSet>

#include <algorithm>
#include <cmath>
#include <limits>

namespace {

bool samePlace(const DefPoint& a, const DefPoint& b)
{
    return std::fabs(a.x - b.x) <= 0.01 && std::fabs(a.y - b.y) <= 0.01;
}

bool standsBefore(const DefPoint& a, const DefPoint& b)
{
    return a.x < b.x || (a.x == b.x && a.y < b.y);
}

const DefPoint* nearest(const QVector<DefPoint>& points, double x, double y)
{
    const auto distance = [x, y](const DefPoint& p) {
        return (p.x - x) * (p.x - x) + (p.y - y) * (p.y - y);
    };
    const auto isLeft = [](const DefPoint& p, double place) { return p.x < place; };
    const int lower = static_cast<int>(
        std::lower_bound(points.begin(), points.end(), x, isLeft) - points.begin());

    int best = -1;
    double bestDistance = std::numeric_limits<double>::max();
    const auto meet = [&](int i) {
        if (distance(points[i]) < bestDistance) {
            best = i;
            bestDistance = distance(points[i]);
        }
    };
    if (lower < points.size())
        meet(lower);
    if (lower > 0)
        meet(lower - 1);
    for (int i = lower + 1; i < points.size(); ++i) {
        if ((points[i].x - x) * (points[i].x - x) > bestDistance)
            break;
        meet(i);
    }
    for (int i = lower - 2; i >= 0; --i) {
        if ((x - points[i].x) * (x - points[i].x) > bestDistance)
            break;
        meet(i);
    }
    return best < 0 ? nullptr : &points[best];
}

class LiteralDxf {
public:
    LiteralDxf(const ImportOptions& options, ImportOutcome* outcome)
        : m_options(options)
        , m_outcome(outcome)
        , m_codec(QTextCodec::codecForName(options.encoding))
    {
    }

    bool importMap(const QString& objectFile, const QString& pointFile);

private:
    bool open(const QString& fileName);
    void message(const QString& text) { m_outcome->messages << text; }
    bool failAtLine();

    void appendVert(double x, double y);
    void nameLastObject(const QString& def);

    bool readCodeValue();
    bool checkDxfFile();
    bool readRequired(QSet<QString> required, QHash<QString, double>* numbers);
    bool readPoint();
    bool readText();
    bool readLine();
    bool readVertex();
    bool readPolyline();
    bool readLwpolyline();
    bool closeContour(bool closed);

    bool loadPoints();
    bool loadPolygons();
    void updatePointsDefs();
    bool loadTextsOnly();
    void filterObjectDefs();
    void updateLastPolygonDef();

    QVector<DefPolygon>& objects() { return m_outcome->objects; }
    QVector<DefPoint>& lastContour() { return objects().last().contours.last(); }

    ImportOptions m_options;
    ImportOutcome* m_outcome;
    QTextCodec* m_codec;
    QString m_pointFile;
    QVector<DefPoint> m_points;
    QVector<DefPoint> m_texts;
    QFile m_file;
    QTextStream m_in;
    int m_lineNum = 0;
    QString m_code;
    QString m_value;
    bool m_unread = false;
};

bool LiteralDxf::open(const QString& fileName)
{
    m_file.setFileName(fileName);
    if (!m_file.open(QIODevice::ReadOnly | QIODevice::Text)) {
        message(QStringLiteral("Ошибка открытия файла ") + QDir::toNativeSeparators(fileName));
        return false;
    }
    m_in.setDevice(&m_file);
    m_in.setCodec(m_codec);
    m_lineNum = 0;
    return true;
}

bool LiteralDxf::importMap(const QString& objectFile, const QString& pointFile)
{
    m_pointFile = pointFile;
    m_points.clear();
    if (m_options.searchPointDefs) {
        if (open(pointFile.isEmpty() ? objectFile : pointFile)) {
            const bool loaded = loadPoints();
            m_file.close();
            if (!loaded)
                return false;
        }
        std::sort(m_points.begin(), m_points.end(), standsBefore);
        m_points.erase(std::unique(m_points.begin(), m_points.end(), samePlace), m_points.end());
    }
    if (!open(objectFile))
        return true;
    const bool loaded = loadPolygons();
    m_file.close();
    return loaded;
}

bool LiteralDxf::failAtLine()
{
    message(readError(m_lineNum));
    return false;
}

void LiteralDxf::appendVert(double x, double y)
{
    DefPoint vertex{ QString(), x, y };
    const DefPoint* point = nearest(m_points, x, y);
    if (point && samePlace(*point, vertex)) {
        vertex.def = point->def;
    } else {
        vertex.def = m_options.pointPref + QString::number(m_options.pointStartNum++);
        m_points.insert(
            std::lower_bound(m_points.begin(), m_points.end(), vertex, standsBefore), vertex);
    }
    if (m_options.swapXY)
        std::swap(vertex.x, vertex.y);
    lastContour().append(vertex);
}

void LiteralDxf::nameLastObject(const QString& def)
{
    objects().last().def =
        def.isEmpty() ? m_options.objectPref + QString::number(m_options.objectStartNum++) : def;
}

bool LiteralDxf::readCodeValue()
{
    if (m_unread) {
        m_unread = false;
        return true;
    }
    QString line = m_in.readLine();
    m_code = line.trimmed();
    ++m_lineNum;
    if (m_code.isEmpty())
        return false;
    line = m_in.readLine();
    m_value = line.trimmed();
    ++m_lineNum;
    return true;
}

bool LiteralDxf::checkDxfFile()
{
    bool isDxf =
        readCodeValue() && m_code == QStringLiteral("0") && m_value == QStringLiteral("SECTION");
    if (isDxf)
        isDxf =
            readCodeValue() && m_code == QStringLiteral("2") && m_value == QStringLiteral("HEADER");
    if (!isDxf)
        message(formatError(m_file.fileName()));
    return isDxf;
}

bool LiteralDxf::readRequired(QSet<QString> required, QHash<QString, double>* numbers)
{
    const QSet<QString> all = required;
    while (!required.isEmpty()) {
        if (m_in.atEnd())
            return false;
        if (!readCodeValue())
            return false;
        if (all.contains(m_code)) {
            bool ok = false;
            (*numbers)[m_code] = m_value.toDouble(&ok);
            if (!ok)
                return false;
        }
        required.remove(m_code);
    }
    return true;
}

bool LiteralDxf::readPoint()
{
    QHash<QString, double> numbers;
    if (!readRequired({ QStringLiteral("10"), QStringLiteral("20") }, &numbers))
        return false;
    m_points.append(
        DefPoint{ QString(), numbers[QStringLiteral("10")], numbers[QStringLiteral("20")] });
    return true;
}

bool LiteralDxf::readText()
{
    QHash<QString, QString> hash;
    while (!m_in.atEnd()) {
        if (!readCodeValue())
            return false;
        if (m_code == QStringLiteral("0")) {
            m_unread = true;
            break;
        }
        hash[m_code] = m_value;
    }
    for (const char* key : { "10", "20", "1" }) {
        if (!hash.contains(QLatin1String(key)))
            return false;
    }
    bool okX = false;
    bool okY = false;
    double x = hash[QStringLiteral("10")].toDouble(&okX);
    double y = hash[QStringLiteral("20")].toDouble(&okY);
    if (!okX || !okY)
        return false;
    const QString def = decodeLiterally(hash[QStringLiteral("1")], m_codec);
    const int h = hash.value(QStringLiteral("72"), QStringLiteral("0")).toInt();
    const int v = hash.value(QStringLiteral("73"), QStringLiteral("0")).toInt();
    if ((h != 0 || v != 0) && hash.contains(QStringLiteral("11"))
        && hash.contains(QStringLiteral("21"))) {
        x = hash[QStringLiteral("11")].toDouble(&okX);
        y = hash[QStringLiteral("21")].toDouble(&okY);
        if (!okX || !okY)
            return false;
    }
    m_texts.append(DefPoint{ def, x, y });
    return true;
}

bool LiteralDxf::readLine()
{
    QHash<QString, double> numbers;
    if (!readRequired({ QStringLiteral("10"), QStringLiteral("20"), QStringLiteral("11"),
                          QStringLiteral("21") },
            &numbers))
        return false;
    objects().append(DefPolygon());
    objects().last().contours.append(QVector<DefPoint>());
    appendVert(numbers[QStringLiteral("10")], numbers[QStringLiteral("20")]);
    appendVert(numbers[QStringLiteral("11")], numbers[QStringLiteral("21")]);
    return true;
}

bool LiteralDxf::readVertex()
{
    QHash<QString, double> numbers;
    if (!readRequired({ QStringLiteral("10"), QStringLiteral("20") }, &numbers))
        return false;
    appendVert(numbers[QStringLiteral("10")], numbers[QStringLiteral("20")]);
    return true;
}

bool LiteralDxf::readPolyline()
{
    objects().append(DefPolygon());
    objects().last().contours.append(QVector<DefPoint>());
    if (m_in.atEnd())
        return false;
    bool closed = false;
    for (;;) {
        if (!readCodeValue())
            return false;
        if (m_code != QStringLiteral("0")) {
            if (m_code == QStringLiteral("70") && m_value == QStringLiteral("1"))
                closed = true;
        } else if (m_value == QStringLiteral("VERTEX")) {
            if (!readVertex())
                return false;
        } else {
            break;
        }
        if (m_in.atEnd())
            return false;
    }
    if (m_value != QStringLiteral("SEQEND"))
        return false;
    return closeContour(closed);
}

bool LiteralDxf::readLwpolyline()
{
    objects().append(DefPolygon());
    objects().last().contours.append(QVector<DefPoint>());
    const QSet<QString> both{ QStringLiteral("10"), QStringLiteral("20") };
    QSet<QString> required = both;
    qint64 count = 0;
    bool first = true;
    bool closed = false;
    double x = 0;
    double y = 0;
    bool ok = true;
    for (;;) {
        if (m_in.atEnd() || !ok)
            return false;
        if (!readCodeValue())
            return false;
        if (m_code == QStringLiteral("70"))
            closed = (m_value.toInt() & 1) != 0;
        if (m_code == QStringLiteral("90"))
            count = m_value.toInt(&ok);
        if (m_code == QStringLiteral("10"))
            x = m_value.toDouble(&ok);
        if (m_code == QStringLiteral("20"))
            y = m_value.toDouble(&ok);
        if (m_code == QStringLiteral("0"))
            return false;
        required.remove(m_code);
        if (!required.isEmpty())
            continue;
        if (first && count < 2)
            return false;
        appendVert(x, y);
        if (count == 1)
            break;
        --count;
        required = both;
        first = false;
    }
    return closeContour(closed);
}

bool LiteralDxf::closeContour(bool closed)
{
    QVector<DefPoint>& contour = lastContour();
    const bool result = contour.size() >= 2;
    if (result && closed && !samePlace(contour.first(), contour.last())) {
        const DefPoint copy = contour.first();
        contour.append(copy);
    }
    return result;
}

bool LiteralDxf::loadPoints()
{
    if (!checkDxfFile())
        return false;
    const QSet<QString> pointTypes{ QStringLiteral("INSERT"), QStringLiteral("POINT"),
        QStringLiteral("CIRCLE"), QStringLiteral("ELLIPSE") };
    m_texts.clear();
    bool inEntities = false;
    bool ok = true;
    while (!m_in.atEnd() && ok) {
        if (!readCodeValue())
            return failAtLine();
        while (m_code != QStringLiteral("0")) {
            if (m_in.atEnd())
                return true;
            if (!readCodeValue())
                return failAtLine();
        }
        if (m_value == QStringLiteral("SECTION")) {
            if (!readCodeValue())
                return failAtLine();
            inEntities = m_value == QStringLiteral("ENTITIES");
            continue;
        }
        if (!inEntities)
            continue;
        if (pointTypes.contains(m_value))
            ok = readPoint();
        else if (m_value == QStringLiteral("TEXT"))
            ok = readText();
    }
    return ok || failAtLine();
}

bool LiteralDxf::loadPolygons()
{
    if (!checkDxfFile())
        return false;
    updatePointsDefs();
    if (m_options.searchObjectDefs) {
        if (!m_options.searchPointDefs || !m_pointFile.isEmpty()) {
            m_texts.clear();
            loadTextsOnly();
        }
        filterObjectDefs();
    }
    if (m_in.atEnd())
        return true;
    bool inEntities = false;
    for (;;) {
        if (!readCodeValue())
            return failAtLine();
        if (m_code == QStringLiteral("0") && m_value == QStringLiteral("SECTION")) {
            if (!readCodeValue())
                return failAtLine();
            inEntities = m_value == QStringLiteral("ENTITIES");
        } else if (m_code == QStringLiteral("0") && inEntities) {
            const QString type = m_value;
            bool ok = true;
            bool isObject = true;
            if (type == QStringLiteral("LINE"))
                ok = readLine();
            else if (type == QStringLiteral("POLYLINE"))
                ok = readPolyline();
            else if (type == QStringLiteral("LWPOLYLINE"))
                ok = readLwpolyline();
            else
                isObject = false;
            if (!ok)
                return failAtLine();
            if (isObject)
                updateLastPolygonDef();
        }
        if (m_in.atEnd())
            return true;
    }
}

void LiteralDxf::updatePointsDefs()
{
    if (m_points.isEmpty() || m_texts.isEmpty())
        return;
    std::sort(m_texts.begin(), m_texts.end(), standsBefore);
    for (DefPoint& point : m_points) {
        const DefPoint* text = nearest(m_texts, point.x, point.y);
        if (text)
            point.def = text->def;
    }
}

bool LiteralDxf::loadTextsOnly()
{
    bool inEntities = false;
    bool ok = true;
    while (!m_in.atEnd() && ok) {
        if (!readCodeValue())
            return failAtLine();
        if (m_code != QStringLiteral("0"))
            continue;
        if (m_value == QStringLiteral("SECTION")) {
            if (!readCodeValue())
                return failAtLine();
            inEntities = m_value == QStringLiteral("ENTITIES");
        } else if (inEntities && m_value == QStringLiteral("TEXT")) {
            ok = readText();
        }
    }
    if (!ok)
        return failAtLine();
    std::sort(m_texts.begin(), m_texts.end(), standsBefore);
    m_file.seek(0);
    m_in.seek(0);
    return true;
}

void LiteralDxf::filterObjectDefs()
{
    QVector<DefPoint> others;
    for (const DefPoint& text : qAsConst(m_texts)) {
        if (!isPointNumberLiterally(text.def))
            others.append(text);
    }
    if (!others.isEmpty())
        m_texts = others;
}

void LiteralDxf::updateLastPolygonDef()
{
    QString def;
    if (m_options.searchObjectDefs) {
        const QPointF centroid = objects().last().centroid();
        const DefPoint* text = m_options.swapXY ? nearest(m_texts, centroid.y(), centroid.x())
                                                : nearest(m_texts, centroid.x(), centroid.y());
        if (text)
            def = text->def;
    }
    nameLastObject(def);
}

} // namespace

ImportOutcome importLiterally(
    const ImportOptions& options, const QString& objectFile, const QString& pointFile)
{
    ImportOutcome outcome;
    outcome.result = LiteralDxf(options, &outcome).importMap(objectFile, pointFile);
    return outcome;
}

QString decodeLiterally(const QString& text, const QTextCodec* codec)
{
    static const QRegularExpression escape(QStringLiteral("%%(\\d{3})"));
    QString result = text;
    result.replace(QStringLiteral("%%d"), QString(QChar(0x00B0)));
    result.replace(QStringLiteral("%%p"), QString(QChar(0x00B1)));
    result.replace(QStringLiteral("%%c"), QString(QChar(0x00D8)));

    QList<QRegularExpressionMatch> matches;
    QRegularExpressionMatchIterator it = escape.globalMatch(result);
    while (it.hasNext())
        matches << it.next();
    for (int i = matches.size() - 1; i >= 0; --i) {
        const QRegularExpressionMatch& match = matches.at(i);
        bool ok = false;
        const int number = match.captured(1).toInt(&ok, 10);
        if (!ok || number < 0 || number > 255)
            continue;
        const char byte = static_cast<char>(number);
        result.replace(match.capturedStart(0), match.capturedLength(0), codec->toUnicode(&byte, 1));
    }
    return result;
}

bool isPointNumberLiterally(const QString& def)
{
    static const QRegularExpression pointNumber(QStringLiteral("^[A-Za-zА-Яа-яЁё]?\\d+$"));
    return pointNumber.match(def).hasMatch();
}
