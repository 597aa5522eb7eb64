#include "file/syntax/splice.h"

#include <vector>

#include "file/syntax/lexer.h"
#include "tests/support/memory_document.h"

namespace {
// Sets V to (new) and removes RV; "-" when the dictionary is not spliced.
std::string spliced(const std::string& text)
{
    CPDFObj value;
    value.set_string("new", 3);
    const PDF_ENTRY_CHANGE changes[] = {{"V", &value}, {"RV", nullptr}};
    const std::vector<uint8_t> bytes(text.begin(), text.end());  // nothing may be read behind the end
    CPDFLexer lexer(bytes.data(), bytes.data() + bytes.size());
    PDF_String out = {0, nullptr};
    if (!CPDFSplicer().splice(lexer, changes, out))
        return out.buf ? "leaked" : "-";
    std::string result(reinterpret_cast<const char*>(out.buf), static_cast<size_t>(out.len));
    out.release();
    return result + std::string(reinterpret_cast<const char*>(lexer.at()), lexer.left());
}
}  // namespace

TEST(CPDFSplicerTest, ChangesEntriesAndKeepsTheOthers)
{
    const char* const cases =
        "<<>> => <</V(new)>> |  << /V (old) /T (a) >> rest => <</T(a)/V(new)>> rest | "
        "<</T(a)/V/Name/RV<</V 1>>/V[1 2]/F 4>> => <</T(a)/F 4/V(new)>> | "
        "<</VX 1/MK<</V(in) /R 90>>/R 2>> => <</VX 1/MK<</V(in)/R 90>>/R 2/V(new)>> | "
        "<</K [ 1  0 R\n2 0 R null ] /N/A /B true >> => <</K[1 0 R 2 0 R null]/N/A/B true/V(new)>> | "
        "<</T (a\\) % >>) % /V (c)\n/H <61 62> %x\r>> => <</T(a\\) % >>)/H<61 62>/V(new)>> | "
        "<</ 5/A[/ 1 /a]/B/ >> => <</ 5/A[/ 1/a]/B//V(new)>> | "
        "<</A 1% c\n2/B 3>> => <</A 1 2/B 3/V(new)>> | "
        "<</R[0.50 -0.5 10.00 .0 0.0 5. 1.25 100 /0.50 /a0.5 1.0.0]>> => <</R[.5 -.5 10 .0 0 5 1.25 100/0.50/a0.5 1.0.0]/V(new)>> | "
        "<</#56(old)>> => - | <</A[1/B 2>> => - | <</A(b>> => - | <</A>> => - | <</A<</B 1 stream => - | "
        "<</A{1}>> => - | <<1/A 2>> => - | [1] => - |  => - | ";
    // '-': damaged, or not to be told by the bytes alone; the object is read and written as a whole.
    for (const auto& [text, expected] : rows_of(cases))
        EXPECT_EQ(spliced(text), expected) << text;
    EXPECT_EQ(spliced("<</A" + std::string(100, '[') + std::string(100, ']') + ">>"), "-");
}
