#pragma once

#include "outputfile.h"

#include <QJsonObject>
#include <QMap>

struct Report;

/// How a check answers.
enum class CheckForm { Text, Json, JsonLines, Summary };

/// Writes the answers of a check to standard output, each as it comes.
class CheckOutput {
public:
    /// `total`: how many files are checked.
    CheckOutput(CheckForm form, int total);

    /// The answer about a file; nothing is kept of it but the numbers for a summary.
    void add(const QJsonObject& report, const QString& text);
    /// Ends the document and lets all of it out.
    void finish();

private:
    /// How many files have findings of a kind, and how many.
    struct Tally {
        int files = 0;
        qint64 findings = 0;

        void add(qint64 count)
        {
            files += count > 0 ? 1 : 0;
            findings += count;
        }
    };

    void write(const QByteArray& bytes);
    void count(const QJsonObject& report);
    QString summary() const;

    CheckForm m_form;
    int m_total;
    int m_added = 0;
    int m_found = 0;
    QMap<QString, Tally> m_causes;
    QMap<QString, Tally> m_objectFindings;
    OutputFile m_out;
};
