// A bound that a busy machine does not reach sooner than an idle one.
#pragma once

#include <sys/time.h>

// Ends the program with SIGPROF once it has used the processor for `seconds` more; 0 takes the bound away.
inline void bound_processor_time(unsigned seconds)
{
    const itimerval bound = {{0, 0}, {static_cast<time_t>(seconds), 0}};
    ::setitimer(ITIMER_PROF, &bound, nullptr);
}
