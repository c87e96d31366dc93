#include "plan/planfile.h"

#include "plan/plancanvas.h"
#include "plan/planpainter.h"

#include <QImage>
#include <QImageWriter>
#include <QPainter>

bool writePlan(QIODevice& device, PlanFormat format, const QSize& size, PlanPainter& plan,
    const QString& title)
{
    if (format == PlanFormat::Svg) {
        SvgCanvas canvas(device, size, planText(title));
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
