#pragma once

#include "import/linereader.h"
#include "survey/bytelines.h"
#include "survey/encodingguess.h"
#include "survey/filesurvey.h"

#include <QTextCodec>

/// The survey of one file: the part that all formats share. A format says how to take the census
/// and what stopped its reader.
class Surveyor {
public:
    Surveyor(const Format& format, const ImportOptions& options, FileRole role);
    virtual ~Surveyor() = default;
    Surveyor(const Surveyor&) = delete;
    Surveyor& operator=(const Surveyor&) = delete;

    /// Looks at the bytes of the file. Nothing of the import is needed for that: the two may run
    /// at a time.
    void look();
    /// Judges what look() saw beside what the import made of it; to be called once.
    FileSurvey judged(const ImportRun& run);

protected:
    /// Counts what the file holds, line by line.
    virtual void takeCensus(ByteLines& lines) = 0;
    /// Finds the cause of a failure of the import in this file.
    virtual void explain(const ImportFailure& failure) = 0;
    /// Finds causes in the census.
    virtual void judge() = 0;
    /// A line of the file, and what comes behind it.
    struct Place {
        QString text; ///< trimmed
        bool exists = false;
        bool isBlankToEnd = false; ///< the line and all behind it are blank
        qint64 blankLines = 0; ///< the blank line and those behind it, but for the file's end
    };
    Place placeOf(int line) const;

    /// Opens a file of this survey for reading in the encoding that its bytes look like.
    bool open(LineReader& in, const QString& fileName) const;
    /// Opens a file of this survey for a census, by which its encoding is told.
    bool open(ByteLines& lines, const QString& fileName);
    /// Takes note of a text that becomes a designation.
    void takeDesignation(std::string_view text);

    void addCause(Cause cause, int line, const QString& detail = QString(), qint64 count = 0);
    void addCauseOf(const QString& fileName, Cause cause, int line, const QString& detail = {},
        qint64 count = 0);

    qint64 countOf(const char* kind) const { return kindOf(kind).count; }
    qint64 readOf(const char* kind) const { return kindOf(kind).read; }
    bool readsPoints() const;
    bool readsObjects() const { return m_role == FileRole::Objects; }
    /// Whether designations of objects are looked for in this file.
    bool searchesObjectDefs() const { return readsObjects() && m_options.searchObjectDefs; }
    /// Whether the import read this file to its end.
    bool isReadWhole() const;

    const Format& m_format;
    const ImportOptions m_options;
    const FileRole m_role;
    FileSurvey m_survey;

private:
    KindCount kindOf(const char* name) const;
    bool isOfOtherKind();
    void lookAtStart();
    void tellEncoding();
    void explainFailures();
    void countReads();
    bool concerns(const ImportMessage& message) const;

    EncodingGuess m_guess;
    QByteArray m_mark; ///< the codec that a byte-order mark names
    const ImportRun* m_run = nullptr; ///< known when judging
    bool m_isTaken = false; ///< the census has been taken
    QTextCodec* m_wide = nullptr; ///< the codec of a file with more than one byte a character
    QTextCodec* m_codec = nullptr; ///< what the bytes of the file look like
    QByteArray m_designations; ///< those with bytes beyond ASCII, up to a size
};
