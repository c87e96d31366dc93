#pragma once

#include "survey/surveyor.h"

/// The survey of a MIF file, and of the MID file beside it.
class MifSurvey : public Surveyor {
public:
    using Surveyor::Surveyor;

protected:
    void takeCensus(LineReader& in) override;
    void explain(const ImportFailure& failure) override;
    void judge() override;
    QString companionFile() const override;

private:
    bool wantsMid() const { return readsPoints() || searchesObjectDefs(); }
    void takeHeaderLine(TextView line);
    void takeMidCensus();
    void explainHeader(int line);
    void explainMissingMid();
    void explainMidRow(int row);
    void explainObject(const ImportFailure& failure);

    bool m_hasData = false;
    qint64 m_objects = 0;
    qint64 m_midRows = 0; ///< blank ones too
    qint64 m_extraRows = 0; ///< rows with contents behind those of the objects
};
