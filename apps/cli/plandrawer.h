#pragma once

#include "geometry/defpolygon.h"
#include "plan/planrequest.h"

#include <QCoreApplication>

#include <memory>

class QIODevice;

/// What draws plans. It stands in a library of its own that only `plan` loads: Qt Gui takes as long
/// to load as a small file takes to be read, checked and written.
class PlanDrawer {
public:
    virtual ~PlanDrawer() = default;

    /// The program's application object, without which no text can be drawn. It needs no display.
    virtual std::unique_ptr<QCoreApplication> makeApplication(int& argc, char** argv) const = 0;

    /// Writes a plan of the objects to the device. False where there is no memory for the picture;
    /// what the device reports is left to its owner.
    virtual bool draw(QIODevice& device, const QVector<DefPolygon>& objects,
        const PlanRequest& request) const = 0;
};

/// The name of the one function of the library, which takes nothing and gives a PlanDrawer*.
constexpr char planDrawerFunction[] = "importgeometryPlanDrawer";

/// The drawer of the library that stands beside the program or was installed with it; null where
/// there is none, or not the libraries that it needs. The first call wants an application object.
const PlanDrawer* planDrawer();
