// The texts that are made of the words of the command.
#pragma once

#include "packaging/texts/command_words.h"

// The manual page of the command, and that of one verb, in the man macros of roff.
std::string make_manual(const COMMAND_WORDS& command, const std::string& version);
std::string make_manual(const COMMAND_WORDS& command, const COMMAND_VERB& verb, const std::string& version);

std::string make_bash_completion(const COMMAND_WORDS& command);
std::string make_zsh_completion(const COMMAND_WORDS& command);
std::string make_fish_completion(const COMMAND_WORDS& command);
