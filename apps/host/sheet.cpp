#include "sheet.h"

#include "export/measures.h"
#include "plan/plancanvas.h"
#include "plan/planpainter.h"

#include <QFontMetricsF>
#include <QLocale>
#include <QPagedPaintDevice>
#include <QPainter>

#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr double lineHeight = 14;
constexpr double fontSize = 9.5;
constexpr double footer = 20;
/// Shares of the width of the page.
constexpr double columns[] = { 0.08, 0.2, 0.2, 0.2, 0.15, 0.17 };

QFont sheetFont(double size, bool bold)
{
    QFont font = planFont(bold);
    // The painter counts in points; a font that counted in points itself would be scaled twice.
    font.setPixelSize(qRound(size));
    return font;
}

} // namespace

SideMeasures measureSide(double north, double east, double nextNorth, double nextEast)
{
    constexpr double degrees = 180 / M_PI;
    const double toNorth = nextNorth - north;
    const double toEast = nextEast - east;
    const double bearing = std::atan2(toEast, toNorth) * degrees;
    return { std::hypot(toNorth, toEast), bearing < 0 ? bearing + 360 : bearing };
}

QString bearingText(double degrees)
{
    if (!std::isfinite(degrees))
        return {};
    // In tenths of minutes; what is rounded up to the full circle is none at all.
    const auto tenths = static_cast<int>(std::lround(degrees * 600) % 216000);
    return QStringLiteral("%1°%2,%3′")
        .arg(tenths / 600)
        .arg(tenths % 600 / 10, 2, 10, QLatin1Char('0'))
        .arg(tenths % 10);
}

Sheet::Sheet(const FormTable& table, const QVector<int>& objects, bool northingFirst, QString title)
    : m_decimals(table.decimals)
    , m_northingFirst(northingFirst)
    , m_title(std::move(title))
    , m_tableName(table.name)
{
    for (const int object : objects)
        m_objects.append(table.objects.at(object));
}

QPageLayout Sheet::page()
{
    return QPageLayout(QPageSize(QPageSize::A4), QPageLayout::Portrait, QMarginsF(20, 15, 15, 15),
        QPageLayout::Millimeter);
}

QString Sheet::number(double value) const
{
    QLocale locale;
    locale.setNumberOptions(QLocale::OmitGroupSeparator);
    return locale.toString(value, 'f', m_decimals);
}

bool Sheet::paint(QPagedPaintDevice& device, const std::atomic_bool& cancelled)
{
    QPainter painter(&device);
    if (!painter.isActive())
        return false;
    constexpr double pointsPerInch = 72;
    const double scale = device.logicalDpiX() / pointsPerInch;
    m_painter = &painter;
    m_device = &device;
    m_cancelled = &cancelled;
    m_page = QSizeF(device.width(), device.height()) / scale;
    m_number = 0;
    painter.scale(scale, scale);
    // The plan first: its canvas wipes what is there.
    constexpr double planTop = 34;
    const QSizeF plan(m_page.width(), m_page.height() * 0.55);
    painter.save();
    painter.translate(0, planTop);
    // Letters of a picture on a screen are too large for paper.
    constexpr double reduced = 0.72;
    painter.scale(reduced, reduced);
    PainterCanvas canvas(painter);
    PlanPainter(m_objects, PlanAxes{ m_northingFirst, true, true })
        .paint(canvas, plan / reduced, m_tableName);
    painter.restore();
    startPage();
    drawLine(m_title, true, 14);
    m_y = planTop + plan.height() + lineHeight;
    return std::all_of(m_objects.cbegin(), m_objects.cend(),
        [this](const DefPolygon& object) { return drawObject(object); });
}

void Sheet::startPage()
{
    ++m_number;
    m_y = 0;
    m_painter->setPen(Qt::black);
    m_painter->setFont(sheetFont(8, false));
    m_painter->drawText(QRectF(0, m_page.height() - footer, m_page.width(), footer),
        Qt::AlignRight | Qt::AlignBottom, QStringLiteral("Лист %1").arg(m_number));
}

bool Sheet::needRoom(double height)
{
    if (*m_cancelled)
        return false;
    if (m_y + height <= m_page.height() - footer)
        return true;
    if (!m_device->newPage())
        return false;
    startPage();
    return true;
}

bool Sheet::needTableRow()
{
    const int page = m_number;
    if (!needRoom(lineHeight))
        return false;
    if (m_number != page)
        drawTableHead();
    return true;
}

void Sheet::drawLine(const QString& text, bool bold, double size)
{
    const QFont font = sheetFont(size, bold);
    const double height = lineHeight * size / fontSize;
    m_painter->setPen(Qt::black);
    m_painter->setFont(font);
    m_painter->drawText(QRectF(0, m_y, m_page.width(), height), Qt::AlignLeft | Qt::AlignVCenter,
        QFontMetricsF(font).elidedText(text, Qt::ElideRight, m_page.width()));
    m_y += height;
}

void Sheet::drawRow(const QStringList& cells, bool bold)
{
    const QFont font = sheetFont(fontSize, bold);
    const QFontMetricsF metrics(font);
    m_painter->setFont(font);
    double x = 0;
    for (int i = 0; i < cells.size(); ++i) {
        const QRectF cell(x, m_y, columns[i] * m_page.width(), lineHeight);
        const QRectF inside = cell.adjusted(3, 0, -3, 0);
        m_painter->setPen(QPen(Qt::gray, 0.4));
        m_painter->drawRect(cell);
        m_painter->setPen(Qt::black);
        const bool isText = i == 1 || bold;
        const int side = isText ? Qt::AlignLeft : Qt::AlignRight;
        m_painter->drawText(inside, Qt::AlignVCenter | side,
            metrics.elidedText(cells.at(i), Qt::ElideRight, inside.width()));
        x = cell.right();
    }
    m_y += lineHeight;
}

void Sheet::drawTableHead()
{
    drawRow({ QStringLiteral("№"), QStringLiteral("Точка"), QStringLiteral("X"),
                QStringLiteral("Y"), QStringLiteral("Длина, м"), QStringLiteral("Дир. угол") },
        true);
}

bool Sheet::drawObject(const DefPolygon& object)
{
    constexpr int together = 5; // the head of a table and its first rows
    if (!needRoom(together * lineHeight))
        return false;
    const ObjectShape shape(object, isArea(object), m_northingFirst);
    m_y += lineHeight / 2;
    drawLine(QStringLiteral("Объект %1").arg(object.def), true, 11);
    drawLine(shape.isArea ? QStringLiteral("Площадь %1 кв. м, периметр %2 м")
                                .arg(number(shape.area), number(shape.perimeter))
                          : QStringLiteral("Длина %1 м").arg(number(shape.perimeter)),
        false, fontSize);
    drawTableHead();
    m_row = 0;
    for (int i = 0; i < object.contours.size(); ++i) {
        if (!drawContour(object.contours.at(i), i == 0))
            return false;
    }
    return true;
}

bool Sheet::drawContour(const QVector<DefPoint>& contour, bool isFirst)
{
    if (!isFirst && needTableRow())
        drawRow({ QString(), QString(), QString(), QString(), QString(), QString() }, false);
    for (int i = 0; i < contour.size(); ++i) {
        if (!needTableRow())
            return false;
        const DefPoint& point = contour.at(i);
        QStringList cells{ QString::number(++m_row), point.def, number(north(point)),
            number(east(point)), QString(), QString() };
        if (i + 1 < contour.size()) {
            const DefPoint& next = contour.at(i + 1);
            const SideMeasures side =
                measureSide(north(point), east(point), north(next), east(next));
            cells[4] = number(side.length);
            cells[5] = side.length > 0 ? bearingText(side.bearing) : QString();
        }
        drawRow(cells, false);
    }
    return true;
}
