#include "tools/batch/ending.h"

#include <atomic>
#include <csignal>
#include <iterator>

namespace {

constexpr int NUMBERS[] = {SIGINT, SIGTERM, SIGHUP};

// NOLINTBEGIN(cppcoreguidelines-avoid-non-const-global-variables): a signal has no other way to them
std::atomic<int> g_number = 0;
struct sigaction g_before[std::size(NUMBERS)];
// NOLINTEND(cppcoreguidelines-avoid-non-const-global-variables)

void put_back()
{
    for (size_t i = 0; i < std::size(NUMBERS); ++i)
        sigaction(NUMBERS[i], &g_before[i], nullptr);
}

extern "C" void ask_for_end(int number)
{
    g_number = number;
    put_back();
}

}  // namespace

BatchEnding::BatchEnding()
{
    g_number = 0;
    struct sigaction action = {};
    action.sa_handler = ask_for_end;
    action.sa_flags = SA_RESTART;
    sigfillset(&action.sa_mask);
    for (size_t i = 0; i < std::size(NUMBERS); ++i)
        sigaction(NUMBERS[i], nullptr, &g_before[i]);
    for (size_t i = 0; i < std::size(NUMBERS); ++i) {
        if (g_before[i].sa_handler != SIG_IGN)  // as nohup has it
            sigaction(NUMBERS[i], &action, nullptr);
    }
}

BatchEnding::~BatchEnding()
{
    put_back();
}

int BatchEnding::number()
{
    return g_number;
}
