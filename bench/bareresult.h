#pragma once

#include <QString>
#include <QXmlStreamReader>

#include <vector>

/// An XML text taken apart, to be written again by QXmlStreamWriter and nothing else.
class BareResult {
public:
    explicit BareResult(const QString& xml);

    /// The text, written element by element.
    QString write() const;

private:
    struct Token {
        QXmlStreamReader::TokenType type;
        QString text; ///< the name of an element or its characters
        QXmlStreamAttributes attributes;
    };
    std::vector<Token> m_tokens;
};
