#include "geometry/conflicts.h"
#include "import/formats.h"
#include "importing.h"
#include "survey/report.h"

namespace {

void requireSoundSurvey(const FileSurvey& survey, int lineCount)
{
    for (const auto& [name, kind] : survey.kinds) {
        require(!name.empty(), "a kind has a name");
        require(kind.count >= 0 && kind.read >= 0 && kind.count <= lineCount,
            "of each kind there are no more than lines");
    }
    for (const FoundCause& found : survey.causes) {
        require(!causeId(found.cause).isEmpty(), "a cause has a name");
        require(!causeText(found).isEmpty() && !remedyText(found).isEmpty(),
            "a cause has a text and a remedy");
        require(found.line >= 0 && found.line <= lineCount + 1, "a cause is in the file");
    }
}

void requireSoundFindings(const QVector<DefPolygon>& objects, const QVector<Shape>& shapes)
{
    for (const PointConflict& conflict : findPointConflicts(objects, allFindings).listed) {
        require(conflict.places.total >= 2, "a conflict has two places");
        require(conflictingPoints(objects.at(conflict.object.object)).count(true) > 0,
            "the catalogue paints the conflict");
    }
    const QBitArray duplicates = duplicateDefs(objects);
    int marked = 0;
    for (const DuplicateDef& duplicate : findDuplicateDefs(objects, allFindings).listed) {
        marked += static_cast<int>(duplicate.objects.total);
        for (const int object : duplicate.objects.listed)
            require(duplicates.at(object), "the list paints the duplicate");
    }
    require(marked == duplicates.count(true), "all that the list paints is found");
    for (const IncompleteObject& incomplete :
        findIncompleteObjects(objects, shapes, allFindings).listed)
        require(incomplete.vertices < incomplete.needed, "an incomplete contour lacks vertices");
    guessAxisOrder(objects);
}

} // namespace

/// The texts: with the letter d a drawing, else a MIF file and its MID file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TempFiles folder;
    const PackedInput input(data, size);
    ImportOptions options = input.options();
    const bool isDxf = input.has('d');
    options.objectFileName = writeText(
        folder, isDxf ? QStringLiteral("plan.dxf") : QStringLiteral("plan.mif"), input.text(0));
    if (input.has('f')) {
        options.pointFileName =
            writeText(folder, isDxf ? QStringLiteral("p.dxf") : QStringLiteral("p.mif"), "");
    }
    if (!isDxf)
        writeText(folder, QStringLiteral("plan.mid"), input.text(1));

    const Format& format = *formatOfFile(options.objectFileName);
    ImportRun import;
    const Report report = makeReport(format, options, GeometryInfo(), listedFindings, import);
    // Lines may end at a line feed of any encoding, and the second line of a pair may be missing.
    const int lineCount = input.text(0).count('\n') + input.text(1).count('\n') + 3;
    for (const FileSurvey& survey : report.surveys)
        requireSoundSurvey(survey, lineCount);
    require(report.objectCount == import.objects.size(), "the report tells what was imported");
    requireSoundFindings(import.objects, import.shapes);
    return 0;
}
