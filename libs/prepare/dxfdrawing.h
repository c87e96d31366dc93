#pragma once

#include "prepare/dxfentity.h"
#include "prepare/dxfrecords.h"
#include "prepare/foldednames.h"
#include "prepare/preparereport.h"

#include <functional>
#include <vector>

namespace prep {

/// A layer as the table of layers has it.
struct DxfLayer {
    bool frozen = false;
    bool off = false;
};

/// What is told of a block before its entities.
struct DxfBlockHead {
    std::string_view name;
    Vec3 base;
    bool external = false; ///< the entities are those of another file
    size_t entities = 0; ///< where the first of them stands
};

/// Where a block stands in a drawing. Blocks may be many and large, and are read where they are
/// needed.
struct DxfBlock {
    uint32_t position; ///< of its record
};

/// What stands in a drawing beside its entities, and where those are.
///
/// The bytes must outlive the drawing, and so must whatever is read from it: names and digits are
/// kept as views of them.
class DxfDrawing {
public:
    /// Called while a drawing is looked through, with the bytes that lie behind and all of them.
    using Scanned = std::function<void(qint64 bytes, qint64 whole)>;

    /// Looks for layers and blocks, wherever their sections stand.
    explicit DxfDrawing(std::string_view bytes, const Scanned& scanned = {});

    /// Hands all entities to `take`, in their order: take(records) is called with each of them as
    /// the current record.
    template <typename Take>
    void forEachEntity(Take take) const;
    /// The same for those of a block, the first of which stands at `entities`, until take(records)
    /// gives false.
    template <typename Take>
    void forEachOfBlock(size_t entities, Take take) const;

    /// The layer of that name, or null. Upper and lower case of ASCII letters are the same.
    const DxfLayer* layer(std::string_view name) const { return m_layers.find(name); }
    const DxfBlock* block(std::string_view name) const { return m_blocks.find(name); }
    DxfBlockHead head(const DxfBlock& block) const;

    /// The records from the one at `position` on; none behind the end.
    DxfRecords recordsAt(size_t position) const;
    /// What was passed over while reading.
    const DxfPairCursor& cursor() const { return m_records.cursor(); }

private:
    bool nextRecord(const Scanned& scanned);
    void readSection(const Scanned& scanned);
    void readLayer();
    void readBlock();
    void passSection(bool holdsEntities, const Scanned& scanned);
    template <typename Take>
    void readRecords(const Scanned& scanned, Take take);

    std::string_view m_bytes;
    DxfRecords m_records;
    FoldedNames<DxfLayer> m_layers;
    FoldedNames<DxfBlock> m_blocks;
    std::vector<uint32_t> m_entitySections; ///< positions of the records behind their starts
    bool m_hasSections = false;
};

/// Whether a record ends a section, or the drawing, or begins what only follows such an end.
inline bool endsSection(std::string_view type)
{
    return type == "ENDSEC" || type == "SECTION" || type == "EOF";
}

inline bool endsBlock(std::string_view type)
{
    return type == "ENDBLK" || type == "BLOCK" || endsSection(type);
}

template <typename Take>
void DxfDrawing::forEachEntity(Take take) const
{
    for (const size_t position : m_entitySections) {
        DxfRecords records = recordsAt(position);
        while (records.next() && !endsSection(records.type()))
            take(records);
    }
}

template <typename Take>
void DxfDrawing::forEachOfBlock(size_t entities, Take take) const
{
    DxfRecords records = recordsAt(entities);
    while (records.next() && !endsBlock(records.type())) {
        if (!take(records))
            return;
    }
}

} // namespace prep
