#include "formats/import/json_data.h"

#include <gtest/gtest.h>

namespace {
std::string show(const CPDFValue& value)
{
    if (const bool* flag = std::get_if<bool>(&value))
        return *flag ? "yes" : "no";
    if (const auto* text = std::get_if<std::string>(&value))
        return "'" + *text + "'";
    std::string list;
    for (const std::string& text : std::get<std::vector<std::string>>(value))
        list += "'" + text + "'";
    return "[" + list + "]";
}

TEST(JsonDataTest, ValuesReadInTheirOrder)
{
    const struct {
        const char *text, *entries;
    } cases[] = {
        {"{}", ""},
        {"\xEF\xBB\xBF {\"b\" : true, \"a\":false,\"c\":null}\n", "b=yes a=no "},
        {R"({"":"x","a.b":"\u00eb\ud83d\ude00\n","\u0416":"\\\""})", "='x' a.b='ë😀\n' Ж='\\\"' "},
        {R"({"a":[],"b":["x","","y"],"c":"z"})", "a=[] b=['x''''y'] c='z' "},
        {R"({"a":0,"b":-0,"c":-12,"d":1.50,"e":1E+2,"f":-0.0,"g":123456789012345678901234567890,"h":18446744073709551615})",
         "a='0' b='-0' c='-12' d='1.50' e='1E+2' f='-0.0' g='123456789012345678901234567890' h='18446744073709551615' "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        CPDFFormData data = {{"left", "over"}};
        const CPDFStatus status = read_json_data(c.text, data);
        EXPECT_TRUE(status.ok()) << status.text;
        std::string entries;
        for (const PDF_FORM_ENTRY& entry : data)
            entries += entry.name + "=" + show(entry.value) + " ";
        EXPECT_EQ(entries, c.entries);
    }
}

TEST(JsonDataTest, AnythingElseIsRefusedInASentence)
{
    const struct {
        std::string text;
        const char* fault;
    } cases[] = {
        {R"({"a":"x","a":null})", "\"a\" is there twice"},
        {R"({"a":{"b":"x"}})", "\"a\" is an object; "},
        {R"({"a":[["x"]]})", "\"a\" has a list with a list; "},
        {R"({"a":["x",1]})", "\"a\" has a list with a number; "},
        {R"([{"a":"x"}])", "the data is a list"},
        {"{\"a\":1,\n \"b\" 2}", "line 2, column 6: "},
        {"{\"a\":1} {", "line 1, column 9: "},
        {"{\"a\":\"\xFF\"}", "line 1, column 7: "},
        {"{\"a\":\"\\ud800\"}", "line 1, column "},
        {"", "line 1, column 1: "},
        {std::string(1000000, '['), "the data is a list"},
        {"{\"a\":" + std::string(1000000, '['), "\"a\" has a list with a list"},
        {"{\"a\":\"" + std::string(1000000, 'x'), "line 1, column 1000007: "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text.substr(0, 40));
        CPDFFormData data;
        const CPDFStatus status = read_json_data(c.text, data);
        EXPECT_EQ(status.code, PDF_CODE::BAD_DATA);
        EXPECT_EQ(status.text.find(c.fault), 0u) << status.text;
        EXPECT_LT(status.text.size(), 300u);
        EXPECT_TRUE(data.empty());
    }
}
}  // namespace
