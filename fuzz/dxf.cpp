#include "import/dxfimport.h"

#include "importing.h"
#include "literal/literaldxfimport.h"

/// The texts: the drawing, and with the letter f that of the points.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TempFiles folder;
    const PackedInput input(data, size);
    const QString objects = writeText(folder, QStringLiteral("plan.dxf"), input.text(0));
    const QString points = writeText(folder, QStringLiteral("points.dxf"), input.text(1));
    requireSoundImport<DxfImport, literal::DxfImport>(
        input.options(), objects, input.has('f') ? points : QString(), input.text(0));
    return 0;
}
