#include "survey/preparecalls.h"

#include "import/formats.h"

#include <QDir>
#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>
#include <iterator>
#include <optional>

namespace {

constexpr const char* repair = " --level repair";
constexpr const char* flatten = "";

constexpr struct {
    Cause cause;
    const char* options;
} calls[] = {
    { Cause::BlankFirstLine, repair },
    { Cause::LeadingComment, repair },
    { Cause::MissingHeader, repair },
    { Cause::BlockInsertsOnly, " --blocks explode" },
    { Cause::MTextOnly, flatten },
    { Cause::UnsortedTexts, flatten },
    { Cause::ClosedFlag, repair },
    { Cause::Bulges, flatten },
    { Cause::MifHeader, repair },
    { Cause::Delimiter, repair },
    { Cause::MidOtherCase, repair },
    { Cause::MidMissing, repair },
    { Cause::MidBlankRow, repair },
    { Cause::MidTooShort, repair },
    { Cause::MidTooLong, repair },
    { Cause::Collection, repair },
    { Cause::CountOnNextLine, repair },
    { Cause::BlankLine, repair },
    { Cause::TrailingBlankLine, repair },
    { Cause::BadObject, repair },
    { Cause::Axes, " --swap-xy" },
};

/// What makes contours of the kinds that a file holds instead of them.
std::optional<QString> optionsForKinds(const QString& kinds)
{
    const auto holds = [&kinds](const char* words) {
        return QRegularExpression(QStringLiteral("\\b(%1)\\b").arg(QString::fromLatin1(words)))
            .match(kinds)
            .hasMatch();
    };
    QString options;
    if (holds("CIRCLE|ELLIPSE"))
        options += QStringLiteral(" --circles contours");
    if (holds("HATCH"))
        options += QStringLiteral(" --hatch");
    if (options.isEmpty() && !holds("ARC|SPLINE|RECT|ROUNDRECT"))
        return {};
    return options;
}

std::optional<QString> optionsFor(const FoundCause& found)
{
    if (found.cause == Cause::NoObjects)
        return optionsForKinds(found.detail);
    // A binary drawing is read, a DWG under the name of a DXF is not.
    if (found.cause == Cause::NotText && found.detail.endsWith(QLatin1String("DXF")))
        return QString::fromLatin1(repair);
    const auto* const call = std::find_if(std::begin(calls), std::end(calls),
        [&found](const auto& row) { return row.cause == found.cause; });
    if (call == std::end(calls))
        return {};
    return QString::fromLatin1(call->options);
}

/// A name as one word for a shell.
QString quoted(const QString& name)
{
    static const QRegularExpression plain(
        QStringLiteral("^[\\w./][\\w./-]*$"), QRegularExpression::UseUnicodePropertiesOption);
    if (plain.match(name).hasMatch())
        return name;
    // What begins with a dash would be an option.
    const QString path = name.startsWith(QLatin1Char('-')) ? QStringLiteral("./") + name : name;
    return QLatin1Char('\'') + QString(path).replace(QLatin1Char('\''), QLatin1String("'\\''"))
        + QLatin1Char('\'');
}

} // namespace

QString prepareCall(const FoundCause& found, const QString& fileName)
{
    const std::optional<QString> options = optionsFor(found);
    const Format* const format = formatOfFile(fileName);
    if (!options || !format)
        return {};
    const QFileInfo file(fileName);
    QString copy = QStringLiteral("%1-prepared.%2").arg(file.completeBaseName(), format->suffix);
    if (fileName.contains(QLatin1Char('/')))
        copy = QDir(file.path()).filePath(copy);
    return QStringLiteral("importgeometry prepare %1%2 -o %3")
        .arg(quoted(fileName), *options, quoted(copy));
}
