// Archives of the system reach the standard streams as programs do, with an address that is known when they are linked, which is
// not so in a shared library. The linker puts these variables in the place of the streams (--wrap).
#include <cstdio>

extern "C" {
extern FILE* __real_stdin;
extern FILE* __real_stdout;
extern FILE* __real_stderr;

FILE* __wrap_stdin;
FILE* __wrap_stdout;
FILE* __wrap_stderr;

__attribute__((constructor(101))) static void take_standard_streams()
{
    __wrap_stdin = __real_stdin;
    __wrap_stdout = __real_stdout;
    __wrap_stderr = __real_stderr;
}
}
