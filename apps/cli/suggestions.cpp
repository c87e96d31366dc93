#include "suggestions.h"

#include <QVector>

#include <algorithm>
#include <numeric>

namespace {

/// How many letters must be put in, left out or changed to make `b` of `a`.
int distance(const QString& a, const QString& b)
{
    QVector<int> row(b.size() + 1);
    std::iota(row.begin(), row.end(), 0);
    for (int i = 1; i <= a.size(); ++i) {
        int diagonal = row[0];
        row[0] = i;
        for (int j = 1; j <= b.size(); ++j) {
            const int changed = diagonal + (a.at(i - 1) == b.at(j - 1) ? 0 : 1);
            diagonal = row[j];
            row[j] = std::min({ changed, row[j] + 1, row[j - 1] + 1 });
        }
    }
    return row.last();
}

} // namespace

QString nearestName(const QString& typed, const QStringList& names)
{
    constexpr int longest = 64;
    if (typed.size() > longest)
        return {};
    int least = std::max(1, typed.size() / 3);
    QString nearest;
    for (const QString& name : names) {
        // A beginning of a name is as good as a slip.
        const int steps = typed.size() > 2 && name.startsWith(typed) ? 1 : distance(typed, name);
        if (steps <= least && (nearest.isEmpty() || steps < least)) {
            least = steps;
            nearest = name;
        }
    }
    return nearest;
}

QString suggestionText(const QString& typed, const QStringList& names)
{
    const QString nearest = nearestName(typed, names);
    return nearest.isEmpty() ? QString() : QStringLiteral("; возможно, «%1»").arg(nearest);
}
