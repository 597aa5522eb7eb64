// Damaged copies of real files: nothing may crash, take ten seconds or a gibibyte, or lose a value when it is saved.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "fuzz/open_form_check.h"
#include "tests/support/pdf_builder.h"

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/common_interface_defs.h>
#endif

namespace {

constexpr unsigned SECONDS = 10;
constexpr rlim_t MEMORY = rlim_t{1} << 30;

char g_variant[1024];  // what is being opened, for reports of crashes

void report_variant()
{
    static_cast<void>(!::write(STDERR_FILENO, g_variant, std::strlen(g_variant)));
}

void report_signal(int signal)
{
    report_variant();
    std::signal(signal, SIG_DFL);
    std::raise(signal);
}

// Watches over the process: names the variant when it dies, and bounds its memory. The sanitizer's own memory has no bound.
void watch()
{
    std::signal(SIGALRM, report_signal);
#if defined(__SANITIZE_ADDRESS__)
    __sanitizer_set_death_callback(report_variant);
#else
    for (const int signal : {SIGABRT, SIGSEGV, SIGBUS, SIGFPE})
        std::signal(signal, report_signal);
    size_t pages = 0;
    std::ifstream("/proc/self/statm") >> pages;
    const rlim_t limit = pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE)) + MEMORY;
    const rlimit bound = {limit, RLIM_INFINITY};
    ASSERT_EQ(::setrlimit(RLIMIT_AS, &bound), 0);
#endif
}

// Positions of bytes that belong to the structure, not to the data of a stream.
std::vector<size_t> structure_of(const std::string& text)
{
    std::vector<size_t> positions;
    for (size_t at = 0; at < text.size();) {
        size_t data = text.find("stream\n", at);
        data = std::min(data == std::string::npos ? text.size() : data + 7, text.size());
        for (; at < data; ++at)
            positions.push_back(at);
        at = text.find("endstream", data);
    }
    return positions;
}

void open_variant(const std::string& label, const std::string& text)
{
    std::snprintf(g_variant, sizeof g_variant, "while opening %s\n", label.c_str());
    ::alarm(SECONDS);
    const char* fault = open_form_fault({text.begin(), text.end()}, 4);
    ::alarm(0);
    EXPECT_STREQ(fault, nullptr) << label;
}

void open_damaged(const std::string& path)
{
    const std::string text = read_text_file(path);
    const bool large = text.size() > 1000000;
    const size_t cuts = large ? 8 : 40;
    const size_t flips = large ? 12 : 60;
    for (size_t i = 0; i < cuts; ++i) {
        const size_t size = text.size() * i / cuts;
        open_variant(path + ", cut to " + std::to_string(size) + " bytes", text.substr(0, size));
    }
    const std::vector<size_t> structure = structure_of(text);
    std::minstd_rand random(static_cast<unsigned>(text.size()));
    for (size_t i = 0; i < flips; ++i) {
        const size_t at = i % 4 ? structure[random() % structure.size()] : random() % text.size();
        std::string flipped = text;
        flipped[at] = static_cast<char>(flipped[at] ^ (1u << random() % 8));
        open_variant(path + ", byte " + std::to_string(at) + " flipped to " + std::to_string(flipped[at]), flipped);
    }
    open_variant(path, text);
}

}  // namespace

TEST(DamageTest, Samples)
{
    watch();
    const std::vector<std::string> files = pdf_files(FORMWORK_SAMPLES_DIR);
    EXPECT_FALSE(files.empty());
    for (const std::string& path : files)
        open_damaged(path);
}

TEST(DamageTest, RealFiles)
{
    const char* corpus = std::getenv("FORMWORK_CORPUS");
    const std::vector<std::string> files = pdf_files(corpus ? corpus : "");
    if (files.empty())
        GTEST_SKIP() << "FORMWORK_CORPUS names no folder with real files";
    watch();
    for (const std::string& path : files)
        open_damaged(path);
}
