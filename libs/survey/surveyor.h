#pragma once

#include "import/linereader.h"
#include "survey/encodingguess.h"
#include "survey/filesurvey.h"

#include <QTextCodec>

/// The survey of one file: the part that all formats share. A format says how to take the census
/// and what stopped its reader.
class Surveyor {
public:
    Surveyor(const ImportOptions& options, FileRole role, const ImportRun& run);
    virtual ~Surveyor() = default;
    Surveyor(const Surveyor&) = delete;
    Surveyor& operator=(const Surveyor&) = delete;

    FileSurvey survey();

protected:
    /// Counts what the file holds, line by line through `in`.
    virtual void takeCensus(LineReader& in) = 0;
    /// Finds the cause of a failure of the import in this file.
    virtual void explain(const ImportFailure& failure) = 0;
    /// Finds causes in the census.
    virtual void judge() = 0;
    /// Another file whose bytes and texts belong to this one; empty for none.
    virtual QString companionFile() const { return {}; }

    /// A line of the file, and what comes behind it.
    struct Place {
        QString text; ///< trimmed
        bool exists = false;
        bool isBlankToEnd = false; ///< the line and all behind it are blank
    };
    Place placeOf(int line) const;

    /// Opens a file of this survey for reading in the encoding that its bytes look like.
    bool open(LineReader& in, const QString& fileName) const;
    /// Takes note of a text that becomes a designation.
    void takeDesignation(TextView text);

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

    const ImportOptions& m_options;
    const FileRole m_role;
    const ImportRun& m_run;
    FileSurvey m_survey;

private:
    KindCount kindOf(const char* name) const;
    void guessEncoding();
    QByteArray guessFromBytes() const;
    void explainFailures();
    void countReads();
    bool concerns(const ImportMessage& message) const;

    QTextCodec* m_codec = nullptr; ///< what the bytes of the file look like
    const QTextCodec* m_doubted = nullptr; ///< the chosen codec, where it may be the wrong one
};
