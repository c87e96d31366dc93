#include "prepare/flattener.h"

#include "prepare/dxfentityreader.h"

#include <QTextCodec>
#include <QtMath>

#include <cmath>

namespace prep {

namespace {

constexpr size_t mostDepth = 64;

// A small file may become a large result, but not one that fills memory or disk. Contours go to
// the disk at once, unless they are kept for joining; points and texts are kept.

qint64 mostHeld(qint64 inputSize)
{
    return 100000 + inputSize / 64;
}

qint64 mostWork(qint64 inputSize, const PrepareOptions& options)
{
    return options.join ? mostHeld(inputSize) : 1000000 + inputSize;
}

qint64 mostChordsOf(qint64 inputSize, const PrepareOptions& options)
{
    return options.join ? 100000 + inputSize / 16 : 4000000 + inputSize * 4;
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
    , m_heldLeft(mostHeld(inputSize))
    , m_workLeft(mostWork(inputSize, options))
    , m_contour(options.tolerance * std::abs(options.scale), mostChordsOf(inputSize, options),
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
    for (const auto& [block, choice] : m_choices) {
        const QString name =
            m_codec->toUnicode(block->name.data(), static_cast<int>(block->name.size()));
        m_report.blocks.insert(name, choice);
    }
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

void Flattener::take(const Item& item, const HatchShape& hatch)
{
    if (!m_options.hatches) {
        m_report.drop(item.entity.type, Note::HatchLeftOut);
        return;
    }
    for (const auto& boundary : hatch.boundaries) {
        const bool drawn = buildBoundary(item, boundary);
        if (!drawn || m_contour.vertices().size() < 3) {
            m_report.drop(item.entity.type, Note::Incomplete);
            continue;
        }
        writeContour(item, true, Note::HatchOutlines);
    }
}

bool Flattener::buildBoundary(const Item& item, const HatchShape::Boundary& boundary)
{
    std::vector<std::vector<FlatVertex>> edges;
    for (const HatchShape::Edge& edge : boundary) {
        m_contour.start(item.map);
        if (!appendEdge(edge))
            return false;
        edges.push_back(m_contour.takeVertices());
    }
    m_contour.start(item.map);
    for (std::vector<FlatVertex>& edge : edges)
        m_contour.appendEdge(std::move(edge));
    return true;
}

bool Flattener::appendEdge(const HatchShape::Edge& edge)
{
    if (const auto* path = std::get_if<PathShape>(&edge))
        m_contour.append(*path);
    else if (const auto* conic = std::get_if<ConicShape>(&edge))
        m_contour.append(*conic);
    else
        return m_contour.append(std::get<SplineShape>(edge));
    return true;
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
    if (!spendHeld(item))
        return;
    const bool decoded = placed.text != label.text;
    m_report.note(Note::AsText, isText || !decoded ? 0 : 1);
    m_report.note(Note::Unencodable, m_labelText.hasUnencodable() ? 1 : 0);
    noteWritten(item,
        decoded || !isText ? std::optional(decoded ? Note::TextDecoded : Note::AsText)
                           : std::nullopt);
    m_sink.takeLabel(std::move(placed));
}

// Blocks

void Flattener::take(const Item& item, const InsertShape& insert)
{
    const DxfBlock* const block = m_drawing.block(insert.block);
    for (const Entity& attribute : insert.attributes)
        flatten(attribute, item.context);
    if (!block) {
        writePoint(item, insert.place, Note::MissingBlock);
    } else if (block->external) {
        m_report.drop(item.entity.type, Note::ExternalBlock);
    } else if (m_blocks.isPoint(*block)) {
        noteBlock(*block, true);
        if (const auto reason = m_layers.reasonAgainst(item.layer)) {
            m_report.drop(item.entity.type, *reason);
            return;
        }
        writePoint(item, insert.place, Note::InsertAsPoint);
    } else if (isOpenable(item, *block)) {
        noteBlock(*block, false);
        m_report.note(Note::InsertExploded);
        m_report.write(item.entity.type, true);
        explode(item, insert, *block);
    }
}

void Flattener::take(const Item& item, const DimensionShape& dimension)
{
    if (!m_options.dimensions) {
        m_report.drop(item.entity.type, Note::LabelLeftOut);
        return;
    }
    const DxfBlock* const block = m_drawing.block(dimension.block);
    if (!block) {
        m_report.drop(item.entity.type, Note::Incomplete);
    } else if (isOpenable(item, *block)) {
        m_report.write(item.entity.type, true);
        // The block of a dimension has the coordinates of the world.
        explodeBlock(*block, { item.context.map, item.layer, true, true });
    }
}

void Flattener::noteBlock(const DxfBlock& block, bool asPoint)
{
    BlockChoice& choice = m_choices[&block];
    choice.asPoint = asPoint;
    if (choice.inserts++ > 0 || asPoint)
        return;
    for (const auto& [what, count] : block.dropped)
        m_report.drop(what.first, what.second, count);
}

bool Flattener::isOpenable(const Item& item, const DxfBlock& block)
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

// "INSERT" in Autodesk's DXF reference: the base point of the block comes to the insertion, scaled,
// then turned; the steps of an array are turned, too, but not scaled.
void Flattener::explode(const Item& item, const InsertShape& insert, const DxfBlock& block)
{
    const Affine turned =
        item.map.after(Affine::shift(insert.place.vec())).after(Affine::turn(insert.rotation));
    const Affine inner = Affine::scaling(insert.scale).after(Affine::shift(block.base * -1));
    for (int row = 0; row < insert.rows; ++row) {
        for (int column = 0; column < insert.columns; ++column) {
            // An empty block costs something, too.
            if (--m_workLeft <= 0) {
                m_report.drop(item.entity.type, Note::TooMuch);
                return;
            }
            const Affine step =
                Affine::shift({ column * insert.columnStep, row * insert.rowStep, 0 });
            explodeBlock(block,
                { turned.after(step).after(inner), item.layer, true, item.context.labelsOnly });
        }
    }
}

void Flattener::explodeBlock(const DxfBlock& block, const Context& context)
{
    m_open.push_back(&block);
    for (const Entity& entity : block.entities) {
        const bool isLabel = std::holds_alternative<LabelShape>(entity.shape)
            || std::holds_alternative<InsertShape>(entity.shape);
        if (context.labelsOnly && !isLabel)
            continue;
        if (--m_workLeft <= 0) {
            m_report.drop(entity.type, Note::TooMuch);
            break;
        }
        flatten(entity, context);
    }
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

bool Flattener::spendHeld(const Item& item)
{
    if (!item.context.inBlock || m_heldLeft-- > 0)
        return true;
    m_report.drop(item.entity.type, Note::TooMuch);
    return false;
}

void Flattener::writeContour(const Item& item, bool closed, std::optional<Note> change)
{
    if (m_contour.vertices().size() < 2 || !m_contour.isFinite()) {
        m_report.drop(item.entity.type, Note::Incomplete);
        return;
    }
    m_report.note(Note::CoarseChords, m_contour.takeCoarse() ? 1 : 0);
    noteWritten(item, change);
    m_sink.takeContour(item.layer, m_contour.vertices(), closed);
}

void Flattener::writePoint(const Item& item, const Place& place, std::optional<Note> change)
{
    m_contour.start(item.map);
    const FlatVertex vertex = m_contour.vertex(place);
    if (!std::isfinite(vertex.x) || !std::isfinite(vertex.y)) {
        m_report.drop(item.entity.type, Note::Incomplete);
        return;
    }
    if (!spendHeld(item))
        return;
    noteWritten(item, change);
    m_sink.takePoint(item.layer, vertex);
}

} // namespace prep
