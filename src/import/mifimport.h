#pragma once

#include "import/mapimport.h"
#include "import/midfile.h"

#include <vector>

struct MifObjectKind;

/// Reads the MapInfo interchange pair: the MIF file with the geometry and the MID file with one
/// row of attributes per object, in the same order.
///
/// The point pass collects POINT objects; the object pass builds LINE, PLINE and REGION objects.
/// Designations come from the first MID column. Other objects only consume their MID row;
/// a COLLECTION ends the pass. The format is MapInfo's published one, narrowed: the first three
/// lines must be VERSION, CHARSET and DELIMITER, and no blank line may stand inside an object.
class MifImport : public MapImport {
public:
    MifImport() = default;
    ~MifImport() override;

protected:
    bool loadPoints() override;
    bool loadPolygons() override;

    /// Checks the three header lines, takes the delimiter from them, and tells of a wrong header.
    bool checkMifFile();
    /// Reads a MIF line into `line`, trimmed; with `split`, also its tokens. False when it is
    /// blank.
    bool readTokenizeMifLine(bool split);
    /// Opens the MID file that belongs to the MIF file of the pass, and tells of one that cannot be
    /// opened.
    bool openMidFile();

    bool readPoint();
    bool readLine();
    bool readPline();
    bool readPlineMultiple();
    bool readRegion();
    /// Reads a contour of `count` vertices; the last one of a `closed` contour closes it.
    bool readSub(int count, bool closed);
    bool readVert(bool closing);

    TextView line; ///< the last MIF line read, trimmed
    std::vector<TextView> tokens; ///< the first ones of `line`, parted by white space
    MidFile mid; ///< the rows of the objects; not open when no designations are wanted

private:
    /// A LINE has the most tokens that are looked at: the keyword and four coordinates.
    static constexpr size_t mostTokens = 5;

    /// What a pass does with an object of the given kind that starts on the current line.
    using ObjectHandler = bool (MifImport::*)(const MifObjectKind& kind);

    bool scan(bool withMid, ObjectHandler handle);
    bool scanObjects(ObjectHandler handle);
    bool loadPoint(const MifObjectKind& kind);
    bool loadPolygon(const MifObjectKind& kind);
    bool skipObject();
    bool isMultiple() const;
    bool nameObject();
    bool failAtMidRow(FailureKind kind);
    void tokenize();
    bool isHeaderLine(QLatin1String keyword) const;
    double tokenToDouble(size_t index, bool* ok) const;
    bool readCount(int least, int* count);

    TextView m_behindKeyword; ///< the rest of the line that starts an object
};
