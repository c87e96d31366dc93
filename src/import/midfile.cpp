#include "import/midfile.h"

#include <QVarLengthArray>

#include <algorithm>

static constexpr QChar space(QChar::Space);

QString midFileName(const QString& mifFileName)
{
    return mifFileName.chopped(std::min(mifFileName.size(), 1)) + QLatin1Char('d');
}

bool MidFile::readMidLine()
{
    line = m_in.readLine().trimmed();
    return !line.isEmpty();
}

bool MidFile::readMidDef(QString* def)
{
    if (!isOpen())
        return true;
    if (!readMidLine())
        return false;
    if (def)
        *def = extractDef(line);
    return true;
}

QString MidFile::extractDef(TextView row) const
{
    return row.visit([this](auto begin, auto end) {
        QVarLengthArray<QChar, 128> column;
        bool atStart = true;
        bool inQuotes = false;
        for (auto it = begin; it != end; ++it) {
            const QChar c(static_cast<char16_t>(*it));
            if (c == space && atStart)
                continue;
            if (c == QLatin1Char('"')) {
                if (inQuotes)
                    break;
                inQuotes = true;
                atStart = true;
            } else if (c == delimiter && !inQuotes) {
                break;
            } else {
                column.append(c);
                atStart = false;
            }
        }
        while (!column.isEmpty() && column.last() == space)
            column.removeLast();
        return column.isEmpty() ? QString() : QString(column.constData(), column.size());
    });
}
