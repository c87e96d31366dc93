#pragma once

#include "import/dxfpairs.h"
#include "survey/surveyor.h"

/// The survey of a drawing.
class DxfSurvey : public Surveyor {
public:
    using Surveyor::Surveyor;

protected:
    void takeCensus(LineReader& in) override;
    void explain(const ImportFailure& failure) override;
    void judge() override;

private:
    enum class Section { Other, Entities, Blocks };

    /// The POLYLINE whose pairs are being read.
    struct Polyline {
        QString flags; ///< code 70
        int line = 0; ///< where it starts; 0 outside of one
        bool closed = false; ///< a code 70 is 1, in it or in one of its vertices
    };

    void takePair(const DxfPairs& pairs, int line);
    void startEntity(TextView kind, int line);
    void endPolyline();
    void explainHeader();
    void explainEntity(const ImportFailure& failure);
    bool leavesTextsUnsorted() const;

    Section m_section = Section::Other;
    bool m_sectionStarts = false;
    bool m_codepageFollows = false;
    QString m_kind; ///< of the entity whose pairs are being read; empty between entities
    Polyline m_polyline;
    qint64 m_bulges = 0;
    qint64 m_openedByFlag = 0; ///< closed polylines that the reader takes for open ones
    QString m_firstFlags;
    int m_firstFlagsLine = 0;
};
