#pragma once

#include "survey/encodingguess.h"
#include "survey/filesurvey.h"
#include "survey/linecursor.h"

/// What the surveys of all formats share: the file, the answer so far, and where the reader stops.
class Surveyor {
public:
    Surveyor(const QString& fileName, const SurveyOptions& options)
        : m_options(options)
        , m_bytes(readBytes(fileName))
        , m_text(asUtf8(m_bytes))
        , m_lines(view(m_text))
    {
        m_survey.fileName = fileName;
    }

protected:
    void addCause(Cause cause, int line, const QString& detail = QString(), qint64 count = 0)
    {
        m_survey.causes.append({ cause, m_survey.fileName, line, detail, count });
    }

    /// The reader goes no further.
    void stop() { m_survey.stopped = true; }

    /// The point pass goes no further, if there is one: then there is no object pass.
    void stopPointPass()
    {
        stop();
        if (m_options.readsPoints && m_options.searchPointDefs)
            m_pointPassFailed = true;
    }

    /// To be called when the whole file has been looked at.
    void finishCounts()
    {
        m_survey.lineCount = m_lines.lineNumber();
        if (!m_pointPassFailed)
            return;
        for (auto& [name, kind] : m_survey.kinds)
            kind.read = 0;
        m_survey.shapes.clear();
    }

    const SurveyOptions& m_options;
    FileSurvey m_survey;
    QByteArray m_bytes;
    QByteArray m_text; ///< the bytes as UTF-8 if they are UTF-16
    LineCursor m_lines;

private:
    bool m_pointPassFailed = false;
};
