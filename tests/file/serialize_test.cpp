#include "file/syntax/serialize.h"

#include <cstdio>
#include <random>

#include "tests/support/memory_document.h"

namespace {
std::string written(const CPDFObj& obj)
{
    std::string out;
    write_object(out, obj);
    return out;
}

std::string real_text(VXFIX value)
{
    std::string out;
    write_real(out, value);
    return out;
}

VXFIX real_value(const std::string& text)
{
    CPDFObj obj;
    parse_object(text, obj);
    EXPECT_TRUE(obj.type == PDF_OBJ_REAL || obj.type == PDF_OBJ_INT) << text;
    return obj.type == PDF_OBJ_REAL ? obj.fval : static_cast<VXFIX>(obj.ival) * VXFIX_ONE;
}
}  // namespace

TEST(SerializeTest, Objects)
{
    const char* const cases =
        "[1 -2 [] true null] => [1 -2[]true null] | "
        "<< /B /C /A (x) /D 5 0 R /E << /F false >> /G [ ] /H .50 >> => <</A(x)/B/C/D 5 0 R/E<</F false>>/G[]/H .5>> | "
        "<<//A/B//C(x)>> => <<//A/B//C(x)>> | /A#20#23#28B#7F\xE4 => /A#20#23#28B#7F#E4 | "
        "(a\\(\\)\\\\) => (a\\(\\)\\\\) | (\\r\\n) => <0D0A> | (abc\\r) => (abc\\r) | (ab\\344) => (ab\xE4) | "
        "<FEFF0041> => <FEFF0041> | "
        "[0.0 .5 -.002 12.34 595.276 1000000.01 99999.99999] => [0 .5 -.002 12.34 595.276 1000000.01 99999.99999] | ";
    for (const auto& [text, expected] : rows_of(cases)) {
        CPDFObj obj;
        parse_object(text, obj);
        EXPECT_EQ(written(obj), expected) << text;
    }
}

TEST(SerializeTest, EveryByteSurvives)
{
    CPDFArray strings;
    const auto add = [&strings](const std::string& s) { strings.append_str(s.data(), static_cast<int>(s.size())); };
    CPDFObj obj;
    CPDFDictionary* dict = obj.set_dict();
    for (int a = 0; a < 256; ++a) {
        const auto first = static_cast<char>(a);
        add({first});
        for (int b = 0; b < 256; ++b)
            add({first, static_cast<char>(b)});
        // A name holds no byte 0; it is a value here and a key.
        for (const std::string& name : {std::string{first}, {first, '#'}, {first, '2'}, {first, 'A'}, {first, '/'}})
            dict->set_item_name(name.c_str(), name.c_str());
    }
    // What means something inside a string, followed by anything of that kind, with enough plain text to be literal.
    const std::string special("()\\\r\n\0007<>%", 10);
    for (const char a : special) {
        for (const char b : special) {
            for (const char c : special)
                add({'x', 'y', 'z', a, b, c, 'n', '0'});
        }
    }
    dict->set_item_arr("strings", &strings);
    CPDFObj back;
    parse_object(written(obj), back);
    EXPECT_EQ(show_object(back), show_object(obj));
}

TEST(SerializeTest, RealsKeepEveryBitInTheFewestDecimals)
{
    std::mt19937_64 random(1);
    std::vector<VXFIX> values = {0, 1, -1, VXFIX_ONE - 1, -VXFIX_ONE, INT64_MAX, -INT64_MAX, VXFIX_ONE / 2};
    for (int i = 0; i < 50000; ++i)
        values.push_back(std::max(static_cast<VXFIX>(random()) >> (random() % 63), -INT64_MAX));
    for (const VXFIX value : values) {
        const std::string text = real_text(value);
        ASSERT_EQ(text.find_first_not_of("-0123456789."), std::string::npos) << text;
        ASSERT_EQ(real_value(text), value) << text;
        const size_t point = text.find('.');
        if (point == std::string::npos)
            continue;
        char shorter[64];
        std::snprintf(shorter, sizeof shorter, "%.*Lf", static_cast<int>(text.size() - point) - 2,
                      static_cast<long double>(value) / VXFIX_ONE);
        ASSERT_NE(real_value(shorter), value) << text << " could be " << shorter;
    }
}
