#pragma once

#include <QSize>
#include <QString>

#include <functional>

/// Which coordinate of the objects runs where.
struct PlanAxes {
    bool swapped = false; ///< the first coordinate runs upwards and the second one to the right
    bool isNorthUp = false; ///< the north is above, as far as the coordinates tell
    bool isXUp = false; ///< X names what runs upwards, whichever coordinate of the objects it is
};

/// What a plan is written as.
enum class PlanFormat { Svg, Png };

/// What a plan is to be.
struct PlanRequest {
    PlanFormat format = PlanFormat::Svg;
    PlanAxes axes;
    QSize size; ///< of the picture, in pixels
    bool fits = false; ///< the picture takes the shape of the objects and is no larger than `size`
    QString title;
    std::function<void()> objectDrawn; ///< called behind each object; may be empty
};
