#pragma once

#include "formtable.h"

#include <QPageLayout>
#include <QSizeF>

#include <atomic>

class QPagedPaintDevice;
class QPainter;

/// The length and the direction of a side, from one vertex to the next.
struct SideMeasures {
    double length; ///< in units of the coordinates
    double bearing; ///< in degrees from the north to the east, from 0 below 360
};
SideMeasures measureSide(double north, double east, double nextNorth, double nextEast);
/// A bearing in whole degrees and tenths of minutes.
QString bearingText(double degrees);

/// A sheet to hand in: title, plan, and for each object its area and a table of its coordinates
/// with the lengths and bearings of its sides.
class Sheet {
public:
    /// `objects` are the rows of the table to show. `northingFirst`: the first coordinate of the
    /// objects runs to the north.
    Sheet(const FormTable& table, const QVector<int>& objects, bool northingFirst, QString title);

    /// The page that it is made for.
    static QPageLayout page();
    /// Paints the pages; false when it was cancelled or the device cannot be painted on.
    bool paint(QPagedPaintDevice& device, const std::atomic_bool& cancelled);

private:
    bool drawObject(const DefPolygon& object);
    bool drawContour(const QVector<DefPoint>& contour, bool isFirst);
    void drawTableHead();
    void drawRow(const QStringList& cells, bool bold);
    void drawLine(const QString& text, bool bold, double size);
    bool needRoom(double height);
    /// Room for a row; on another page below the titles of the table.
    bool needTableRow();
    void startPage();
    double north(const DefPoint& point) const { return m_northingFirst ? point.x : point.y; }
    double east(const DefPoint& point) const { return m_northingFirst ? point.y : point.x; }
    QString number(double value) const;

    const int m_decimals;
    const bool m_northingFirst;
    const QString m_title;
    const QString m_tableName;
    QVector<DefPolygon> m_objects;
    QPainter* m_painter = nullptr;
    QPagedPaintDevice* m_device = nullptr;
    const std::atomic_bool* m_cancelled = nullptr;
    QSizeF m_page; ///< in points
    double m_y = 0; ///< where the next line starts
    int m_number = 0; ///< of the page
    int m_row = 0; ///< of the object
};
