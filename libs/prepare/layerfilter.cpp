#include "prepare/layerfilter.h"

#include <QTextCodec>

#include <algorithm>

namespace prep {

namespace {

constexpr size_t mostKnown = 100000;

std::vector<QRegularExpression> expressions(const QStringList& patterns)
{
    std::vector<QRegularExpression> result;
    for (const QString& pattern : patterns)
        result.emplace_back(QRegularExpression::wildcardToRegularExpression(pattern),
            QRegularExpression::CaseInsensitiveOption
                | QRegularExpression::UseUnicodePropertiesOption);
    return result;
}

bool matchesAny(const std::vector<QRegularExpression>& expressions, const QString& name)
{
    return std::any_of(
        expressions.begin(), expressions.end(), [&name](const QRegularExpression& expression) {
            return expression.match(name).hasMatch();
        });
}

} // namespace

LayerFilter::LayerFilter(
    const DxfDrawing& drawing, const PrepareOptions& options, const QTextCodec* codec)
    : m_drawing(drawing)
    , m_codec(codec)
    , m_visibleOnly(options.visibleOnly)
    , m_taken(expressions(options.layers))
    , m_skipped(expressions(options.skipLayers))
{
}

std::optional<Note> LayerFilter::reasonAgainst(std::string_view layer)
{
    if (!m_visibleOnly && m_taken.empty() && m_skipped.empty())
        return {};
    const auto known = m_known.find(layer);
    if (known != m_known.end())
        return known->second;
    const std::optional<Note> reason = judge(layer);
    // No drawing has so many layers, but a file may name one for every few of its bytes.
    if (m_known.size() < mostKnown)
        m_known.emplace(layer, reason);
    return reason;
}

bool LayerFilter::isFrozen(std::string_view layer) const
{
    const DxfLayer* const entry = m_visibleOnly ? m_drawing.layer(layer) : nullptr;
    return entry && entry->frozen;
}

std::optional<Note> LayerFilter::judge(std::string_view layer) const
{
    const DxfLayer* const entry = m_visibleOnly ? m_drawing.layer(layer) : nullptr;
    if (entry && (entry->frozen || entry->off))
        return Note::Invisible;
    const QString name = m_codec->toUnicode(layer.data(), static_cast<int>(layer.size()));
    const bool taken = m_taken.empty() || matchesAny(m_taken, name);
    if (taken && !matchesAny(m_skipped, name))
        return {};
    return Note::LayerLeftOut;
}

} // namespace prep
