#pragma once

#include "import/dxflabels.h"
#include "import/dxfpairs.h"
#include "import/mapimport.h"

#include <array>

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

    /// Checks that the file begins with a HEADER section, and tells of one that does not.
    bool checkDxfFile();

    // The readers of one entity each, called after the pair that starts it. False when the entity
    // is incomplete or holds a bad number; what was built of it stays.
    bool readPoint(); ///< the first point of any entity: adds to `points`
    bool readText(); ///< TEXT: adds to `labels`
    bool readLine(); ///< LINE: adds an object
    bool readPolyline(); ///< POLYLINE with its VERTEX entities and SEQEND: adds an object
    bool readVertex(); ///< VERTEX: adds to the current contour
    bool readLwpolyline(); ///< LWPOLYLINE: adds an object

    /// Gives each catalogue point the designation of its nearest text.
    void updatePointsDefs();
    /// Reads the texts of the whole file and starts the file again. False, and at the place of the
    /// failure, when it cannot be read; the observer has been told.
    bool loadTextsOnly();
    /// Names the object just read after the text nearest to its centroid.
    void updateLastPolygonDef();
    /// Adds the vertices of all objects to the catalogue, sorted and merged.
    void pointsFromPolygons();

    DxfPairs pairs{ in }; ///< the pairs of the current file
    DxfLabels labels; ///< the texts that name points and objects

private:
    using EntityReceiver = bool (DxfImport::*)();

    bool scanEntities(EntityReceiver receive);
    bool receivePointOrText();
    bool receiveText();
    bool readEntity(QLatin1String kind, EntityReceiver read);
    bool receivePolygon();
    bool loadPolygon(QLatin1String kind, EntityReceiver read);
    template <size_t Count>
    bool readCoordinates(
        const std::array<QLatin1String, Count>& codes, std::array<double, Count>& coordinates);
    bool closeContour();

    DxfStretches m_stretches; ///< of the object file, as the point pass has seen it
    bool m_closed = false; ///< the polyline being read is marked as closed
};
