#pragma once

#include "prepare/chords.h"
#include "prepare/midrows.h"
#include "prepare/mifheader.h"
#include "prepare/mifreader.h"
#include "prepare/prepareoptions.h"
#include "prepare/preparereport.h"

#include <QIODevice>

namespace prep {

/// What becomes of the rows of a MID file.
struct RowForm {
    char delimiter = ','; ///< of the file that was read
    bool splits = false; ///< rows are put together anew from their values, with commas
    size_t firstColumn = 0; ///< of the file that was read, which comes before all others
    size_t columns = 1;
};

/// Writes the objects of a MIF file as the readers take them, and the row of each of them.
class MifWriter {
public:
    /// All must outlive the writer.
    MifWriter(QIODevice& mifOut, QIODevice& midOut, MidRows& rows, const RowForm& form,
        const PrepareOptions& options, PrepareReport& report);

    void start(const MifHeader& header, bool flattens, const QByteArray& charset);
    /// Takes the objects in their order.
    void take(const MifObject& object);
    void finish();

private:
    void takeRow();
    void write(const MifObject& object);
    void flatten(const MifObject& object);
    bool writeShape(const MifObject& object);
    void writePoints(const MifObject& object);
    void putOutline(const MifObject& object, VertexRow& outline);
    void appendArc(const Planar& centre, const Planar& radii, double start, double sweep);
    void writeRow();
    std::string splitRow(std::string_view row) const;
    void writeClauses(const MifObject& object);
    void vertex(std::string_view x, std::string_view y);
    void putVertex(std::string_view x, std::string_view y);
    void vertices(VertexCursor& cursor, size_t count);
    void corners(const MifObject& object);
    void put(std::string_view text);
    void putText(std::string_view text);
    double moved(double coordinate, size_t axis) const;
    bool staysFinite(const MifObject& object) const;
    void flush(int limit);

    QIODevice& m_mifOut;
    QIODevice& m_midOut;
    MidRows& m_rows;
    RowForm m_form;
    const PrepareOptions& m_options;
    PrepareReport& m_report;
    ChordMaker m_chords;
    bool m_flattens = false;
    bool m_moves = false;
    double m_factors[2] = { 1, 1 };
    double m_shifts[2] = { 0, 0 };
    std::string m_row; ///< that of the object at hand
    int m_collected = 0; ///< objects of a collection that share the row
    std::vector<Planar> m_places;
    QByteArray m_mif;
    QByteArray m_mid;
};

} // namespace prep
