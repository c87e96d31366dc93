#include "formtable.h"

#include <QHash>

#include <algorithm>

bool isArea(const DefPolygon& object)
{
    const auto isClosed = [](const QVector<DefPoint>& contour) {
        return contour.size() > 2 && coincide(contour.first(), contour.last());
    };
    return !object.contours.isEmpty()
        && std::all_of(object.contours.cbegin(), object.contours.cend(), isClosed);
}

void FormTable::take(const FormTable& added)
{
    QHash<QString, int> rows;
    if (added.update) {
        for (int i = objects.size() - 1; i >= 0; --i)
            rows.insert(objects.at(i).def, i);
    }
    for (int i = 0; i < added.objects.size(); ++i) {
        const auto row = rows.constFind(added.objects.at(i).def);
        if (row != rows.constEnd()) {
            objects[*row] = added.objects.at(i);
            others[*row] = added.others.at(i);
            // Another row of this designation is one more object, no second version of this one.
            rows.erase(row);
        } else {
            objects.append(added.objects.at(i));
            others.append(added.others.at(i));
        }
    }
    decimals = std::max(decimals, added.decimals);
}

int FormTable::catalogueColumns() const
{
    int count = std::max({ columns.nColNum, columns.xColNum, columns.yColNum }) + 1;
    for (const OtherCells& cells : others) {
        const QStringList* before = nullptr;
        for (const QStringList& point : cells.points) {
            // Rows alike share their cells.
            if (!before || !point.isSharedWith(*before))
                count = std::max(count, point.size());
            before = &point;
        }
    }
    return count;
}

qint64 FormTable::vertexCount() const
{
    qint64 count = 0;
    for (const DefPolygon& object : objects) {
        for (const QVector<DefPoint>& contour : object.contours)
            count += contour.size();
    }
    return count;
}
