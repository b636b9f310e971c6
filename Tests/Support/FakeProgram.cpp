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

Size FakeText::measure(std::string_view utf8, const TextStyle& style) const
{
    auto isFirstByte = [](char byte) { return (static_cast<unsigned char>(byte) & 0xC0) != 0x80; };
    auto characters = std::ranges::count_if(utf8, isFirstByte);
    return {static_cast<double>(characters) * style.size / 2, style.size * 1.25};
}

}
