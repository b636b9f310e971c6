#include "Tests/Support/Contract.h"

#include <gtest/gtest.h>

namespace quorvel::test {

void contractBroken(std::string_view what)
{
    ADD_FAILURE() << "platform contract broken: " << what;
}

}
