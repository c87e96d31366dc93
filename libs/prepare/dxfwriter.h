#pragma once

#include "prepare/flatsink.h"
#include "prepare/pairwriter.h"
#include "prepare/preparereport.h"
#include "prepare/textheap.h"

#include <deque>

namespace prep {

/// Writes a drawing in the plainest form that CAD programs and the readers take: a header and the
/// entities LINE, POLYLINE, POINT and TEXT, in this order but for the contours, which stay in the
/// order in which they come.
class DxfWriter : public FlatSink {
public:
    /// `codec` is the name of the encoding that all bytes are in already.
    DxfWriter(QIODevice& out, const QByteArray& codec, PrepareReport& report);

    void takeContour(std::string_view layer, const VertexRow& vertices, bool closed) override;
    void takePoint(std::string_view layer, const FlatVertex& vertex) override;
    void takeLabel(const FlatLabel& label) override;
    size_t heldSize() const override;

    /// Writes what is left. The readers name points and objects after texts that are sorted: texts
    /// are written so, and with a point, because a drawing without any is not sorted again. Points
    /// without texts would leave vertices unnamed: they are not written.
    void finish();

private:
    /// A label that waits for its place among the others.
    struct Label {
        double x;
        double y;
        const char* pairs; ///< as they are written
        uint32_t size;
        uint32_t number;

        bool operator<(const Label& other) const;
    };

    void writeHeader(const QByteArray& codec);
    void writePoints();
    void writeLabel(const FlatLabel& label);
    void addPointAside();
    void noteX(double x);
    void start(std::string_view type, std::string_view layer);
    void number(int code, double value);
    void place(int xCode, const FlatVertex& vertex);

    PairWriter m_out;
    PrepareReport& m_report;
    TextHeap m_heap;
    std::vector<std::string_view> m_points; ///< the pairs of many points each
    qint64 m_pointCount = 0;
    std::deque<Label> m_labels;
    std::string_view m_firstLayer; ///< that of the first label
    double m_leastX = 0;
    bool m_isEmpty = true;
};

} // namespace prep
