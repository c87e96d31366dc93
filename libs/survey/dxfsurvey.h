#pragma once

#include "survey/dxfcensus.h"
#include "survey/surveyor.h"

/// The survey of a drawing.
class DxfSurvey : public Surveyor {
public:
    using Surveyor::Surveyor;

protected:
    void takeCensus(ByteLines& lines) override;
    void explain(const ImportFailure& failure) override;
    void judge() override;

private:
    void explainHeader();
    void explainEntity(const ImportFailure& failure);
    bool leavesTextsUnsorted() const;
    void judgeObjects();
    void judgeLeftOut(bool insertsAlone);

    DxfCensus m_census{ [this](std::string_view text) { takeDesignation(text); } };
};
