#pragma once

#include <string>
#include <utility>
#include <vector>

#include "Hosts/MacOS/System/CFRef.h"

namespace quorvel::test {

/// A value of the simulated system that a test or the simulation owns.
using Value = CFRef<CFTypeRef>;

/// The reference is the caller's to release, as that of a call with Create or Copy in its name.
template <typename Ref> Ref give(Value value)
{
    return static_cast<Ref>(const_cast<void*>(std::exchange(*value.out(), nullptr)));
}

Value text(std::string_view utf8);
/// May hold what is no valid text, such as half of a surrogate pair.
Value utf16(std::u16string);
Value number(std::int64_t);
Value real(double);
Value truth(bool);
Value null();
Value array(std::vector<Value>);
/// An entry without a value is left out.
Value dictionary(const std::vector<std::pair<std::string, Value>>&);
Value rectangle(double x, double y, double width, double height);
Value uuid(std::string_view text);
Value axValue(AXValueType, const CGRect&);

}
