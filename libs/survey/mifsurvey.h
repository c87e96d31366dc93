#pragma once

#include "survey/surveyor.h"

/// The survey of a MIF file, and of the MID file beside it.
class MifSurvey : public Surveyor {
public:
    using Surveyor::Surveyor;

protected:
    void takeCensus(ByteLines& lines) override;
    void explain(const ImportFailure& failure) override;
    void judge() override;

private:
    bool wantsMid() const { return readsPoints() || searchesObjectDefs(); }
    void takeHeaderLine(std::string_view line, int number);
    void takeObjectLine(std::string_view line);
    void takeMidCensus();
    void judgeMidColumns(const std::map<char, qint64>& rowsWith);
    void judgeLeftOut();
    void explainHeader(int line);
    void explainMissingMid();
    void explainMidRow(int row);
    void explainObject(const ImportFailure& failure);

    bool m_hasData = false;
    int m_columns = 0; ///< that the header declares
    char m_delimiter = '\t';
    qint64 m_objects = 0;
    qint64 m_midRows = 0; ///< blank ones too
    qint64 m_extraRows = 0; ///< rows with contents behind those of the objects
};
