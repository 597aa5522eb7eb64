// Writes the manual pages and the completions of the command.
//
// make_texts FOLDER VERSION: into FOLDER/man and FOLDER/completions, which are made.

#include <filesystem>
#include <fstream>
#include <iostream>

#include "packaging/texts/command_texts.h"

namespace {

bool write(const std::filesystem::path& path, const std::string& text)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream out(path, std::ios::binary);
    out << text;
    out.close();
    if (!out)
        std::cerr << path.string() << " can't be written\n";
    return static_cast<bool>(out);
}

bool write_all(const std::filesystem::path& folder, const std::string& version)
{
    const COMMAND_WORDS command = read_command_words();
    bool good = write(folder / "man/formwork.1", make_manual(command, version));
    for (const COMMAND_VERB& verb : command.verbs)
        good = write(folder / "man" / ("formwork-" + verb.name + ".1"), make_manual(command, verb, version)) && good;
    return write(folder / "completions/formwork", make_bash_completion(command)) &&
           write(folder / "completions/_formwork", make_zsh_completion(command)) &&
           write(folder / "completions/formwork.fish", make_fish_completion(command)) && good;
}

}  // namespace

int main(int argc, char** argv)
{
    if (argc != 3) {
        std::cerr << "usage: make_texts FOLDER VERSION\n";
        return 2;
    }
    return write_all(argv[1], argv[2]) ? 0 : 1;
}
