#pragma once

#include "prepare/flatsink.h"
#include "prepare/pairwriter.h"
#include "prepare/preparereport.h"

namespace prep {

/// Writes a drawing in the plainest form that CAD programs and the readers take: a header and the
/// entities LINE, POLYLINE, POINT and TEXT, in this order but for the contours, which stay in the
/// order in which they come.
class DxfWriter : public FlatSink {
public:
    /// `codec` is the name of the encoding that all bytes are in already.
    DxfWriter(QIODevice& out, const QByteArray& codec, PrepareReport& report);

    void takeContour(
        std::string_view layer, const std::vector<FlatVertex>& vertices, bool closed) override;
    void takePoint(std::string_view layer, const FlatVertex& place) override;
    void takeLabel(FlatLabel label) override;

    /// Writes what is left. The readers name points and objects after texts that are sorted: texts
    /// are written so, and with a point, because a drawing without any is not sorted again. Points
    /// without texts would leave vertices unnamed: they are not written.
    void finish();

private:
    struct Point {
        std::string_view layer;
        FlatVertex place;
    };

    void writeHeader(const QByteArray& codec);
    void writePoints();
    void writeLabel(const FlatLabel& label);
    void addPointAside();
    void start(std::string_view type, std::string_view layer);
    void number(int code, double value);
    void place(int xCode, const FlatVertex& vertex);

    PairWriter m_out;
    PrepareReport& m_report;
    std::vector<Point> m_points;
    std::vector<FlatLabel> m_labels;
    double m_leastX = 0;
    bool m_isEmpty = true;
};

} // namespace prep
