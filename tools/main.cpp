// The formwork command.

#include <csignal>

#include "file/output_file.h"
#include "tools/command.h"

namespace {

// Takes away what a signal would leave and lets it end the program.
extern "C" void clean_up(int number)
{
    remove_partial_outputs();
    std::signal(number, SIG_DFL);
    std::raise(number);
}

void clean_up_at_signals()
{
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        if (std::signal(number, clean_up) == SIG_IGN)
            std::signal(number, SIG_IGN);  // as nohup has it
    }
}

}  // namespace

int main(int argc, char** argv)
{
    clean_up_at_signals();
    return run_command(argc, argv);
}
