#pragma once

// Queues and timers are not simulated: the tests run on virtual time.
