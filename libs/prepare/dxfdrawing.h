#pragma once

#include "prepare/dxfentity.h"
#include "prepare/dxfrecords.h"
#include "prepare/preparereport.h"

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

namespace prep {

/// A layer as the table of layers has it.
struct DxfLayer {
    bool frozen = false;
    bool off = false;
};

/// A block: entities to be inserted in many places.
struct DxfBlock {
    std::string_view name;
    Vec3 base;
    bool external = false; ///< the entities are those of another file
    std::vector<Entity> entities;
    std::map<std::pair<std::string_view, Note>, qint64> dropped; ///< what is no entity to use
};

/// What stands in a drawing beside its entities, and where those are.
///
/// The bytes must outlive the drawing: names and digits are kept as views of them.
class DxfDrawing {
public:
    /// Reads layers and blocks, wherever their sections stand.
    explicit DxfDrawing(std::string_view bytes);

    /// Hands all entities to `take`, in their order: take(records) is called with each of them as
    /// the current record.
    template <typename Take>
    void forEachEntity(Take take) const;

    /// The layer of that name, or null. Upper and lower case of ASCII letters are the same.
    const DxfLayer* layer(std::string_view name) const;
    const DxfBlock* block(std::string_view name) const;

    /// What was passed over while reading.
    const DxfPairCursor& cursor() const { return m_records.cursor(); }

private:
    void readSection();
    void readTables();
    void readLayer();
    void readBlocks();
    void readBlock();
    void readEntities(DxfBlock& block);
    void passSection(bool holdsEntities);
    template <typename Take>
    void readRecords(Take take);

    std::string_view m_bytes;
    DxfRecords m_records;
    std::unordered_map<std::string, DxfLayer> m_layers;
    std::unordered_map<std::string, DxfBlock> m_blocks;
    std::vector<size_t> m_entitySections; ///< positions of the records behind their starts
    bool m_hasSections = false;
};

/// Whether a record ends a section, or the drawing, or begins what only follows such an end.
inline bool endsSection(std::string_view type)
{
    return type == "ENDSEC" || type == "SECTION" || type == "EOF";
}

template <typename Take>
void DxfDrawing::forEachEntity(Take take) const
{
    for (const size_t position : m_entitySections) {
        DxfRecords records(m_bytes);
        records.moveTo(position);
        while (records.next() && !endsSection(records.type()))
            take(records);
    }
}

} // namespace prep
