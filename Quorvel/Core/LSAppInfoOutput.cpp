#include "Quorvel/Core/LSAppInfoOutput.h"

#include <charconv>

namespace quorvel {

namespace {

constexpr std::string_view kBlanks = " \t\n\v\f\r";
constexpr std::string_view kDigits = "0123456789";

/// Reads a text from left to right; each step says whether what it wants was there.
class Matcher {
public:
    explicit Matcher(std::string_view text) : m_rest(text) { }

    std::string_view rest() const { return m_rest; }
    bool isAtEnd() const { return m_rest.empty(); }

    bool take(std::string_view literal)
    {
        if (!m_rest.starts_with(literal))
            return false;
        m_rest.remove_prefix(literal.size());
        return true;
    }
    std::string_view takeAll(std::string_view characters)
    {
        return takeTo(m_rest.find_first_not_of(characters));
    }
    std::string_view takeUntil(char end) { return takeTo(m_rest.find(end)); }
    /// Goes behind the next such literal.
    bool skipPast(std::string_view literal)
    {
        const auto found = m_rest.find(literal);
        if (found == std::string_view::npos)
            return false;
        m_rest.remove_prefix(found + literal.size());
        return true;
    }

private:
    std::string_view takeTo(std::size_t end)
    {
        const auto taken = m_rest.substr(0, end);
        m_rest.remove_prefix(taken.size());
        return taken;
    }

    std::string_view m_rest;
};

std::string_view trimmed(std::string_view text, std::string_view characters)
{
    const auto first = text.find_first_not_of(characters);
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of(characters) - first + 1);
}

template <typename Number> std::optional<Number> decimal(std::string_view text)
{
    Number number{};
    const auto end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc{} || stopped != end)
        return std::nullopt;
    return number;
}

/// Serial numbers come bare or with the application's name behind them.
std::string serialFrom(std::string_view token)
{
    return std::string{trimmed(token.substr(0, token.find("-\"")), ":")};
}

/// What stands between "ASN:" and the next colon, which is passed; never empty.
std::optional<std::string_view> takeSerialToken(Matcher& matcher)
{
    const auto token = matcher.takeUntil(':');
    if (token.empty() || !matcher.take(":"))
        return std::nullopt;
    return token;
}

/// As in ` 12) "Mail" ASN:0x0-0x2a02a: `, and nothing else on the line.
std::optional<std::string_view> matchHeader(std::string_view line)
{
    Matcher matcher{line};
    matcher.takeAll(kBlanks);
    if (matcher.takeAll(kDigits).empty() || !matcher.take(")") || matcher.takeAll(kBlanks).empty()
        || !matcher.take("\""))
        return std::nullopt;
    matcher.takeUntil('"');
    if (!matcher.take("\"") || matcher.takeAll(kBlanks).empty() || !matcher.take("ASN:"))
        return std::nullopt;
    const auto token = takeSerialToken(matcher);
    matcher.takeAll(kBlanks);
    return matcher.isAtEnd() ? token : std::nullopt;
}

std::optional<std::string_view> findBundleID(std::string_view line)
{
    Matcher matcher{line};
    while (matcher.skipPast("bundleID=\"")) {
        const auto name = matcher.takeUntil('"');
        if (!name.empty() && !matcher.isAtEnd())
            return name;
    }
    return std::nullopt;
}

/// Letters beyond ASCII count, too.
bool isWordCharacter(char character)
{
    const auto byte = static_cast<unsigned char>(character);
    const auto lower = byte | 0x20;
    return byte >= 0x80 || byte == '_' || (byte >= '0' && byte <= '9')
        || (lower >= 'a' && lower <= 'z');
}

/// The digits of the first `pid = 431`, as words of their own.
std::optional<std::string_view> findPIDDigits(std::string_view line)
{
    Matcher matcher{line};
    while (matcher.skipPast("pid")) {
        const auto start = line.size() - matcher.rest().size() - std::string_view{"pid"}.size();
        const bool isOwnWord = start == 0 || !isWordCharacter(line[start - 1]);
        matcher.takeAll(kBlanks);
        if (!isOwnWord || !matcher.take("="))
            continue;
        matcher.takeAll(kBlanks);
        const auto digits = matcher.takeAll(kDigits);
        if (!digits.empty() && (matcher.isAtEnd() || !isWordCharacter(matcher.rest().front())))
            return digits;
    }
    return std::nullopt;
}

/// A record while its lines come in. The first of each property counts.
struct PartialRecord {
    std::optional<std::string> asn;
    std::optional<std::string> bundleID;
    std::optional<ProcessID> pid;

    void readProperties(std::string_view line)
    {
        if (!bundleID)
            bundleID = findBundleID(line);
        if (pid)
            return;
        if (const auto digits = findPIDDigits(line)) {
            if (const auto number = decimal<std::int32_t>(*digits))
                pid = ProcessID{*number};
        }
    }
    void flushCurrent(std::vector<AppRecord>& records)
    {
        if (asn && bundleID && pid)
            records.push_back({*asn, *bundleID, *pid});
        *this = {};
    }
};

/// How many bytes the character at the front has; 0 if it is no valid one.
std::size_t lengthOfCharacter(std::string_view text)
{
    const auto byteAt = [&](std::size_t index) {
        return index < text.size() ? static_cast<unsigned char>(text[index]) : 0u;
    };
    const auto first = byteAt(0);
    if (first < 0x80)
        return 1;
    const std::size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : 2;
    if (first < 0xC2 || first > 0xF4)
        return 0;
    for (std::size_t index = 1; index < length; ++index) {
        if ((byteAt(index) & 0xC0) != 0x80)
            return 0;
    }
    // Longer than needed, half of a surrogate pair, or beyond the last character there is.
    const auto second = byteAt(1);
    const bool isWrong = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F)
        || (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
    return isWrong ? 0 : length;
}

}

std::vector<AppRecord> parseListOutput(std::string_view text)
{
    std::vector<AppRecord> records;
    PartialRecord current;
    Matcher lines{text};
    do {
        const auto line = lines.takeUntil('\n');
        if (const auto token = matchHeader(line)) {
            current.flushCurrent(records);
            current.asn = serialFrom(*token);
        } else if (current.asn) {
            current.readProperties(line);
        }
    } while (lines.take("\n"));
    current.flushCurrent(records);
    return records;
}

std::set<std::string> parseFindOutputASNs(std::string_view text)
{
    std::set<std::string> serials;
    Matcher matcher{text};
    while (matcher.skipPast("ASN:")) {
        if (const auto token = takeSerialToken(matcher))
            serials.insert(serialFrom(trimmed(*token, kBlanks)));
    }
    return serials;
}

std::optional<std::int64_t> parseLSAppInfoErrorCode(std::string_view text)
{
    Matcher matcher{text};
    if (!matcher.skipPast("err="))
        return std::nullopt;
    return decimal<std::int64_t>(matcher.takeAll("-0123456789"));
}

std::string decodedAsUTF8(std::string bytes)
{
    for (std::string_view rest{bytes}; !rest.empty();) {
        const auto length = lengthOfCharacter(rest);
        if (length == 0)
            return {};
        rest.remove_prefix(length);
    }
    return bytes;
}

}
