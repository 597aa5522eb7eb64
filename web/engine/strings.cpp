// std::string, compiled to be fast: the compiler's library has it compiled to be small, without any inlining.
#include <string>

template class std::basic_string<char>;
