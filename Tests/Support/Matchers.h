#pragma once

#include <gmock/gmock.h>

namespace quorvel::test {

// Matchers by their own names, in the tests of the portable program.
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Optional;
using testing::Pair;
using testing::SizeIs;
using testing::UnorderedElementsAre;

}
