#include "bareresult.h"

#include <QSet>
#include <QXmlStreamWriter>

BareResult::BareResult(const QString& xml)
{
    // Names are few and shared, so that the tokens stay small beside the text.
    QSet<QString> names;
    QXmlStreamReader reader(xml);
    while (!reader.atEnd()) {
        const QXmlStreamReader::TokenType type = reader.readNext();
        if (type == QXmlStreamReader::StartElement) {
            const QString name = *names.insert(reader.name().toString());
            const bool isPlain = reader.attributes().isEmpty();
            m_tokens.push_back(
                { type, name, isPlain ? QXmlStreamAttributes() : reader.attributes() });
        } else if (type == QXmlStreamReader::EndElement) {
            m_tokens.push_back({ type, QString(), {} });
        } else if (type == QXmlStreamReader::Characters && !reader.isWhitespace()) {
            m_tokens.push_back({ type, reader.text().toString(), {} });
        }
    }
}

QString BareResult::write() const
{
    QString result;
    QXmlStreamWriter writer(&result);
    writer.setAutoFormatting(true);
    for (const Token& token : m_tokens) {
        if (token.type == QXmlStreamReader::StartElement) {
            writer.writeStartElement(token.text);
            writer.writeAttributes(token.attributes);
        } else if (token.type == QXmlStreamReader::EndElement) {
            writer.writeEndElement();
        } else {
            writer.writeCharacters(token.text);
        }
    }
    return result;
}
