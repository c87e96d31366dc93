#include "survey/filesurvey.h"

#include "survey/dxfsurvey.h"
#include "survey/mifsurvey.h"

#include <memory>

namespace {

template <typename FormatSurveyor>
std::unique_ptr<Surveyor> make(
    const Format& format, const ImportOptions& options, FileRole role, const ImportRun& run)
{
    return std::make_unique<FormatSurveyor>(format, options, role, run);
}

/// How the files of a format are surveyed.
constexpr struct {
    const char* format;
    std::unique_ptr<Surveyor> (*make)(
        const Format&, const ImportOptions&, FileRole, const ImportRun&);
} surveyors[] = {
    { "mif", make<MifSurvey> },
    { "dxf", make<DxfSurvey> },
};

} // namespace

FileSurvey surveyFile(
    const Format& format, const ImportOptions& options, FileRole role, const ImportRun& run)
{
    for (const auto& row : surveyors) {
        if (format.id == QLatin1String(row.format))
            return row.make(format, options, role, run)->survey();
    }
    return {};
}
