#pragma once

#include "geometry/nearestindex.h"
#include "import/mapimport.h"

#include <QPointF>
#include <QStringView>

#include <array>
#include <optional>

/// Reads ASCII DXF drawings: pairs of lines, a group code and its value, as published by Autodesk.
///
/// A file must begin with a HEADER section. Only entities of the ENTITIES section are read. The
/// point pass collects point-like entities and texts; the object pass builds an object of each
/// LINE, POLYLINE and LWPOLYLINE. Nothing in a drawing links a text to an object: points take the
/// text nearest to them, objects the one nearest to their centroid that does not look like a point
/// number. Coordinates are taken as they stand, without blocks, extrusions or bulges.
class DxfImport : public MapImport {
public:
    DxfImport() = default;
    ~DxfImport() override;

protected:
    bool loadPoints() override;
    bool loadPolygons() override;

    /// Reads the next pair into `code` and `value`, or hands back the current one when `unread` is
    /// set. False when the code line is blank or the file has ended.
    bool readCodeValue();
    /// Checks that the file begins with a HEADER section, and reports when it does not.
    bool checkDxfFile();
    /// `text` with %%d, %%p, %%c and %%nnn replaced; nnn is a byte in the encoding of the file.
    QString decodeText(const QString& text) const;

    // The readers of one entity each, called after the pair that starts it. False when the entity
    // is incomplete or holds a bad number; what was built of it stays.
    bool readPoint(); ///< the first point of any entity: adds to `points`
    bool readText(); ///< TEXT: adds to `texts`
    bool readLine(); ///< LINE: adds an object
    bool readPolyline(); ///< POLYLINE with its VERTEX entities and SEQEND: adds an object
    bool readVertex(); ///< VERTEX: adds to the current contour
    bool readLwpolyline(); ///< LWPOLYLINE: adds an object

    /// Gives each catalogue point the designation of its nearest text.
    void updatePointsDefs();
    /// Reads the texts of the whole file and starts the file again. False, and at the place of the
    /// failure, when it cannot be read; that has been reported.
    bool loadTextsOnly();
    /// Drops the texts that look like point numbers, unless all do.
    void filterObjectDefs();
    /// Names the object just read after the text nearest to its centroid.
    void updateLastPolygonDef();
    /// Adds the vertices of all objects to the catalogue, sorted and merged.
    void pointsFromPolygons();

    QStringView code; ///< group code of the current pair, trimmed
    QStringView value; ///< value of the current pair, trimmed
    bool unread = false; ///< the next readCodeValue() hands back the current pair
    QVector<DefPoint> texts; ///< text labels: decoded text and reference point

private:
    using EntityReceiver = bool (DxfImport::*)();

    bool scanEntities(EntityReceiver receive);
    bool receivePointOrText();
    bool receiveText();
    bool receivePolygon();
    template <size_t Count>
    bool readCoordinates(
        const std::array<QLatin1String, Count>& codes, std::array<double, Count>& coordinates);
    void keepPair();
    bool closeContour(bool closed);
    void indexTexts();
    const DefPoint* findText(const QPointF& place) const;

    QString m_keptCode; ///< hold the current pair where it outlives its file
    QString m_keptValue;
    std::optional<NearestIndex> m_textIndex; ///< over `texts`, where they are sorted
};
