#include "file/syntax/parser.h"

#include <random>

#include "core/key_set.h"
#include "tests/support/pdf_builder.h"

namespace {
// The object at the start of `text` as text, "nothing" when the parser finds none.
std::string parsed(const std::string& text, const CPDFKeySet* keys = nullptr)
{
    // A block of its own size lets the sanitizer see a read behind the end.
    const std::vector<uint8_t> exact(text.begin(), text.end());
    CPDFParser parser(exact.data(), exact.data() + exact.size(), exact.data());
    CPDFObj out;
    if (parser.parse(out, keys))
        return show_object(out);
    EXPECT_EQ(out.type, PDF_OBJ_NULL);
    return "nothing";
}

void keep_only(CPDFObj& obj, const CPDFKeySet& keys)
{
    for (int32_t i = obj.dictionary() ? obj.dict->count - 1 : -1; i >= 0; --i) {
        const std::string key = obj.dict->items[i]->key();
        if (!keys.contains(key.c_str(), key.size()))
            obj.dict->remove_item(key.c_str());
    }
}
}  // namespace

TEST(CPDFParserTest, Values)
{
    const std::string rows =
        // numbers
        "+17 => 17 | --5 => -5 | - => 0 | 12abc => 12 | -2147483648 => -2147483648 | 2147483648 => 2147483648.000000 | "
        "4. => 4.000000 | -.002 => -0.002000 | . => 0.000000 | 1..2 => 1.000000 | 1.5e3 => 1.500000 | "
        "0.00000000000000000000000000001 => 0.000000 | 99999999999999999999999999 => 137438953471.000000 | "
        "137438953471.9999999999 => 137438953472.000000 | -137438953471.9999999999 => -137438953472.000000 | "
        // names
        "/ => / | /A#20B/C => /A B | /a#2Fb#2fc => /a/b/c | /A#4G#4 => /A#4G#4 | /A(x) => /A | /A#00B => /A#00B | "
        "/\xC3\xA4%c => /\xC3\xA4 | "
        // strings
        "() => () | (a(b)c)d => (a(b)c) | (\\(\\)\\\\\\x) => (()\\x) | (\\n\\r\\t\\b\\f) => <0A0D09080C> | "
        "(a\\\nb\\\r\nc\\\rd) => (abcd) | (\r\n\r\n\n\r) => <0A0A0A0A> | (\\53\\0053\\0) => <2B053300> | "
        "(\\400\\777\\8) => <00FF38> | (ab => (ab) | (ab\\ => (ab\\) | <48 65\n6C6> => (Hel`) | <4G8 => (H) | "
        // keywords
        "false] => false | truely => null |  => nothing |  % only a comment => nothing | ) => nothing | "
        // references
        "[7 1 0 R/N] => [7 1 0 R /N] | [1 0 R2 0 R] => [1 0 null 0 null] | [1 %c)\n0 %d]\rR] => [1 0 R] | "
        "[1 0R -1 0 R 1.0 0 R] => [1 0 -1 0 null 1.000000 0 null] | 5 4294967295 R => 5 65535 R | "
        // containers
        "<</A 1/B<</C[()<>]>>>> => << /A 1 /B << /C [() ()] >> >> | <</B 1/A 2/B 3>> => << /A 2 /B 3 >> | "
        "<</A null/B 1>> => << /B 1 >> | <</A foo/B 1>> => << /B 1 >> | <</A/B/C>> => << /A /B >> | "
        "<</A 1 2 (x) /B 3>> => << /A 1 /B 3 >> | <</A)/B 3>> => << /B 3 >> | <</A[1 2>> => << /A [1 2] >> | "
        "<</A 1 endobj/B 2>> => << /A 1 >> | <</A 1/B => << /A 1 >> | <</A 1> /B 2>> => << /A 1 >> | "
        "[1{2}foo%]\n3] 4 => [1 null 2 null null 3] | [1 [2 endobj 3] => [1 [2]] | ";
    for (const auto& [text, expected] : rows_of(rows))
        EXPECT_EQ(parsed(text), expected) << text;
}

TEST(CPDFParserTest, LimitsGiveNothing)
{
    constexpr const char* WANTED[] = {"A"};
    const CPDFKeySet keys(WANTED);
    for (const auto& [open, close] : {std::pair<std::string, std::string>{"[", "]"}, {"<</A ", ">>"}}) {
        SCOPED_TRACE(open);
        const auto nested = [&open = open, &close = close](int depth) {
            return repeated(open, depth) + "1" + repeated(close, depth);
        };
        EXPECT_EQ(parsed(nested(LIMIT_OBJECT_DEPTH)).substr(0, 1), open.substr(0, 1));
        EXPECT_EQ(parsed(nested(LIMIT_OBJECT_DEPTH + 1)), "nothing");
        EXPECT_EQ(parsed("<</X " + nested(LIMIT_OBJECT_DEPTH - 1) + "/A 1>>", &keys), "<< /A 1 >>");
        EXPECT_EQ(parsed("<</X " + nested(LIMIT_OBJECT_DEPTH) + "/A 1>>", &keys), "nothing");
        EXPECT_EQ(parsed(repeated(open, 100000)), "nothing");
    }
    EXPECT_EQ(parsed("[" + repeated("0 ", LIMIT_OBJECT_VALUES)), "nothing");
}

// The values are stepped over where they are not wanted; what follows must be found all the same.
TEST(CPDFParserTest, ReadsOnlyTheWantedKeys)
{
    constexpr const char* WANTED[] = {"T", "Ty"};
    const CPDFKeySet keys(WANTED);
    for (const char* value :
         {" -1.5 ", "/T", "(/T (no) %)", "<2F54>", "[/T[/T]<</T 1>>]", "<</T<</T/T>>/X[(>>)]>>", "1 0 R", "%/T(c)\n 5",
          "[(])<5D>/T%]\n]", "null", "<<>>", "()", "/", "(\\\\)", "[1 0 R/T 2 0 R]", "foo", "[<</A<41>>>]"}) {
        SCOPED_TRACE(value);
        const std::string text = std::string("<</X ") + value + "/T(a)/Type/X/Y " + value + "/Ty 1/Z " + value + ">>";
        EXPECT_EQ(parsed(text, &keys), "<< /T (a) /Ty 1 >>");
        EXPECT_EQ(parsed("<</T(b)/X " + std::string(value) + "/T(a)>>/Ty 2", &keys), "<< /T (a) >>");
        for (size_t len = 0; len < text.size(); ++len)
            EXPECT_EQ(parsed(text.substr(0, len), &keys) == "nothing", len == 0) << len;
    }
    const std::string text = "<</A[1 0 R -2.5(a\\)(b)\\050)<48656>/N#20]/B<</C null/D true>>%c\n/E foo/F 12 0 R>>";
    for (size_t len = 2; len < text.size(); ++len)
        EXPECT_EQ(parsed(text.substr(0, len)).substr(0, 2), "<<") << len;
}

// Otherwise a damaged object that is stored back would lose entries that were seen before.
TEST(CPDFParserTest, KeySetReadsEqualFullReadsOfDamagedObjects)
{
    constexpr const char* WANTED[] = {"T"};
    const CPDFKeySet keys(WANTED);
    const char* const tokens[] = {"<<", ">>",   ">",   "[",       "]",     "/T",     "/X",     "/T(a)",     "(",
                                  ")",  "<41>", "<",   "1",       "1 0 R", "endobj", "stream", "endstream", "%c\n",
                                  "{",  "null", "foo", "/endobj", "/",     "<</T[",  "]>>"};
    std::minstd_rand random(7);
    for (int i = 0; i < 30000; ++i) {
        std::string text = "<</X";
        for (size_t count = random() % 12; count > 0; --count)
            text += (random() % 3 ? " " : "") + std::string(tokens[random() % std::size(tokens)]);
        CPDFObj full;
        const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
        ASSERT_TRUE(CPDFParser(bytes, bytes + text.size(), nullptr).parse(full, nullptr));
        keep_only(full, keys);
        ASSERT_EQ(parsed(text, &keys), show_object(full)) << text;
    }
}
