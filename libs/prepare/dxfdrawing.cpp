#include "prepare/dxfdrawing.h"

#include "prepare/dxfentityreader.h"
#include "prepare/dxffields.h"

#include <algorithm>

namespace prep {

namespace {

/// Names of layers and blocks are the same in upper and lower case.
std::string foldedName(std::string_view name)
{
    std::string folded(name);
    std::transform(folded.begin(), folded.end(), folded.begin(),
        [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; });
    return folded;
}

template <typename Value>
const Value* find(const std::unordered_map<std::string, Value>& values, std::string_view name)
{
    const auto found = values.find(foldedName(name));
    return found == values.end() ? nullptr : &found->second;
}

} // namespace

DxfDrawing::DxfDrawing(std::string_view bytes)
    : m_bytes(bytes)
    , m_records(bytes)
{
    while (m_records.next()) {
        if (m_records.type() == "SECTION")
            readSection();
        else if (!m_hasSections && m_entitySections.empty() && !endsSection(m_records.type()))
            // Entities without any section around them.
            m_entitySections.push_back(m_records.position());
    }
}

const DxfLayer* DxfDrawing::layer(std::string_view name) const
{
    return find(m_layers, name);
}

const DxfBlock* DxfDrawing::block(std::string_view name) const
{
    return find(m_blocks, name);
}

/// Hands the records of a section to `take`, up to the one that ends it.
template <typename Take>
void DxfDrawing::readRecords(Take take)
{
    while (m_records.next()) {
        if (endsSection(m_records.type())) {
            // The end of the section may be missing.
            if (m_records.type() != "ENDSEC")
                m_records.unread();
            return;
        }
        take();
    }
}

void DxfDrawing::readSection()
{
    m_hasSections = true;
    DxfPair name;
    if (!m_records.pair(name))
        return;
    if (name.text() == "TABLES")
        readTables();
    else if (name.text() == "BLOCKS")
        readBlocks();
    else
        passSection(name.text() == "ENTITIES");
}

void DxfDrawing::readTables()
{
    readRecords([this] {
        if (m_records.type() == "LAYER")
            readLayer();
    });
}

void DxfDrawing::readLayer()
{
    constexpr int frozenFlag = 1;
    DxfFields fields;
    fields.readAll(m_records);
    m_layers[foldedName(fields.text(2))] = { (fields.whole(70) & frozenFlag) != 0,
        fields.whole(62) < 0 };
}

void DxfDrawing::readBlocks()
{
    readRecords([this] {
        if (m_records.type() == "BLOCK")
            readBlock();
    });
}

void DxfDrawing::readBlock()
{
    constexpr int externalFlags = 4 | 8;
    DxfFields fields;
    fields.readAll(m_records);
    DxfBlock block;
    block.name = fields.text(2);
    block.base = fields.vec(10);
    block.external = (fields.whole(70) & externalFlags) != 0;
    readEntities(block);
    m_blocks[foldedName(block.name)] = std::move(block);
}

void DxfDrawing::readEntities(DxfBlock& block)
{
    Entity entity;
    while (m_records.next()) {
        const std::string_view type = m_records.type();
        if (type == "ENDBLK")
            return;
        if (endsSection(type) || type == "BLOCK") {
            m_records.unread();
            return;
        }
        if (const auto reason = readEntity(m_records, entity))
            ++block.dropped[{ type, *reason }];
        else
            block.entities.push_back(std::move(entity));
    }
}

void DxfDrawing::passSection(bool holdsEntities)
{
    bool isFirst = holdsEntities;
    readRecords([this, &isFirst] {
        if (isFirst)
            m_entitySections.push_back(m_records.position());
        isFirst = false;
    });
}

} // namespace prep
