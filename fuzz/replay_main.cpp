// Runs a fuzz target over the files and folders named on the command line, where libFuzzer is not linked in.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size);

namespace {

bool run_file(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    const std::vector<uint8_t> bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (file.bad() || !file.is_open()) {
        std::fprintf(stderr, "%s: can't be read\n", path.c_str());
        return false;
    }
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    return true;
}

// Runs every file under `path`; the number run, or -1 when one can't be read.
int run_path(const std::filesystem::path& path)
{
    if (!std::filesystem::is_directory(path))
        return run_file(path) ? 1 : -1;
    int count = 0;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(path)) {
        if (!entry.is_regular_file())
            continue;
        if (!run_file(entry.path()))
            return -1;
        ++count;
    }
    return count;
}

}  // namespace

int main(int argc, char** argv)
{
    int total = 0;
    for (int i = 1; i < argc; ++i) {
        const int count = run_path(argv[i]);
        if (count < 0)
            return 1;
        total += count;
    }
    std::printf("%d inputs\n", total);
    return total > 0 ? 0 : 1;
}
