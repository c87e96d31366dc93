#include "import/importfailure.h"

#include <QDir>

#include <algorithm>
#include <iterator>

namespace {

/// The message of each kind; %1 is the number or, where there is none, the name of the file.
constexpr struct {
    FailureKind kind;
    const char* text;
} texts[] = {
    { FailureKind::FileNotOpened, "Ошибка открытия файла %1" },
    { FailureKind::NotMif, "Ошибка. Файл %1 не соответствует формату MIF" },
    { FailureKind::MidNotOpened, "Ошибка открытия MID файла %1" },
    { FailureKind::PointCoordinates, "Ошибка чтения координат точки из строки: %1" },
    { FailureKind::PointDesignation, "Ошибка чтения обозначения точки из строки: %1" },
    { FailureKind::ObjectData, "Ошибка чтения данных объекта из строки: %1" },
    { FailureKind::ObjectDesignation, "Ошибка чтения обозначения объекта из строки: %1" },
    { FailureKind::Collection, "Ошибка в стоке %1. Коллекции в MIF файлах не поддерживаются." },
    { FailureKind::Line, "Ошибка чтения линии из строки: %1" },
    { FailureKind::Polyline, "Ошибка чтения полилинии из строки: %1" },
    { FailureKind::Region, "Ошибка чтения области из строки: %1" },
    { FailureKind::NotDxf, "Ошибка. Файл %1 не соответствует формату DXF" },
    { FailureKind::DxfEntity, "Ошибка чтения DXF файла в строке: %1" },
};

} // namespace

QString ImportFailure::text() const
{
    const auto row = std::find_if(std::begin(texts), std::end(texts),
        [this](const auto& candidate) { return candidate.kind == kind; });
    const QString text = QString::fromUtf8(row->text);
    return number > 0 ? text.arg(number) : text.arg(QDir::toNativeSeparators(fileName));
}
