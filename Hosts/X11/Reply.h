#pragma once

#include <cstdlib>
#include <memory>

namespace quorvel::xdg::x11 {

struct FreeReply {
    void operator()(void* reply) const { std::free(reply); }
};

/// A reply, an error or an event: xcb leaves freeing it to whoever takes it.
template <typename Type> using Reply = std::unique_ptr<Type, FreeReply>;

template <typename Type> Reply<Type> owned(Type* reply)
{
    return Reply<Type>{reply};
}

}
