#include "document/serialize.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>

#include "core/array.h"
#include "core/dictionary.h"
#include "document/parser.h"

namespace {

void parse_back(const std::string& text, CPDFObj& out)
{
    const auto* bytes = reinterpret_cast<const uint8_t*>(text.data());
    CPDFParser parser(bytes, bytes + text.size(), nullptr);
    ASSERT_TRUE(parser.parse(out, nullptr)) << text;
    EXPECT_TRUE(parser.lexer().done()) << text;
}

std::string rewritten(const std::string& text)
{
    CPDFObj obj;
    parse_back(text, obj);
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
    parse_back(text, obj);
    EXPECT_TRUE(obj.type == PDF_OBJ_REAL || obj.type == PDF_OBJ_INT) << text;
    return obj.type == PDF_OBJ_REAL ? obj.fval : static_cast<VXFIX>(obj.ival) * VXFIX_ONE;
}

}  // namespace

TEST(SerializeTest, Objects)
{
    const struct {
        const char* text;
        const char* written;
    } cases[] = {
        {"[1 -2 [] true null]", "[1 -2 [] true null]"},
        {"<< /B /C /A (x) /D 5 0 R /E << /F false >> /G [ ] /H .50 >>",
         "<</A(x)/B/C/D 5 0 R/E<</F false>>/G[]/H 0.5>>"},
        {"<</A null/B 1>>", "<</B 1>>"},
        {"<</A 1>>", "<</A 1>>"},
        {"<<//A/B//C(x)>>", "<<//A/B//C(x)>>"},
        {"/A#20#23#28B#7F\xE4", "/A#20#23#28B#7F#E4"},
        {"(a\\(\\)\\\\)", "(a\\(\\)\\\\)"},
        {"(\\r\\n)", "<0D0A>"},
        {"(abc\\r)", "(abc\\r)"},
        {"(ab\\344)", "(ab\xE4)"},
        {"<FEFF0041>", "<FEFF0041>"},
        {"()", "()"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(rewritten(c.text), c.written);
    }
}

TEST(SerializeTest, EveryByteOfAStringSurvives)
{
    std::vector<std::string> strings = {""};
    for (int a = 0; a < 256; ++a) {
        strings.push_back(std::string(1, static_cast<char>(a)));
        for (int b = 0; b < 256; ++b)
            strings.push_back({static_cast<char>(a), static_cast<char>(b)});
    }
    // What means something inside a string, followed by anything of that kind, with enough plain text to be literal.
    const std::string special("()\\\r\n\0007<>%", 10);
    for (const char a : special) {
        for (const char b : special) {
            for (const char c : special)
                strings.push_back({'x', 'y', 'z', a, b, c, 'n', '0'});
        }
    }
    CPDFArray array;
    for (const std::string& s : strings)
        array.append_str(s.data(), static_cast<int>(s.size()));
    CPDFObj obj;
    obj.set_array()->copy_from(&array);
    std::string text;
    write_object(text, obj);

    CPDFObj back;
    parse_back(text, back);
    ASSERT_TRUE(back.array());
    ASSERT_EQ(static_cast<size_t>(back.arr->count), strings.size());
    for (size_t i = 0; i < strings.size(); ++i) {
        const CPDFObj& item = back.arr->items[i];
        ASSERT_EQ(item.type, PDF_OBJ_STRING);
        ASSERT_EQ(std::string(reinterpret_cast<const char*>(item.str.buf), static_cast<size_t>(item.str.len)),
                  strings[i]);
    }
}

// A name can't hold the byte 0, every other one it can, as a value and as a key.
TEST(SerializeTest, EveryByteOfANameSurvives)
{
    CPDFObj obj;
    CPDFDictionary* dict = obj.set_dict();
    std::vector<std::string> names = {""};
    for (int a = 1; a < 256; ++a) {
        names.push_back(std::string(1, static_cast<char>(a)));
        for (const char b : {'#', '2', 'A', '/', '('})
            names.push_back({static_cast<char>(a), b});
    }
    for (const std::string& name : names)
        dict->set_item_name(name.c_str(), name.c_str());
    std::string text;
    write_object(text, obj);

    CPDFObj back;
    parse_back(text, back);
    ASSERT_TRUE(back.dictionary());
    EXPECT_EQ(static_cast<size_t>(back.dict->count), names.size());
    for (const std::string& name : names) {
        const CPDFObj* value = back.dict->get_item(name.c_str());
        ASSERT_TRUE(value && value->is_name(name.c_str())) << name;
    }
}

TEST(SerializeTest, RealsAsTheyWereTyped)
{
    for (const char* text : {"0", "0.5", "0.1", "-0.002", "12.34", "595.276", "-841.8898", "0.0001", "1000000.01",
                             "4294967296", "99999.99999", "-1", "137438953471"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(real_text(real_value(text)), text);
    }
}

TEST(SerializeTest, RealsKeepEveryBitInTheFewestDecimals)
{
    std::mt19937_64 random(1);
    std::vector<VXFIX> values = {0,          1,         -1,         VXFIX_ONE - 1, VXFIX_ONE + 1,
                                 -VXFIX_ONE, INT64_MAX, -INT64_MAX, VXFIX_ONE / 2};
    for (int i = 0; i < 50000; ++i)
        values.push_back(static_cast<VXFIX>(random()) >> (random() % 63));
    for (const VXFIX value : values) {
        if (value == INT64_MIN)
            continue;
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
