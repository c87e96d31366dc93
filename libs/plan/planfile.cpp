#include "plan/planfile.h"

#include "plan/plancanvas.h"
#include "plan/planpainter.h"

#include <QImage>
#include <QImageWriter>
#include <QPainter>

bool writePlan(QIODevice& device, PlanFormat format, const QSize& size,
    const QVector<DefPolygon>& objects, const QString& title)
{
    PlanPainter plan(objects);
    if (format == PlanFormat::Svg) {
        SvgCanvas canvas(device, size, title);
        plan.paint(canvas, size, title);
        return true;
    }
    QImage image(size, QImage::Format_RGB32);
    if (image.isNull())
        return false;
    {
        QPainter painter(&image);
        PainterCanvas canvas(painter);
        plan.paint(canvas, size, title);
    }
    QImageWriter(&device, "png").write(image);
    return true;
}
