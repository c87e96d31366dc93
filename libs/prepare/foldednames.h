#pragma once

#include <algorithm>
#include <string_view>
#include <vector>

namespace prep {

/// Values by the names of layers or blocks, which are the same in upper and lower case of ASCII
/// letters. Of two values with one name the later one holds.
template <typename Value>
class FoldedNames {
public:
    /// The name must outlive this and stand behind the names added before in the same bytes.
    void add(std::string_view name, const Value& value) { m_entries.push_back({ name, value }); }

    /// Ends the adding; find() works from now on.
    void settle()
    {
        std::sort(m_entries.begin(), m_entries.end(), [](const Entry& a, const Entry& b) {
            const int order = compare(a.name, b.name);
            return order < 0 || (order == 0 && a.name.data() < b.name.data());
        });
    }

    /// The value of that name, or null.
    const Value* find(std::string_view name) const
    {
        const auto behind = std::upper_bound(m_entries.begin(), m_entries.end(), name,
            [](std::string_view a, const Entry& b) { return compare(a, b.name) < 0; });
        if (behind == m_entries.begin() || compare(behind[-1].name, name) != 0)
            return nullptr;
        return &behind[-1].value;
    }

private:
    struct Entry {
        std::string_view name;
        Value value;
    };

    static char folded(char c)
    {
        return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    /// Below, at or above 0 as `a` comes before, with or behind `b`.
    static int compare(std::string_view a, std::string_view b)
    {
        const size_t common = std::min(a.size(), b.size());
        for (size_t i = 0; i < common; ++i) {
            if (folded(a[i]) != folded(b[i]))
                return folded(a[i]) < folded(b[i]) ? -1 : 1;
        }
        return a.size() == b.size() ? 0 : a.size() < b.size() ? -1 : 1;
    }

    std::vector<Entry> m_entries;
};

} // namespace prep
