#include "survey/filekind.h"

#include <algorithm>
#include <string>

namespace {

using namespace std::string_view_literals;

constexpr FileKind kinds[] = {
    { "autocad binary dxf"sv, "двоичный DXF", "", true },
    { "ac10"sv, "чертёж DWG", "", true },
    { "!table"sv, "таблица MapInfo (TAB), а не MIF", "" },
    { "pk\x03\x04"sv, "архив ZIP или документ Office", "" },
    { "rar!"sv, "архив RAR", "" },
    { "7z\xBC\xAF"sv, "архив 7z", "" },
    { "\x1F\x8B"sv, "архив GZIP", "" },
    { "\xD0\xCF\x11\xE0"sv, "документ Office", "" },
    { "%pdf"sv, "документ PDF", "" },
    { "\x89png"sv, "рисунок PNG", "" },
    { "\xFF\xD8\xFF"sv, "рисунок JPEG", "" },
    { "\x00\x00\x27\x0A"sv, "шейп-файл (SHP)", "" },
    { "sqlite format 3"sv, "база данных SQLite (GeoPackage)", "" },
    { "<?xml"sv, "документ XML", "" },
    { "<!doctype html"sv, "страница HTML", "" },
    { "<html"sv, "страница HTML", "" },
    { "{"sv, "JSON (GeoJSON)", "" },
    { "version "sv, "MIF", "mif" },
};

char toLower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

/// Whether a text starts with the pair that starts a drawing's first section.
bool startsDrawing(const std::string& text)
{
    const size_t zero = text.find_first_not_of(" \t");
    if (zero == std::string::npos || text[zero] != '0')
        return false;
    const size_t word = text.find_first_not_of(" \t\r\n", zero + 1);
    return word != std::string::npos && text.compare(word, 7, "section") == 0;
}

} // namespace

std::optional<FileKind> fileKindOf(std::string_view start)
{
    constexpr size_t enough = 64;
    std::string text(start.substr(0, enough));
    std::transform(text.begin(), text.end(), text.begin(), toLower);
    for (const FileKind& kind : kinds) {
        if (text.compare(0, kind.start.size(), kind.start) == 0)
            return kind;
    }
    if (startsDrawing(text))
        return FileKind{ {}, "DXF", "dxf" };
    return {};
}
