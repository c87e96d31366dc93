#include "plan/planfile.h"
#include "plandrawer.h"

#include <QGuiApplication>

namespace {

class QtPlanDrawer : public PlanDrawer {
public:
    std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) const override
    {
        // Text is drawn without a display, and must be so where there is one too.
        qputenv("QT_QPA_PLATFORM", "offscreen");
        // Where nobody is logged in Qt warns of things that a picture has no need of.
        qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
        auto application = std::make_unique<QGuiApplication>(argc, argv);
        qInstallMessageHandler(nullptr);
        return application;
    }

    bool draw(QIODevice& device, const QVector<DefPolygon>& objects,
        const PlanRequest& request) const override
    {
        PlanPainter plan(objects, request.axes);
        plan.objectDrawn = request.objectDrawn;
        const QSize size = request.fits ? plan.pageWithin(request.size) : request.size;
        return writePlan(device, request.format, size, plan, request.title);
    }
};

} // namespace

extern "C" Q_DECL_EXPORT const PlanDrawer* importgeometryPlanDrawer()
{
    static const QtPlanDrawer drawer;
    return &drawer;
}
