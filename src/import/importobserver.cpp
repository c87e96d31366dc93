#include "import/importobserver.h"

#include "status.h"

ImportObserver::~ImportObserver() = default;

void ImportObserver::passStarted(ImportPass, const QString&) { }

void ImportObserver::entityRead(QLatin1String) { }

void ImportObserver::objectBuilt(QLatin1String, bool, bool) { }

void ImportObserver::objectsNamed(int) { }

void ImportObserver::failed(const ImportFailure& failure)
{
    showStatus(failure.text());
}
