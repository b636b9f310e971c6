#pragma once

#include <optional>
#include <string>

#include "Tests/MacSystem/Support/Objects.h"

namespace quorvel::test {

struct String final : Object {
    explicit String(std::u16string value) : Object(TypeID::string), text(std::move(value)) { }
    std::string description() const override;
    bool equals(const Object& other) const override
    {
        const auto* string = dynamic_cast<const String*>(&other);
        return string && string->text == text;
    }
    std::size_t hash() const override { return std::hash<std::u16string>{}(text); }

    std::u16string text;
};

/// An unpaired surrogate becomes the loss byte.
std::string encode(std::u16string_view, char lossByte);
/// Absent for bytes that are no UTF-8.
std::optional<std::u16string> decode(std::string_view bytes);

}
