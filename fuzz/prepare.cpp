#include "import/dxfimport.h"
#include "import/mifimport.h"
#include "importing.h"
#include "prepare/preparedxf.h"
#include "prepare/preparemif.h"

#include <QBuffer>

namespace {

using prep::PrepareOptions;

/// What a preparation writes.
struct Prepared {
    QByteArray objects; ///< the drawing, or the MIF file
    QByteArray mid;
    prep::PrepareReport report;
    bool written = false;
};

/// The letters: r repairs, e explodes blocks, c draws circles, h draws hatches, v takes only what
/// is visible, n takes dimensions, j joins lines.
PrepareOptions optionsOf(const PackedInput& input)
{
    PrepareOptions options;
    options.level = input.has('r') ? prep::Level::Repair : prep::Level::Flatten;
    options.tolerance = 1;
    options.blocks = input.has('e') ? prep::BlockMode::Explode : prep::BlockMode::Auto;
    options.circles = input.has('c') ? prep::CircleMode::Contours : prep::CircleMode::Points;
    options.hatches = input.has('h');
    options.visibleOnly = input.has('v');
    options.dimensions = input.has('n');
    if (input.has('j'))
        options.join = 0.5;
    return options;
}

Prepared prepared(
    bool isDxf, const QByteArray& objects, const QByteArray& mid, const PrepareOptions& options)
{
    Prepared result;
    QBuffer out(&result.objects);
    QBuffer midOut(&result.mid);
    out.open(QIODevice::WriteOnly);
    midOut.open(QIODevice::WriteOnly);
    result.written = isDxf
        ? prep::prepareDxf(objects, options, out, result.report)
        : prep::prepareMif(
            { objects, mid.isNull() ? std::nullopt : std::optional<QByteArray>(mid) }, options, out,
            midOut, result.report);
    return result;
}

template <typename Importer>
void requireReadWhole(const TempFiles& folder, const QString& name, const Prepared& result)
{
    ImportOptions options;
    options.searchPointDefs = true;
    options.searchObjectDefs = true;
    options.encoding = result.report.encoding;
    Importer importer;
    prepare(importer, options, writeText(folder, name, result.objects), {});
    const ImportOutcome outcome = run(importer);
    require(outcome.messages.isEmpty(), "what was prepared is imported without a message");
    require(vertexCount(outcome.objects) <= result.objects.count('\n') + outcome.objects.size() + 1,
        "vertices do not outnumber lines");
}

} // namespace

/// The texts: with the letter d a drawing, else a MIF file and, if there is one, its MID file.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TempFiles folder;
    constexpr int most = 1 << 28;
    const PackedInput input(data, size);
    const bool isDxf = input.has('d');
    PrepareOptions options = optionsOf(input);
    const Prepared once = prepared(isDxf, input.text(0), input.text(1), options);
    require(once.written == once.report.failure.isEmpty(), "a failure is told");
    require(once.objects.size() < most && once.mid.size() < most, "the result is bounded");
    if (!once.written)
        return 0;
    if (isDxf) {
        requireReadWhole<DxfImport>(folder, QStringLiteral("plan.dxf"), once);
    } else {
        writeText(folder, QStringLiteral("plan.mid"), once.mid);
        requireReadWhole<MifImport>(folder, QStringLiteral("plan.mif"), once);
    }
    // What told the encoding may have been left out.
    options.fromEncoding = once.report.encoding;
    const Prepared twice = prepared(isDxf, once.objects, once.mid, options);
    require(twice.written && twice.objects == once.objects && twice.mid == once.mid,
        "what was prepared stays as it is");
    return 0;
}
