#pragma once

#include <cstddef>
#include <string>
#include <utility>

#include <fmt/format.h>

namespace quorvel {

/// Finds the program's texts in the user's language; each host has its own way (catalogues, tables
/// of the bundle). Without one, and for a text that nobody has translated, the text itself is used,
/// which is English. From any thread.
struct Translator {
    std::string (*text)(const char* english) = nullptr;
    /// The plural form for `count` things; languages differ in how many forms they have.
    std::string (*plural)(const char* one, const char* many, std::size_t count) = nullptr;

    /// The one in use. To be set before anything is shown.
    static Translator& current()
    {
        static Translator translator;
        return translator;
    }
};

/// Every text that a user reads passes through here. The argument must be a literal: the catalogues
/// are made from the texts in these calls.
inline std::string tr(const char* english)
{
    auto* translate = Translator::current().text;
    return translate ? translate(english) : std::string{english};
}

/// With values for its `{}`. A translation that does not fit the values is not used.
template <typename... Values> std::string trFormat(const char* english, const Values&... values)
{
    try {
        return fmt::format(fmt::runtime(tr(english)), values...);
    } catch (const fmt::format_error&) {
        return fmt::format(fmt::runtime(english), values...);
    }
}

/// A text with one `{}`, which is the number of things, as `shown`: that may be written otherwise.
template <typename Shown>
std::string trCount(const char* one, const char* many, std::size_t count, const Shown& shown)
{
    auto* translate = Translator::current().plural;
    const char* english = count == 1 ? one : many;
    try {
        return fmt::format(
            fmt::runtime(translate ? translate(one, many, count) : std::string{english}), shown);
    } catch (const fmt::format_error&) {
        return fmt::format(fmt::runtime(english), shown);
    }
}

inline std::string trCount(const char* one, const char* many, std::size_t count)
{
    return trCount(one, many, count, count);
}

}
