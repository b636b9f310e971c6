#include "Tests/Support/FakeProgram.h"

#include <algorithm>

#include "Tests/Support/VirtualDispatch.h"

namespace quorvel::test {

int FakeProgram::run()
{
    m_dispatch.drain();
    return 0;
}

void FakeProgram::terminate()
{
    if (std::exchange(m_isTerminated, true))
        return;
    willTerminate.emit();
}

}
