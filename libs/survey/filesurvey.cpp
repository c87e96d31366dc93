#include "survey/filesurvey.h"

#include "survey/dxfsurvey.h"
#include "survey/mifsurvey.h"

#include <QFileInfo>

#include <algorithm>
#include <iterator>
#include <memory>

namespace {

template <typename FormatSurveyor>
std::unique_ptr<Surveyor> make(const Format& format, const ImportOptions& options, FileRole role)
{
    return std::make_unique<FormatSurveyor>(format, options, role);
}

/// How the files of a format are surveyed.
constexpr struct {
    const char* format;
    std::unique_ptr<Surveyor> (*make)(const Format&, const ImportOptions&, FileRole);
} surveyors[] = {
    { "mif", make<MifSurvey> },
    { "dxf", make<DxfSurvey> },
};

} // namespace

QByteArray likelyEncoding(const Format& format, const QString& fileName)
{
    EncodingGuess guess;
    QFile file(fileName);
    if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray start = file.read(EncodingGuess::sampleSize);
    const std::string_view sample(start.constData(), static_cast<size_t>(start.size()));
    const QByteArray mark = codecOfMark(sample);
    QByteArray wide = mark.isEmpty() ? utf16WithoutMark(sample) : mark;
    if (!wide.isEmpty())
        return wide;
    for (const QString& name : { fileName, format.companionFile(fileName) }) {
        ByteLines lines;
        if (name.isEmpty() || !lines.open(name, nullptr, &guess))
            continue;
        while (lines.next()) { }
    }
    return guess.codecName();
}

std::unique_ptr<Surveyor> makeSurveyor(
    const Format& format, const ImportOptions& options, FileRole role)
{
    const auto* const found = std::find_if(std::begin(surveyors), std::end(surveyors),
        [&format](const auto& row) { return format.id == QLatin1String(row.format); });
    Q_ASSERT(found != std::end(surveyors));
    return found->make(format, options, role);
}
