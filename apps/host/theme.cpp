#include "theme.h"

#include <QPalette>

namespace {

QColor mixed(const QColor& base, const QColor& other, double share)
{
    const auto part = [share](int a, int b) { return qRound(a + (b - a) * share); };
    return { part(base.red(), other.red()), part(base.green(), other.green()),
        part(base.blue(), other.blue()) };
}

} // namespace

bool isDark(const QPalette& palette)
{
    return palette.color(QPalette::Text).lightnessF() > palette.color(QPalette::Base).lightnessF();
}

QColor conflictBackground(const QPalette& palette)
{
    constexpr double onLight = 35.0 / 255; // (255, 220, 220) on white
    return mixed(palette.color(QPalette::Base), Qt::red, isDark(palette) ? 0.4 : onLight);
}

QColor separatorBackground(const QPalette& palette)
{
    return mixed(
        palette.color(QPalette::Base), palette.color(QPalette::Text), isDark(palette) ? 0.1 : 0.06);
}

PlanColors planColors(const QPalette& palette)
{
    PlanColors colors;
    colors.paper = palette.color(QPalette::Base);
    if (!isDark(palette))
        return colors;
    colors.line = QColor(140, 180, 240);
    colors.area = QColor(140, 180, 240, 40);
    colors.red = QColor(255, 110, 110);
    colors.redArea = QColor(255, 110, 110, 50);
    colors.grey = QColor(150, 150, 150);
    colors.text = palette.color(QPalette::Text);
    return colors;
}
