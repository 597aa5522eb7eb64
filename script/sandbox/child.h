// What the process of the scripts does.
#pragma once

#include <cstddef>
#include <string_view>

// Bytes for what scripts make, and for the interpreter, messages and the form beside them.
constexpr size_t SCRIPT_MEMORY_MAX = size_t{64} << 20;
constexpr size_t SCRIPT_MEMORY_BESIDE = size_t{128} << 20;

constexpr std::string_view SCRIPT_MEMORY_FAULT = "it took more than 64 MiB of memory";

enum SCRIPT_EXIT {
    SCRIPT_EXIT_DONE = 0,
    SCRIPT_EXIT_MEMORY = 20,
    SCRIPT_EXIT_UNCONFINED,
    SCRIPT_EXIT_CONFUSED,
};

// Reads requests from `pipe` and answers them until there are no more; returns how the process is to exit. Whoever calls
// it has nothing else to do in this process.
int serve_scripts(int pipe);
