#pragma once

#include "prepare/dxfdrawing.h"
#include "prepare/prepareoptions.h"

#include <QRegularExpression>

#include <optional>
#include <unordered_map>

class QTextCodec;

namespace prep {

/// Which layers of a drawing are taken.
class LayerFilter {
public:
    LayerFilter(const DxfDrawing& drawing, const PrepareOptions& options, const QTextCodec* codec);

    /// Why nothing on this layer is taken, or none.
    std::optional<Note> reasonAgainst(std::string_view layer);
    /// Whether the layer is frozen, which counts for everything in a block inserted on it. False
    /// where visibility is no matter.
    bool isFrozen(std::string_view layer) const;

private:
    std::optional<Note> judge(std::string_view layer) const;

    const DxfDrawing& m_drawing;
    const QTextCodec* m_codec;
    bool m_visibleOnly;
    std::vector<QRegularExpression> m_taken;
    std::vector<QRegularExpression> m_skipped;
    std::unordered_map<std::string_view, std::optional<Note>> m_known;
};

} // namespace prep
