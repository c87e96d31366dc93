#pragma once

#include <QColor>
#include <QFont>

inline const QColor planLine(40, 70, 120);
inline const QColor planArea(40, 70, 120, 44);
inline const QColor planRed(208, 0, 0);
inline const QColor planRedArea(208, 0, 0, 44);
inline const QColor planGrey(120, 120, 120);

/// The colours of a plan; those of paper unless others are given.
struct PlanColors {
    QColor line = planLine;
    QColor area = planArea;
    QColor red = planRed;
    QColor redArea = planRedArea;
    QColor grey = planGrey;
    QColor text = Qt::black;
    QColor paper = Qt::white; ///< what the plan is drawn on
};

/// The font of names: bold for objects.
inline QFont planFont(bool bold)
{
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setStyleHint(QFont::SansSerif);
    font.setPixelSize(bold ? 14 : 11);
    font.setBold(bold);
    return font;
}
