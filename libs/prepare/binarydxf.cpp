#include "prepare/binarydxf.h"

#include "prepare/plainnumber.h"

#include <cmath>
#include <cstdint>
#include <cstring>

namespace prep {

namespace {

constexpr std::string_view sentinel("AutoCAD Binary DXF\r\n\x1a\0", 22);

enum class ValueType { Text, Double, Int16, Int32, Int64, Bool, Bytes, Unknown };

/// The ranges of group codes and what stands behind them: "Group Code Value Types" and "Binary DXF
/// Files" in Autodesk's DXF reference.
constexpr struct {
    int first;
    int last;
    ValueType type;
} valueTypes[] = {
    { 0, 9, ValueType::Text },
    { 10, 59, ValueType::Double },
    { 60, 79, ValueType::Int16 },
    { 90, 99, ValueType::Int32 },
    { 100, 102, ValueType::Text },
    { 105, 105, ValueType::Text },
    { 110, 149, ValueType::Double },
    { 160, 169, ValueType::Int64 },
    { 170, 179, ValueType::Int16 },
    { 210, 239, ValueType::Double },
    { 270, 289, ValueType::Int16 },
    { 290, 299, ValueType::Bool },
    { 300, 309, ValueType::Text },
    { 310, 319, ValueType::Bytes },
    { 320, 369, ValueType::Text },
    { 370, 389, ValueType::Int16 },
    { 390, 399, ValueType::Text },
    { 400, 409, ValueType::Int16 },
    { 410, 419, ValueType::Text },
    { 420, 429, ValueType::Int32 },
    { 430, 439, ValueType::Text },
    { 440, 459, ValueType::Int32 },
    { 460, 469, ValueType::Double },
    { 470, 481, ValueType::Text },
    { 999, 1003, ValueType::Text },
    { 1004, 1004, ValueType::Bytes },
    { 1005, 1009, ValueType::Text },
    { 1010, 1059, ValueType::Double },
    { 1060, 1070, ValueType::Int16 },
    { 1071, 1071, ValueType::Int32 },
};

ValueType typeOf(int code)
{
    for (const auto& range : valueTypes) {
        if (code >= range.first && code <= range.last)
            return range.type;
    }
    return ValueType::Unknown;
}

class BinaryDxf {
public:
    explicit BinaryDxf(std::string_view bytes)
        : m_rest(bytes.substr(sentinel.size()))
    {
        // The first pair is 0, SECTION: a second zero belongs to a code of two bytes.
        m_wideCodes = m_rest.size() > 1 && m_rest[0] == '\0' && m_rest[1] == '\0';
    }

    QByteArray ascii(bool* complete)
    {
        while (!m_rest.empty() && m_good)
            convertPair();
        *complete = m_good;
        return m_text;
    }

private:
    void convertPair()
    {
        const int code = takeCode();
        const int start = m_text.size();
        m_text.append(QByteArray::number(code)).append('\n');
        convertValue(typeOf(code));
        m_text.append('\n');
        if (!m_good)
            m_text.truncate(start);
    }

    int takeCode()
    {
        if (m_wideCodes)
            return take<int16_t>();
        const int code = take<uint8_t>();
        // Release 12 writes the codes of extended data as 255 and two more bytes.
        return code == 255 ? take<int16_t>() : code;
    }

    void convertValue(ValueType type)
    {
        switch (type) {
        case ValueType::Text:
            return convertText();
        case ValueType::Double:
            return convertDouble();
        case ValueType::Int16:
            return appendWhole(take<int16_t>());
        case ValueType::Int32:
            return appendWhole(take<int32_t>());
        case ValueType::Int64:
            return appendWhole(take<int64_t>());
        case ValueType::Bool:
            return appendWhole(take<uint8_t>());
        case ValueType::Bytes:
            return convertBytes();
        case ValueType::Unknown:
            m_good = false;
        }
    }

    void convertText()
    {
        const size_t length = m_rest.find('\0');
        if (length == std::string_view::npos) {
            m_good = false;
            return;
        }
        for (const char c : m_rest.substr(0, length))
            m_text.append(c == '\n' || c == '\r' ? ' ' : c);
        m_rest.remove_prefix(length + 1);
    }

    void convertDouble()
    {
        const auto number = take<double>();
        m_text.append(std::isfinite(number) ? QByteArray::fromStdString(plainText(number))
                                            : QByteArrayLiteral("nan"));
    }

    void convertBytes()
    {
        const size_t length = take<uint8_t>();
        if (length > m_rest.size()) {
            m_good = false;
            return;
        }
        m_text.append(
            QByteArray::fromRawData(m_rest.data(), static_cast<int>(length)).toHex().toUpper());
        m_rest.remove_prefix(length);
    }

    void appendWhole(qint64 number) { m_text.append(QByteArray::number(number)); }

    /// A number as it lies in the file, which is little-endian as the machines are that run this.
    template <typename Number>
    Number take()
    {
        Number number{};
        if (m_rest.size() < sizeof(number)) {
            m_good = false;
            m_rest = {};
            return number;
        }
        std::memcpy(&number, m_rest.data(), sizeof(number));
        m_rest.remove_prefix(sizeof(number));
        return number;
    }

    std::string_view m_rest;
    QByteArray m_text;
    bool m_wideCodes = false;
    bool m_good = true;
};

} // namespace

bool isBinaryDxf(std::string_view bytes)
{
    return bytes.substr(0, sentinel.size()) == sentinel;
}

QByteArray asciiOfBinaryDxf(std::string_view bytes, bool* complete)
{
    return BinaryDxf(bytes).ascii(complete);
}

} // namespace prep
