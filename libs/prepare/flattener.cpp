#include "prepare/flattener.h"

#include "prepare/dxfentityreader.h"
#include "prepare/dxfhatchreader.h"

#include <QTextCodec>
#include <QtMath>

#include <cmath>

namespace prep {

namespace {

constexpr size_t mostDepth = 64;
/// No designation has so many bytes, and reading one takes several times as many.
constexpr size_t longestLabel = 1 << 20;

// A small file may become a large result, but not one that fills memory or disk.

/// What may be kept until the end, in bytes, when blocks are still opened.
qint64 mostHeld(qint64 inputSize)
{
    return (10 << 20) + inputSize * 4;
}

/// How many bytes of blocks are read, those of a block anew for each insert.
qint64 mostWork(qint64 inputSize)
{
    return 40000000 + inputSize * 40;
}

/// Contours go to the disk at once, unless they are kept for joining.
qint64 mostChords(qint64 inputSize, const PrepareOptions& options)
{
    return options.join ? 100000 + inputSize / 16 : 4000000 + inputSize * 4;
}

bool isLabelOrInsert(const Entity& entity)
{
    return std::holds_alternative<LabelShape>(entity.shape)
        || std::holds_alternative<InsertShape>(entity.shape);
}

Affine rootMap(const PrepareOptions& options)
{
    return Affine::scaling({ options.scale, options.scale, options.scale });
}

} // namespace

Flattener::Flattener(const DxfDrawing& drawing, const PrepareOptions& options,
    const LabelCodecs& codecs, qint64 inputSize, FlatSink& sink, PrepareReport& report)
    : m_drawing(drawing)
    , m_options(options)
    , m_sink(sink)
    , m_report(report)
    , m_codec(codecs.codec)
    , m_layers(drawing, options, codecs.codec)
    , m_blocks(drawing, options.blocks)
    , m_labelText(codecs.codec, codecs.byteCodec)
    , m_mostHeld(mostHeld(inputSize))
    , m_workLeft(mostWork(inputSize))
    , m_contour(options.tolerance * std::abs(options.scale), mostChords(inputSize, options),
          options.swapXY)
{
}

void Flattener::run()
{
    Context context;
    context.map = rootMap(m_options);
    Entity entity;
    m_drawing.forEachEntity([&](DxfRecords& records) {
        if (const auto reason = readEntity(records, entity))
            m_report.drop(entity.type, *reason);
        else
            flatten(entity, context);
    });
    for (const auto& [block, state] : m_blocks.states()) {
        if (state.inserts > 0)
            tellBlock(*block, state);
    }
}

void Flattener::tellBlock(const DxfBlock& block, const BlockState& state)
{
    const std::string_view name = m_drawing.head(block).name;
    m_report.tellBlock(m_codec->toUnicode(name.data(), static_cast<int>(name.size())),
        { state.inserts, state.isPoint });
}

void Flattener::flatten(const Entity& entity, const Context& context)
{
    const bool inherits = context.inBlock && entity.layer == "0";
    const Item item{ entity, context, context.map.after(Affine::ofExtrusion(entity.extrusion)),
        inherits ? context.layer : entity.layer };
    if (const auto reason = reasonAgainst(item)) {
        m_report.drop(entity.type, *reason);
        return;
    }
    std::visit([this, &item](const auto& shape) { take(item, shape); }, entity.shape);
}

std::optional<Note> Flattener::reasonAgainst(const Item& item)
{
    if (m_options.visibleOnly && item.entity.invisible)
        return Note::Invisible;
    // What an insert holds has layers of its own, but it is frozen with the insert.
    if (std::holds_alternative<InsertShape>(item.entity.shape))
        return m_layers.isFrozen(item.layer) ? std::optional(Note::Invisible) : std::nullopt;
    return m_layers.reasonAgainst(item.layer);
}

// What becomes of each kind

void Flattener::take(const Item& item, const PointShape& point)
{
    writePoint(item, point.place, {});
}

void Flattener::take(const Item& item, const PathShape& path)
{
    m_contour.start(item.map);
    m_contour.append(path);
    writeContour(
        item, path.closed, m_contour.hasBulges() ? std::optional(Note::Bulges) : std::nullopt);
}

void Flattener::take(const Item& item, const ConicShape& conic)
{
    if (conic.full && m_options.circles == CircleMode::Points) {
        writePoint(item, conic.centre, Note::CircleAsPoint);
        return;
    }
    m_contour.start(item.map);
    m_contour.append(conic);
    writeContour(item, conic.full, Note::Chords);
}

void Flattener::take(const Item& item, const SplineShape& spline)
{
    m_contour.start(item.map);
    if (!m_contour.append(spline)) {
        m_report.drop(item.entity.type, Note::Incomplete);
        return;
    }
    writeContour(item, spline.closed, m_contour.hasFitPoints() ? Note::FitPoints : Note::Chords);
}

/// Draws the boundaries of a hatch as they are read.
class Flattener::HatchDrawer : public BoundarySink {
public:
    HatchDrawer(Flattener& flattener, const Item& item)
        : m_flattener(flattener)
        , m_item(item)
    {
    }

    void startBoundary() override
    {
        finish();
        m_flattener.m_contour.start(m_item.map);
        m_isDrawn = true;
        m_hasBoundary = true;
    }
    void takeEdge(const HatchEdge& edge) override
    {
        m_isDrawn = m_isDrawn && m_flattener.m_contour.appendEdge(edge);
    }
    void finish()
    {
        if (!m_hasBoundary)
            return;
        if (m_isDrawn && m_flattener.m_contour.vertices().size() >= 3)
            m_flattener.writeContour(m_item, true, Note::HatchOutlines);
        else
            m_flattener.m_report.drop(m_item.entity.type, Note::Incomplete);
        m_hasBoundary = false;
    }

private:
    Flattener& m_flattener;
    const Item& m_item;
    bool m_hasBoundary = false;
    bool m_isDrawn = false;
};

void Flattener::take(const Item& item, const HatchShape& hatch)
{
    if (!m_options.hatches) {
        m_report.drop(item.entity.type, Note::HatchLeftOut);
        return;
    }
    DxfRecords records = m_drawing.recordsAt(hatch.position);
    records.next();
    DxfFields fields;
    HatchDrawer drawer(*this, item);
    readBoundaries(records, fields, &drawer);
    drawer.finish();
}

// Labels

bool Flattener::isLabelWanted(const Item& item) const
{
    if (item.context.labelsOnly)
        return true;
    if (item.entity.type == "TEXT")
        return m_options.texts;
    return item.entity.type == "MTEXT" ? m_options.mtexts : m_options.attributes;
}

FlatLabel Flattener::placedLabel(const Item& item, const LabelShape& label) const
{
    double sine = 0;
    double cosine = 1;
    sinCosOfDegrees(label.rotation, &sine, &cosine);
    Vec3 along{ cosine, sine, 0 };
    if (length(label.direction) > 0)
        along = label.direction * (1 / length(label.direction));
    FlatLabel placed{ m_contour.vertex(label.place), item.layer, {}, label.height, label.rotation,
        label.horizontal, label.vertical };
    if (item.map.isIdentity() && length(label.direction) == 0)
        return placed;
    const Vec3 mapped = item.map.direction(along);
    const double height = length(item.map.direction({ -along.y, along.x, 0 })) * label.height;
    const double rotation = qRadiansToDegrees(std::atan2(mapped.y, mapped.x));
    placed.height = std::isfinite(height) ? height : 1;
    placed.rotation = std::isfinite(rotation) ? rotation : 0;
    return placed;
}

void Flattener::take(const Item& item, const LabelShape& label)
{
    const std::string_view type = item.entity.type;
    if (!isLabelWanted(item)) {
        m_report.drop(type, Note::LabelLeftOut);
        return;
    }
    if (label.text.size() > longestLabel) {
        m_report.drop(type, Note::TooMuch);
        return;
    }
    m_contour.start(item.map);
    FlatLabel placed = placedLabel(item, label);
    placed.text =
        type == "MTEXT" ? m_labelText.ofMText(label.text) : m_labelText.ofText(label.text);
    const bool isText = type == "TEXT";
    if (placed.text.empty() && !isText) {
        m_report.drop(type, Note::EmptyLabel);
        return;
    }
    if (!std::isfinite(placed.place.x) || !std::isfinite(placed.place.y)) {
        m_report.drop(type, Note::Incomplete);
        return;
    }
    if (!mayHold(item))
        return;
    const bool decoded = placed.text != label.text;
    m_report.note(Note::AsText, isText || !decoded ? 0 : 1);
    m_report.note(Note::Unencodable, m_labelText.hasUnencodable() ? 1 : 0);
    noteWritten(item,
        decoded || !isText ? std::optional(decoded ? Note::TextDecoded : Note::AsText)
                           : std::nullopt);
    m_sink.takeLabel(placed);
}

// Blocks

void Flattener::take(const Item& item, const InsertShape& insert)
{
    flattenAttributes(insert, item.context);
    const DxfBlock* const found = m_drawing.block(insert.block);
    if (!found) {
        writePoint(item, insert.place, Note::MissingBlock);
        return;
    }
    BlockState& block = m_blocks.state(*found);
    if (block.external) {
        m_report.drop(item.entity.type, Note::ExternalBlock);
    } else if (m_blocks.isPoint(block)) {
        ++block.inserts;
        block.isPoint = true;
        if (const auto reason = m_layers.reasonAgainst(item.layer)) {
            m_report.drop(item.entity.type, *reason);
            return;
        }
        writePoint(item, insert.place, Note::InsertAsPoint);
    } else if (isOpenable(item, block)) {
        m_report.note(Note::InsertExploded);
        m_report.write(item.entity.type, true);
        explode(item, insert, block);
        ++block.inserts;
    }
}

void Flattener::flattenAttributes(const InsertShape& insert, const Context& context)
{
    DxfRecords records = m_drawing.recordsAt(insert.attributes);
    Entity attribute;
    while (records.next() && records.type() == "ATTRIB") {
        if (!readEntity(records, attribute))
            flatten(attribute, context);
    }
}

void Flattener::take(const Item& item, const DimensionShape& dimension)
{
    if (!m_options.dimensions) {
        m_report.drop(item.entity.type, Note::LabelLeftOut);
        return;
    }
    const DxfBlock* const found = m_drawing.block(dimension.block);
    if (!found) {
        m_report.drop(item.entity.type, Note::Incomplete);
        return;
    }
    const BlockState& block = m_blocks.state(*found);
    if (!isOpenable(item, block))
        return;
    m_report.write(item.entity.type, true);
    // The block of a dimension has the coordinates of the world.
    explodeBlock(block, false, { item.context.map, item.layer, true, true });
}

bool Flattener::isOpenable(const Item& item, const BlockState& block)
{
    std::optional<Note> reason;
    if (std::find(m_open.begin(), m_open.end(), &block) != m_open.end())
        reason = Note::RecursiveBlock;
    else if (m_open.size() >= mostDepth)
        reason = Note::TooDeep;
    else if (m_workLeft <= 0)
        reason = Note::TooMuch;
    if (reason)
        m_report.drop(item.entity.type, *reason);
    return !reason;
}

bool Flattener::spendWork(std::string_view type, size_t bytes)
{
    // An empty block costs something, too.
    constexpr qint64 least = 100;
    m_workLeft -= least + static_cast<qint64>(bytes);
    if (m_workLeft > 0)
        return true;
    m_report.drop(type, Note::TooMuch);
    return false;
}

// "INSERT" in Autodesk's DXF reference: the base point of the block comes to the insertion, scaled,
// then turned; the steps of an array are turned, too, but not scaled.
void Flattener::explode(const Item& item, const InsertShape& insert, const BlockState& block)
{
    const Affine turned =
        item.map.after(Affine::shift(insert.place.vec())).after(Affine::turn(insert.rotation));
    const Affine inner = Affine::scaling(insert.scale).after(Affine::shift(block.base * -1));
    for (int row = 0; row < insert.rows; ++row) {
        for (int column = 0; column < insert.columns; ++column) {
            if (!spendWork(item.entity.type, 0))
                return;
            const Affine step =
                Affine::shift({ column * insert.columnStep, row * insert.rowStep, 0 });
            const bool isFirst = block.inserts == 0 && row == 0 && column == 0;
            explodeBlock(block, isFirst,
                { turned.after(step).after(inner), item.layer, true, item.context.labelsOnly });
        }
    }
}

void Flattener::explodeBlock(const BlockState& block, bool tellsDropped, const Context& context)
{
    m_open.push_back(&block);
    Entity entity;
    m_drawing.forEachOfBlock(block.entities, [&](DxfRecords& records) {
        const auto reason = readEntity(records, entity);
        records.passPairs();
        if (!spendWork(entity.type, records.nextPosition() - records.position()))
            return false;
        if (reason)
            m_report.drop(entity.type, *reason, tellsDropped ? 1 : 0);
        else if (!context.labelsOnly || isLabelOrInsert(entity))
            flatten(entity, context);
        return true;
    });
    m_open.pop_back();
}

// Handing over

void Flattener::noteWritten(const Item& item, std::optional<Note> change)
{
    const bool extruded = !Affine::ofExtrusion(item.entity.extrusion).isIdentity();
    m_report.note(Note::FromBlock, item.context.inBlock ? 1 : 0);
    m_report.note(Note::Extrusion, extruded ? 1 : 0);
    if (change)
        m_report.note(*change);
    m_report.write(item.entity.type, change || item.context.inBlock || extruded);
}

bool Flattener::mayHold(const Item& item)
{
    if (!item.context.inBlock || static_cast<qint64>(m_sink.heldSize()) < m_mostHeld)
        return true;
    m_report.drop(item.entity.type, Note::TooMuch);
    return false;
}

void Flattener::writeContour(const Item& item, bool closed, std::optional<Note> change)
{
    const VertexRow& vertices = m_contour.vertices();
    if (vertices.size() < 2 || !vertices.isFinite()) {
        m_report.drop(item.entity.type, Note::Incomplete);
        return;
    }
    if (m_options.join && !mayHold(item))
        return;
    m_report.note(Note::CoarseChords, m_contour.takeCoarse() ? 1 : 0);
    noteWritten(item, change);
    m_sink.takeContour(item.layer, vertices, closed);
}

void Flattener::writePoint(const Item& item, const Place& place, std::optional<Note> change)
{
    m_contour.start(item.map);
    const FlatVertex vertex = m_contour.vertex(place);
    if (!std::isfinite(vertex.x) || !std::isfinite(vertex.y)) {
        m_report.drop(item.entity.type, Note::Incomplete);
        return;
    }
    if (!mayHold(item))
        return;
    noteWritten(item, change);
    m_sink.takePoint(item.layer, vertex);
}

} // namespace prep
