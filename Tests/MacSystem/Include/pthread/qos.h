#pragma once

// Threads and their quality of service are not simulated.
