#pragma once

// Queues and timers are not simulated: the tests run on virtual time. The main queue has a name.

extern "C" {
using dispatch_queue_t = struct dispatch_queue_s*;
dispatch_queue_t dispatch_get_main_queue();
}
