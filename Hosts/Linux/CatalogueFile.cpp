#include "Hosts/Linux/CatalogueFile.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace quorvel::xdg {

namespace {

constexpr std::uint32_t kCatalogueMagic
    = 0x950412DE; // in this machine's order, as msgfmt writes it
constexpr std::size_t kCatalogueHeaderWords = 7;
constexpr std::size_t kWordSize = sizeof(std::uint32_t);

/// Numbers of 32 bits, each read only where there is one.
class CatalogueWords {
public:
    explicit CatalogueWords(std::string_view bytes) : m_bytes(bytes) { }
    bool contains(std::uint64_t offset, std::uint64_t count) const
    {
        return offset % kWordSize == 0 && offset + count * kWordSize <= m_bytes.size();
    }
    std::uint32_t at(std::uint64_t offset) const
    {
        std::uint32_t value = 0;
        std::memcpy(&value, m_bytes.data() + offset, kWordSize);
        return value;
    }
    /// A table of lengths and places of texts, each with a zero behind it.
    bool hasTexts(std::uint64_t table, std::uint64_t count) const
    {
        if (!contains(table, 2 * count))
            return false;
        for (std::uint64_t i = 0; i < count; ++i) {
            const std::uint64_t end = std::uint64_t{at(table + 2 * i * kWordSize)}
                + at(table + (2 * i + 1) * kWordSize);
            if (end >= m_bytes.size() || m_bytes[end] != '\0')
                return false;
        }
        return true;
    }
    /// Each entry is zero, or the number of a text counted from one.
    bool hasHashes(std::uint64_t table, std::uint64_t size, std::uint32_t texts) const
    {
        if (!contains(table, size))
            return false;
        for (std::uint64_t i = 0; i < size; ++i) {
            if (at(table + i * kWordSize) > texts)
                return false;
        }
        return true;
    }

private:
    std::string_view m_bytes;
};

}

bool isWholeCatalogue(std::string_view bytes)
{
    const CatalogueWords words{bytes};
    if (!words.contains(0, kCatalogueHeaderWords) || words.at(0) != kCatalogueMagic
        || words.at(kWordSize) != 0)
        return false;
    const auto texts = words.at(2 * kWordSize);
    return words.hasTexts(words.at(3 * kWordSize), texts)
        && words.hasTexts(words.at(4 * kWordSize), texts)
        && words.hasHashes(words.at(6 * kWordSize), words.at(5 * kWordSize), texts);
}

}
