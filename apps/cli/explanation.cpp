#include "explanation.h"

#include "console.h"
#include "suggestions.h"
#include "survey/causes.h"

namespace {

QString explain(Cause cause)
{
    return QStringLiteral("%1\n    %2\n    Что делать: %3\n")
        .arg(causeId(cause), generalCauseText(cause), generalRemedyText(cause));
}

} // namespace

QString explanation(const QString& id)
{
    QString text;
    QStringList ids;
    const std::optional<Cause> wanted = causeOfId(id);
    for (const Cause cause : allCauses()) {
        ids.append(causeId(cause));
        if (wanted == cause || id == QLatin1String("all"))
            text += explain(cause);
    }
    if (!text.isEmpty())
        return text;
    throw Failure{ WrongUsage,
        QStringLiteral("--explain: неизвестная причина «%1»%2; все - --explain all")
            .arg(id, suggestionText(id, ids)) };
}
