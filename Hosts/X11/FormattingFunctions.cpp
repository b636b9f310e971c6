// The functions of fmt that its headers only declare, for a bar that loads neither fmt's shared
// library nor C++'s. Version 9 keeps their definitions in this header; CMake looks for the version.
#include <fmt/format-inl.h>

namespace fmt {
inline namespace v9 {
namespace detail {

template dragonbox::decimal_fp<float> dragonbox::to_decimal(float) noexcept;
template dragonbox::decimal_fp<double> dragonbox::to_decimal(double) noexcept;
template thousands_sep_result<char> thousands_sep_impl(locale_ref);
template char decimal_point_impl(locale_ref);

}
}
}
