#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace prep {

/// A vertex of the result. Digits that are not empty are those of the source and are written as
/// they are; else the values are.
struct FlatVertex {
    double x = 0;
    double y = 0;
    std::string_view xDigits;
    std::string_view yDigits;
};

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
    virtual void takeContour(
        std::string_view layer, const std::vector<FlatVertex>& vertices, bool closed) = 0;
    virtual void takePoint(std::string_view layer, const FlatVertex& place) = 0;
    virtual void takeLabel(FlatLabel label) = 0;
};

} // namespace prep
