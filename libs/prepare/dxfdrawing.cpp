#include "prepare/dxfdrawing.h"

#include "prepare/dxffields.h"

#include <algorithm>

namespace prep {

DxfDrawing::DxfDrawing(std::string_view bytes, const Scanned& scanned)
    : m_bytes(bytes)
    , m_records(bytes)
{
    while (nextRecord(scanned)) {
        if (m_records.type() == "SECTION")
            readSection(scanned);
        else if (!m_hasSections && m_entitySections.empty() && !endsSection(m_records.type()))
            // Entities without any section around them.
            m_entitySections.push_back(static_cast<uint32_t>(m_records.position()));
    }
    m_layers.settle();
    m_blocks.settle();
    if (scanned)
        scanned(static_cast<qint64>(bytes.size()), static_cast<qint64>(bytes.size()));
}

DxfRecords DxfDrawing::recordsAt(size_t position) const
{
    DxfRecords records(m_bytes);
    records.moveTo(std::min(position, m_bytes.size()));
    return records;
}

DxfBlockHead DxfDrawing::head(const DxfBlock& block) const
{
    constexpr int externalFlags = 4 | 8;
    DxfRecords records = recordsAt(block.position);
    records.next();
    DxfFields fields;
    fields.readAll(records);
    return { fields.text(2), fields.vec(10), (fields.whole(70) & externalFlags) != 0,
        records.nextPosition() };
}

/// Hands the records of a section to `take`, up to the one that ends it.
template <typename Take>
void DxfDrawing::readRecords(const Scanned& scanned, Take take)
{
    while (nextRecord(scanned)) {
        if (endsSection(m_records.type())) {
            // The end of the section may be missing.
            if (m_records.type() != "ENDSEC")
                m_records.unread();
            return;
        }
        take();
    }
}

bool DxfDrawing::nextRecord(const Scanned& scanned)
{
    if (scanned)
        scanned(static_cast<qint64>(m_records.position()), static_cast<qint64>(m_bytes.size()));
    return m_records.next();
}

void DxfDrawing::readSection(const Scanned& scanned)
{
    m_hasSections = true;
    DxfPair name;
    if (!m_records.pair(name))
        return;
    if (name.text() == "TABLES")
        readRecords(scanned, [this] { readLayer(); });
    else if (name.text() == "BLOCKS")
        readRecords(scanned, [this] { readBlock(); });
    else
        passSection(name.text() == "ENTITIES", scanned);
}

void DxfDrawing::readLayer()
{
    constexpr int frozenFlag = 1;
    if (m_records.type() != "LAYER")
        return;
    DxfFields fields;
    fields.readAll(m_records);
    m_layers.add(fields.text(2), { (fields.whole(70) & frozenFlag) != 0, fields.whole(62) < 0 });
}

void DxfDrawing::readBlock()
{
    if (m_records.type() != "BLOCK")
        return;
    const auto position = static_cast<uint32_t>(m_records.position());
    DxfFields fields;
    fields.readAll(m_records);
    m_blocks.add(fields.text(2), { position });
}

void DxfDrawing::passSection(bool holdsEntities, const Scanned& scanned)
{
    bool isFirst = holdsEntities;
    readRecords(scanned, [this, &isFirst] {
        if (isFirst)
            m_entitySections.push_back(static_cast<uint32_t>(m_records.position()));
        isFirst = false;
    });
}

} // namespace prep
