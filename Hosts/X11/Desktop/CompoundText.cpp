#include "Hosts/X11/Desktop/CompoundText.h"

#include <algorithm>
#include <array>
#include <optional>

#include "Hosts/Linux/GHandles.h"
#include "Hosts/Linux/Text.h"

namespace quorvel::xdg::x11 {

namespace {

constexpr char kEscape = '\x1b';
constexpr std::string_view kReplacement = "\xef\xbf\xbd";

/// One of the sets that a half of the code table (7 or 8 bits) can hold.
struct Charset {
    const char* encoding = "ISO-8859-1"; ///< of iconv, with this set in the upper half
    int bytesPerCharacter = 1;
};

struct Designation {
    std::string_view escape; ///< without the escape character
    bool isUpperHalf;
    Charset charset;
};

// The registered sets; several bytes a character are given in their EUC form, upper half.
constexpr std::array kDesignations{
    Designation{"(B", false, {"ISO-8859-1", 1}},
    Designation{"(J", false, {"ISO-8859-1", 1}},
    Designation{")I", true, {"SHIFT_JIS", 1}},
    Designation{"-A", true, {"ISO-8859-1", 1}},
    Designation{"-B", true, {"ISO-8859-2", 1}},
    Designation{"-C", true, {"ISO-8859-3", 1}},
    Designation{"-D", true, {"ISO-8859-4", 1}},
    Designation{"-F", true, {"ISO-8859-7", 1}},
    Designation{"-G", true, {"ISO-8859-6", 1}},
    Designation{"-H", true, {"ISO-8859-8", 1}},
    Designation{"-L", true, {"ISO-8859-5", 1}},
    Designation{"-M", true, {"ISO-8859-9", 1}},
    Designation{"-b", true, {"ISO-8859-15", 1}},
    Designation{"$(A", false, {"EUC-CN", 2}},
    Designation{"$)A", true, {"EUC-CN", 2}},
    Designation{"$(B", false, {"EUC-JP", 2}},
    Designation{"$)B", true, {"EUC-JP", 2}},
    Designation{"$(C", false, {"EUC-KR", 2}},
    Designation{"$)C", true, {"EUC-KR", 2}},
};

std::optional<std::string> converted(std::string_view bytes, const char* encoding)
{
    gsize written = 0;
    const GText text{g_convert(bytes.data(), static_cast<gssize>(bytes.size()), "UTF-8", encoding,
        nullptr, &written, nullptr)};
    if (!text)
        return {};
    return std::string{text.get(), written};
}

/// Another client's text must not become a path or an option of iconv's.
bool isEncodingName(std::string_view name)
{
    return std::all_of(name.begin(), name.end(),
        [](char c) { return g_ascii_isalnum(c) || c == '-' || c == '_'; });
}

class Decoder {
public:
    explicit Decoder(std::string_view bytes) : m_rest(bytes) { }

    std::string run()
    {
        while (!m_rest.empty()) {
            if (m_rest.front() == kEscape)
                takeEscape();
            else
                takeCharacters();
        }
        return validUtf8(m_text); // segments of UTF-8 may be none
    }

private:
    static bool isUpper(char byte) { return static_cast<unsigned char>(byte) >= 0x80; }

    void takeEscape()
    {
        m_rest.remove_prefix(1);
        if (m_rest.starts_with("%G"))
            return takeUTF8();
        if (m_rest.starts_with("%/"))
            return takeExtendedSegment();
        for (auto& designation : kDesignations) {
            if (!m_rest.starts_with(designation.escape))
                continue;
            m_rest.remove_prefix(designation.escape.size());
            (designation.isUpperHalf ? m_upper : m_lower) = designation.charset;
            return;
        }
        m_text += kReplacement;
    }

    void takeUTF8()
    {
        m_rest.remove_prefix(2);
        auto end = std::min(m_rest.find("\x1b%@"), m_rest.size());
        m_text += m_rest.substr(0, end);
        m_rest.remove_prefix(std::min(end + 3, m_rest.size()));
    }

    /// A length in two bytes, the name of an encoding up to STX, and text in it.
    void takeExtendedSegment()
    {
        if (m_rest.size() < 5) {
            m_rest = {};
            return;
        }
        auto high = static_cast<unsigned char>(m_rest[3]) & 0x7fU;
        auto low = static_cast<unsigned char>(m_rest[4]) & 0x7fU;
        auto segment = m_rest.substr(5, high * 128 + low);
        m_rest.remove_prefix(5 + segment.size());
        auto name = segment.substr(0, segment.find('\x02'));
        if (name.size() == segment.size() || !isEncodingName(name))
            return;
        std::string encoding{name};
        std::string_view bytes = segment.substr(name.size() + 1);
        m_text += converted(bytes, encoding.c_str()).value_or(std::string{kReplacement});
    }

    /// The characters up to the next escape or the other half of the table.
    void takeCharacters()
    {
        bool isUpperHalf = isUpper(m_rest.front());
        auto end = std::find_if(m_rest.begin(), m_rest.end(),
            [&](char byte) { return byte == kEscape || isUpper(byte) != isUpperHalf; });
        std::string bytes{m_rest.begin(), end};
        m_rest.remove_prefix(bytes.size());
        auto& charset = isUpperHalf ? m_upper : m_lower;
        if (!isUpperHalf && charset.bytesPerCharacter > 1) {
            for (char& byte : bytes)
                byte = static_cast<char>(byte | 0x80);
        }
        m_text += converted(bytes, charset.encoding).value_or(std::string{kReplacement});
    }

    std::string_view m_rest;
    std::string m_text;
    Charset m_lower;
    Charset m_upper;
};

}

std::string decodeCompoundText(std::string_view bytes)
{
    return Decoder{bytes}.run();
}

}
