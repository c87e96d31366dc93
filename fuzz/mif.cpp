#include "import/mifimport.h"

#include "importing.h"
#include "literal/literalmifimport.h"

/// The texts: the MIF file, its MID file, and with the letter f those of the points.
extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static const TempFiles folder;
    const PackedInput input(data, size);
    const QString objects = writeText(folder, QStringLiteral("plan.mif"), input.text(0));
    writeText(folder, QStringLiteral("plan.mid"), input.text(1));
    const QString points = writeText(folder, QStringLiteral("points.mif"), input.text(2));
    writeText(folder, QStringLiteral("points.mid"), input.text(3));
    requireSoundImport<MifImport, literal::MifImport>(
        input.options(), objects, input.has('f') ? points : QString(), input.text(0));
    return 0;
}
