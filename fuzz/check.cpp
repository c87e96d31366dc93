#include "geometry/conflicts.h"
#include "import/dxfimport.h"
#include "import/mifimport.h"
#include "importing.h"
#include "survey/filesurvey.h"
#include "survey/findings.h"

namespace {

template <typename Importer>
ImportOutcome importAlone(const ImportOptions& options, const QString& fileName)
{
    Importer importer;
    prepare(importer, options, fileName);
    return run(importer);
}

void requireSoundSurvey(const FileSurvey& survey, const QByteArray& text)
{
    // The second line of the last pair may be missing.
    require(survey.lineCount >= 0 && survey.lineCount <= text.count('\n') + 2,
        "no more lines are counted than there are");
    for (const auto& kind : survey.kinds) {
        require(kind.second.read >= 0 && kind.second.read <= kind.second.count
                && kind.second.count <= survey.lineCount,
            "of each kind no more are read than there are");
    }
    for (const FoundCause& found : survey.causes) {
        require(!causeId(found.cause).isEmpty(), "a cause has a name");
        require(found.line >= 0 && found.line <= survey.lineCount + 1, "a cause is in the file");
    }
}

void requireSoundFindings(const QVector<DefPolygon>& objects, const QVector<Shape>& shapes)
{
    for (const PointConflict& conflict : findPointConflicts(objects)) {
        require(conflict.places.size() >= 2, "a conflict has two places");
        require(conflictingPoints(objects.at(conflict.object)).count(true) > 0,
            "the catalogue paints the conflict");
    }
    const QBitArray duplicates = duplicateDefs(objects);
    int marked = 0;
    for (const DuplicateDef& duplicate : findDuplicateDefs(objects)) {
        marked += duplicate.objects.size();
        for (const int object : duplicate.objects)
            require(duplicates.at(object), "the list paints the duplicate");
    }
    require(marked == duplicates.count(true), "all that the list paints is found");
    for (const IncompleteObject& incomplete : findIncompleteObjects(objects, shapes))
        require(incomplete.vertices < incomplete.needed, "an incomplete contour lacks vertices");
    guessAxisOrder(objects);
}

} // namespace

/// The texts: with the letter d a drawing, else a MIF file and its MID file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TempFiles folder;
    const PackedInput input(data, size);
    const ImportOptions options = input.options();
    SurveyOptions told;
    told.encoding = options.encoding;
    told.searchObjectDefs = options.searchObjectDefs;
    told.searchPointDefs = options.searchPointDefs;
    told.readsPoints = !input.has('f');
    const bool isDxf = input.has('d');
    const QString fileName = writeText(
        folder, isDxf ? QStringLiteral("plan.dxf") : QStringLiteral("plan.mif"), input.text(0));
    if (!isDxf)
        writeText(folder, QStringLiteral("plan.mid"), input.text(1));

    FileSurvey survey = isDxf ? surveyDxf(fileName, told) : surveyMif(fileName, told);
    const ImportOutcome outcome = isDxf ? importAlone<DxfImport>(options, fileName)
                                        : importAlone<MifImport>(options, fileName);
    explainEmptyResult(survey);
    requireSoundSurvey(survey, input.text(0));
    requireSoundFindings(outcome.objects, survey.shapes);
    return 0;
}
