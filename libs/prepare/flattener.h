#pragma once

#include "prepare/blockchooser.h"
#include "prepare/contourbuilder.h"
#include "prepare/flatsink.h"
#include "prepare/labeltext.h"
#include "prepare/layerfilter.h"

namespace prep {

/// The encodings of a drawing that is flattened.
struct LabelCodecs {
    const QTextCodec* codec; ///< that of the bytes
    const QTextCodec* byteCodec = nullptr; ///< that of codes %%nnn, if it is another one
};

/// Makes the entities of a drawing into contours of straight segments, points and texts in one
/// plane: blocks exploded, curves as chords, everything in the coordinates of the world.
class Flattener {
public:
    /// All must outlive the flattener; `inputSize` is that of the file, which bounds the result.
    Flattener(const DxfDrawing& drawing, const PrepareOptions& options, const LabelCodecs& codecs,
        qint64 inputSize, FlatSink& sink, PrepareReport& report);

    void run();

private:
    /// Where entities stand: in the drawing itself or in an inserted block.
    struct Context {
        Affine map;
        std::string_view layer; ///< that of the insert, for what stands on layer 0 of its block
        bool inBlock = false;
        bool labelsOnly = false;
    };
    /// An entity with what its place makes of it.
    struct Item {
        const Entity& entity;
        const Context& context;
        Affine map; ///< to the coordinates of the result
        std::string_view layer;
    };

    class HatchDrawer;

    void flatten(const Entity& entity, const Context& context);
    std::optional<Note> reasonAgainst(const Item& item);

    void take(const Item& item, const PointShape& point);
    void take(const Item& item, const PathShape& path);
    void take(const Item& item, const ConicShape& conic);
    void take(const Item& item, const SplineShape& spline);
    void take(const Item& item, const LabelShape& label);
    void take(const Item& item, const InsertShape& insert);
    void take(const Item& item, const HatchShape& hatch);
    void take(const Item& item, const DimensionShape& dimension);

    void flattenAttributes(const InsertShape& insert, const Context& context);
    bool isOpenable(const Item& item, const BlockState& block);
    void explode(const Item& item, const InsertShape& insert, const BlockState& block);
    void explodeBlock(const BlockState& block, bool tellsDropped, const Context& context);
    void tellBlock(const DxfBlock& block, const BlockState& state);
    /// Whether so much of a block may still be read.
    bool spendWork(std::string_view type, size_t bytes);
    bool isLabelWanted(const Item& item) const;
    FlatLabel placedLabel(const Item& item, const LabelShape& label) const;

    /// Hands the contour over. `change` is what was done to its entity beside moving it.
    void writeContour(const Item& item, bool closed, std::optional<Note> change);
    void writePoint(const Item& item, const Place& place, std::optional<Note> change);
    void noteWritten(const Item& item, std::optional<Note> change);
    /// Whether something more may be kept in memory; what no block holds is always kept.
    bool mayHold(const Item& item);

    const DxfDrawing& m_drawing;
    const PrepareOptions& m_options;
    FlatSink& m_sink;
    PrepareReport& m_report;
    const QTextCodec* m_codec;
    LayerFilter m_layers;
    BlockChooser m_blocks;
    LabelText m_labelText;
    qint64 m_mostHeld; ///< what may be kept in memory when more comes out of blocks, in bytes
    qint64 m_workLeft; ///< how many bytes of blocks may still be read
    ContourBuilder m_contour;
    std::vector<const BlockState*> m_open; ///< the blocks that are being exploded
};

} // namespace prep
