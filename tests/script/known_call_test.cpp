#include "script/known_call.h"

#include "tests/script/call_fixture.h"

namespace {

// Values as they were understood, each behind a sign for its kind: - nothing, ? true or false, # number, ' text, [ list.
std::string spelled(const SCRIPT_LIST& values)
{
    std::string out;
    for (const SCRIPT_VALUE& value : values) {
        out += out.empty() ? "" : " ";
        out += "-?#'["[value.held.index()];
        out += value.list() ? spelled(*value.list()) + ']' : value.text();
    }
    return out;
}

std::string read(std::string_view script)
{
    const std::optional<KNOWN_CALL> call = read_known_call(script);
    return call ? std::string(call->function->name) + '(' + spelled(call->arguments) + ')' : "none";
}

}  // namespace

TEST(KnownCallTest, Recognised)
{
    const struct {
        const char* script;
        const char* call;
    } cases[] = {
        {"AFNumber_Format(2, 0, 0, 0, \"\", true);", "AFNumber_Format(#2 #0 #0 #0 ' ?true)"},
        {"\xEF\xBB\xBF// a\r\n /* b */ AFMergeChange /**/ ( ) ;; // c", "AFMergeChange()"},
        {"util . printf('%d', - 1.5e1, +.5, null)", "util.printf('%d #-15 #0.5 -)"},
        {"AFSimple_Calculate(\"SUM\", new Array (\"a\", 'b'))", "AFSimple_Calculate('SUM ['a 'b])"},
        {"AFSimple_Calculate(\"SUM\", [\"a, b\",\n\"c\"])", "AFSimple_Calculate('SUM ['a, b 'c])"},
        {"AFSimple_Calculate('SUM', Array())", "AFSimple_Calculate('SUM [])"},
        {R"(AFDate_FormatEx("a\"b\\c\'\x41\u20ac\uD83D\uDE00\
d"))",
         "AFDate_FormatEx('a\"b\\c'A€😀d)"},
        {R"(AFDate_FormatEx('\t"\q'))", "AFDate_FormatEx('\t\"q)"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.script);
        EXPECT_EQ(read(c.script), c.call);
    }
}

TEST(KnownCallTest, NotRecognised)
{
    const char* const scripts[] = {
        "",
        "AFNumber_Format",
        "AFNumber_Format(2",
        "AFNumber_Format(2,)",
        "AFNumber_Format(2 0)",
        "AFNumber_Format(2) x",
        "AFNumber_Format(2); AFNumber_Format(2);",
        "this.AFNumber_Format(2)",
        "afnumber_format(2)",
        "AFNumber_Format(n)",
        "AFNumber_Format(1 + 1)",
        "AFNumber_Format(0x10)",
        "AFNumber_Format(010)",
        "AFNumber_Format(1e999)",
        "AFNumber_Format(--1)",
        "AFNumber_Format(truer)",
        "AFNumber_Format(new true)",
        "AFSimple_Calculate('SUM', new Array(5))",
        "AFSimple_Calculate('SUM', [['a']])",
        "AFSimple_Calculate('SUM', ['a')",
        "AFDate_FormatEx('a\nb')",
        "AFDate_FormatEx('a\\",
        "AFDate_FormatEx('\\u12",
        "AFDate_FormatEx('\\u{41}')",
        "AFDate_FormatEx('\\012')",
        "AFDate_FormatEx('\\uD83D')",
        "AFDate_FormatEx('a\")",
        "/* AFNumber_Format(2)",
        "event.value = AFMakeNumber('1')",
    };
    for (const char* script : scripts)
        EXPECT_EQ(read(script), "none") << script;
}

TEST(KnownCallTest, SizesAreBounded)
{
    std::string names = "'a'";
    for (size_t i = 0; i < KNOWN_CALL_ARGUMENTS_MAX; ++i)
        names += ",'a'";
    EXPECT_EQ(read("AFSimple_Calculate('SUM', [" + names + "])"), "none");
    EXPECT_EQ(read("AFMergeChange()" + std::string(KNOWN_CALL_SIZE_MAX, ' ')), "none");
    EXPECT_EQ(read("AFMergeChange" + std::string(100000, '(')), "none");
}
