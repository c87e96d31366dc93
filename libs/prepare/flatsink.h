#pragma once

#include "prepare/vertexrow.h"

#include <string>

namespace prep {

/// A text of the result.
struct FlatLabel {
    FlatVertex place;
    std::string_view layer;
    std::string text;
    double height = 1;
    double rotation = 0; ///< degrees
    int horizontal = 0; ///< justification as in code 72 of a TEXT
    int vertical = 0; ///< as in code 73
};

/// Takes what a drawing is made into, in the order of the drawing. Views must outlive the sink.
class FlatSink {
public:
    FlatSink() = default;
    virtual ~FlatSink() = default;
    FlatSink(const FlatSink&) = delete;
    FlatSink& operator=(const FlatSink&) = delete;

    /// At least two vertices; those of a closed contour do not repeat the first one at the end,
    /// unless the source did.
    virtual void takeContour(std::string_view layer, const VertexRow& vertices, bool closed) = 0;
    virtual void takePoint(std::string_view layer, const FlatVertex& place) = 0;
    virtual void takeLabel(const FlatLabel& label) = 0;

    /// About how much memory is needed for what has been taken and cannot be written yet.
    virtual size_t heldSize() const = 0;
};

} // namespace prep
