#include "status.h"

#include <exception>
#include <new>

StatusFunc statusFunc = nullptr;

void setStatusFunc(StatusFunc f)
{
    statusFunc = f;
}

void showStatus(const QString& message) noexcept
{
    if (!statusFunc)
        return;
    try {
        statusFunc(message);
    } catch (...) {
        // There is nobody left to tell: the callback itself is what failed.
        return;
    }
}

void showCurrentException() noexcept
{
    try {
        throw;
    } catch (const std::bad_alloc&) {
        showStatus(QStringLiteral("Ошибка. Недостаточно памяти для обработки данных."));
    } catch (const std::exception& e) {
        showStatus(QStringLiteral("Ошибка обработки данных: %1").arg(QString::fromUtf8(e.what())));
    } catch (...) {
        showStatus(QStringLiteral("Ошибка обработки данных."));
    }
}
