// Data files as we write them, as other programs did, and as nobody should have.
#include "formats/import/column_map.h"
#include "formats/import/csv.h"
#include "formats/import/fdf_data.h"
#include "formats/import/form_rows.h"
#include "formats/import/json_data.h"
#include "formats/import/xfdf_data.h"
#include "tests/support/pdf_builder.h"

namespace {

std::string show(const PDF_FORM_ENTRY& entry)
{
    std::string out = entry.name + "=";
    if (const bool* flag = std::get_if<bool>(&entry.value))
        out += *flag ? "yes" : "no";
    else if (const auto* text = std::get_if<std::string>(&entry.value))
        out += *text;
    else if (const auto& list = std::get<std::vector<std::string>>(entry.value); list.empty())
        out += "[]";
    else
        for (const std::string& item : list)
            out += "[" + item + "]";
    return out + ";";
}

// The entries, or "! " and the fault.
template <typename Read>
std::string result(Read&& read, const std::string& text)
{
    CPDFFormData data = {{"left", "over"}};
    const CPDFStatus status = read(text, data);
    EXPECT_EQ(status.ok(), status.text.empty());
    EXPECT_TRUE(status.ok() || (data.empty() && status.code == PDF_CODE::BAD_DATA && status.text.size() < 5000));
    std::string out = status.ok() ? "" : "! " + status.text;
    for (const PDF_FORM_ENTRY& entry : data)
        out += show(entry);
    return out;
}

struct CASE {
    const char* label;
    std::string text;
    const char* result;  // what it begins with
};

template <typename Read>
void check(Read&& read, const std::vector<CASE>& cases)
{
    for (const CASE& c : cases) {
        SCOPED_TRACE(c.label);
        const std::string got = result(read, c.text);
        EXPECT_EQ(got.substr(0, c.result[0] == '!' ? std::string(c.result).size() : got.size()), c.result);
    }
}

using Rows = std::vector<std::vector<std::string>>;

TEST(CsvTest, RowsReadAsTheRulesSay)
{
    const struct {
        const char* label;
        std::string text;
        Rows rows;
        const char* fault;
    } cases[] = {
        {"a mark and nothing", "\xEF\xBB\xBF", {}, ""},
        {"all line ends, none at the end", "a,b\r\nc\n\nd\re", {{"a", "b"}, {"c"}, {"d"}, {"e"}}, ""},
        {"empty cells", ",\na,\n\"\"\n", {{"", ""}, {"a", ""}, {""}}, ""},
        {"quotes, commas and line ends in quotes", "\"a \"\"b\"\",\",\"x\r\ny\nz\"\n", {{"a \"b\",", "x\r\ny\nz"}}, ""},
        {"a mark before a quote", "\xEF\xBB\xBF\"a\",b", {{"a", "b"}}, ""},
        {"a quote inside a cell", "a\nb\"c\nd\n", {{"a"}}, "line 2: a quote stands inside"},
        {"text behind a quote", "a\n\"b\r\nc\"d\ne\n", {{"a"}}, "line 3: text follows"},
        {"no closing quote", "a\n\"b\nc\n", {{"a"}}, "line 2: a quoted cell has no end"},
        {"the row of names has it", "a;b,c;d\n1;,2;\t3\n", {{"a", "b,c", "d"}, {"1", ",2", "\t3"}}, ""},
        {"the second row decides", "a,b;c\n1;2\n", {{"a,b", "c"}, {"1", "2"}}, ""},
        {"quotes hide dividers", "\"a;b;c\"\t\"d,e,f\"\n", {{"a;b;c", "d,e,f"}}, ""},
        {"one column", "a b\n1\n", {{"a b"}, {"1"}}, ""},
        {"a line that says it", "\xEF\xBB\xBFsep=|\r\na|b,c,d\r\n", {{"a", "b,c,d"}}, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        CPDFCsvReader reader(c.text);
        Rows rows;
        for (std::vector<std::string> cells; reader.next(cells);)
            rows.push_back(cells);
        EXPECT_EQ(rows, c.rows);
        EXPECT_EQ(reader.status().text.substr(0, std::string(c.fault).size()), c.fault);
        EXPECT_EQ(reader.status().ok(), *c.fault == 0);
    }
}

TEST(DataFileTest, Csv)
{
    check(read_csv_data,
          {
              {"empty cells are left out", "a,b,a\n1,,2\n", "a=1;a=2;"},
              {"empty lines", "a\n\"x\n\"\n\n", "a=x\n;"},
              {"nothing", "", "! the file has no row of names"},
              {"names only", "a,b\n", "! there is no row of values"},
              {"two rows", "a\n1\n2\n", "! there is more than one row"},
              {"short", "a,b\n1\n", "! the row of values is wrong: it has 1 cell, not one for each of the 2"},
              {"long", "a\n1,2\n", "! the row of values is wrong: it has 2 cells, not one"},
              {"not UTF-8", "a\n\nB\xE4r\n", "! line 3: the text is not UTF-8: save it as \"CSV UTF-8\""},
              {"UTF-16 without a mark", std::string("a\0\n\0", 4), "! line 1: the text is not UTF-8"},
              {"damage behind", "a\n1\n\"", "! line 3: "},
          });
}

TEST(DataFileTest, Json)
{
    check(
        read_json_data,
        {
            {"empty", "{}", ""},
            {"true, false, null", "\xEF\xBB\xBF {\"b\" : true, \"a\":false,\"c\":null}\n", "b=yes;a=no;"},
            {"texts", R"({"":"x","a.b":"\u00eb\ud83d\ude00\n","\u0416":"\\\""})", "=x;a.b=ë😀\n;Ж=\\\";"},
            {"lists", R"({"a":[],"b":["x","","y"],"c":"z"})", "a=[];b=[x][][y];c=z;"},
            {"numbers",
             R"({"a":0,"b":-0,"c":-12,"d":1.50,"e":1E+2,"f":-0.0,"g":123456789012345678901234567890,"h":18446744073709551615})",
             "a=0;b=-0;c=-12;d=1.50;e=1E+2;f=-0.0;g=123456789012345678901234567890;h=18446744073709551615;"},
            {"twice", R"({"a":"x","a":null})", "! \"a\" is there twice"},
            {"object", R"({"a":{"b":"x"}})", "! \"a\" is an object; "},
            {"list in a list", R"({"a":[["x"]]})", "! \"a\" has a list with a list; "},
            {"number in a list", R"({"a":["x",1]})", "! \"a\" has a list with a number; "},
            {"no object", R"([{"a":"x"}])", "! the data is a list"},
            {"no colon", "{\"a\":1,\n \"b\" 2}", "! line 2, column 6: "},
            {"more", "{\"a\":1} {", "! line 1, column 9: "},
            {"not UTF-8", "{\"a\":\"\xFF\"}", "! line 1, column 7: "},
            {"half a pair", "{\"a\":\"\\ud800\"}", "! line 1, column "},
            {"nothing", "", "! line 1, column 1: "},
            {"deep", std::string(1000000, '['), "! the data is a list"},
            {"deep inside", "{\"a\":" + std::string(1000000, '['), "! \"a\" has a list with a list"},
            {"cut", "{\"a\":\"" + std::string(1000000, 'x'), "! line 1, column 1000007: "},
        });
}

// A file with these fields in object 1 and more objects.
std::string fdf(const std::string& fields, const std::string& objects = "")
{
    return "%FDF-1.2\n1 0 obj<</FDF<</Fields" + fields + ">>>>endobj " + objects + " trailer<</Root 1 0 R>>%%EOF";
}

TEST(DataFileTest, Fdf)
{
    check(
        read_fdf_data,
        {
            {"kids, names, numbers", fdf("[<</T(a)/V(1)/Kids[<</T(b)/V/S#20t>><</T(c)/V -1.50>>]>><</T(d)/V true>>]"),
             "a=1;a.b=S t;a.c=-1.5;d=true;"},
            {"kids without a name", fdf("[<</T(a)/Kids[<</V(1)>>]>>]"), "a=1;"},
            {"UTF-16 and options", fdf("[<</T<FEFF00E4>/V<FEFFD83DDE00>/Opt[[(a)(b)](c)]/Ff 2>>]"), "ä=😀;"},
            {"list", fdf("[<</T(a)/V[(x)/y 2]>><</T(b)/V[]>>]"), "a=[x][y][2];b=[];"},
            {"nothing set", fdf("[<</T(a)/V/>><</T(b)/V null>><</T(c)/V()>>]"), "c=;"},
            {"references and a stream",
             fdf(" 5 0 R", "5 0 obj[6 0 R]endobj 6 0 obj<</T 7 0 R/V 8 0 R>>endobj 7 0 obj(n)endobj\n"
                           "8 0 obj<</Length 99>>stream\nendobj 7 0 obj\nendstream endobj"),
             "n=endobj 7 0 obj;"},
            {"an object in a text", fdf("[<</T(a)/V 5 0 R>>]", "5 0 obj(6 0 obj (x) endobj 1 0 obj null endobj)endobj"),
             "a=6 0 obj (x) endobj 1 0 obj null endobj;"},
            {"later object, no trailer",
             "%FDF-1.2 \n2 0 obj null endobj 2 0 obj<</FDF<</Fields[<</T(a)/V(2)>>]>>>>endobj", "a=2;"},
            {"no fields", "%FDF-1.2\n1 0 obj<</FDF<<>>>>endobj trailer<</Root 1 0 R>>", ""},
            {"not FDF", "%PDF-1.4\n1 0 obj<<>>endobj", "! byte 0: this is no FDF"},
            {"empty", "", "! byte 0: "},
            {"cut in the fields", "%FDF-1.2\n1 0 obj<</FDF<</Fields[<</T(a)/V(1)>><</T(b)/V(2",
             "! byte 57: object 1 is damaged"},
            {"cut in a stream", "%FDF-1.2\n1 0 obj<</FDF<<>>>>stream\nabc", "! byte 9: the stream object 1 has no end"},
            {"no root", "%FDF-1.2\n1 0 obj<<>>endobj", "! byte 26: the file ends without"},
            {"root is missing", "%FDF-1.2\ntrailer<</Root 3 0 R>>", "! byte 31: object 3 should"},
            {"encrypted", "%FDF-1.2\ntrailer<</Root 3 0 R/Encrypt 4 0 R>>", "! byte 16: the file is encrypted"},
            {"no name", fdf("[<</V(1)>>]"), "! a field of the file has no name"},
            {"a field that is none", fdf("[4]"), "! entry 1 of the fields of the file"},
            {"fields that are none", fdf("(x)"), "! the fields of the file are no array"},
            {"signature", fdf("[<</T(a)/V<</Type/Sig>>>>]"), "! the value of field \"a\""},
            {"lists in a list", fdf("[<</T(a)/V[(x)[(y)]]>>]"), "! the value of field \"a\""},
            {"kids in a circle", fdf(" 5 0 R", "5 0 obj[<</T(a)/Kids 5 0 R>>]endobj"), "! the kids of field \"a.a."},
            {"many paths", fdf(" 5 0 R", "5 0 obj[<</T(a)/Kids 5 0 R/V(1)>><</T(b)/Kids 5 0 R/V(1)>>]endobj"), "! "},
            {"deep", fdf(repeated("[", 300) + repeated("]", 300)), "! byte "},
            {"large number", "%FDF-1.2\n8388607 0 obj null endobj", "! byte 9: the object number 8388607"},
        });
}

std::string xfdf(const std::string& fields)
{
    return "<?xml version=\"1.0\"?>\n<xfdf xmlns=\"http://ns.adobe.com/xfdf/\">\n<fields>" + fields +
           "</fields></xfdf>";
}

TEST(DataFileTest, Xfdf)
{
    check(
        read_xfdf_data,
        {
            {"nested",
             xfdf("<field name=\"a\"><value>1</value>\n<field name='b'><value> 2\r\n</value></field></field>"),
             "a=1;a.b= 2\n;"},
            {"value behind", xfdf("<field name=\"a\"><field name='b'><value/></field><value>1</value></field>"),
             "a.b=;a=1;"},
            {"several", xfdf("<field name=\"a\"><value>1</value><value></value></field>"), "a=[1][];"},
            {"entities",
             xfdf(
                 "<field name=\"&quot;&#65;\n\"><value>&lt;&amp;&#x1F600;&#13;<!-- x --><![CDATA[<&]]></value></field>"),
             "\"A =<&😀\r<&;"},
            {"rich text beside",
             xfdf("<field name=\"a\"><value>1</value><value-richtext><p>2</p></value-richtext></field>"), "a=1;"},
            {"prefix, annotations",
             "<x:xfdf xmlns:x='u'><x:annots><text>t</text></x:annots><x:fields><x:field name='a'><x:value>"
             "1</x:value></x:field></x:fields></x:xfdf>",
             "a=1;"},
            {"rich text only", xfdf("<field name=\"a\"><value-richtext>2</value-richtext></field>"),
             "! line 3: field \"a\" has rich"},
            {"document type", "<?xml version='1.0'?>\r<!DOCTYPE xfdf [<!ENTITY a \"b\">]><xfdf>&a;</xfdf>",
             "! line 2: document types"},
            {"unknown entity", xfdf("\n<field name=\"a\"><value>&bomb;</value></field>"),
             "! line 4: there is no entity \"&bomb;\""},
            {"forbidden character", xfdf("<field name=\"a\"><value>&#1;</value></field>"),
             "! line 3: there is no entity \"&#1;\""},
            {"byte that is not UTF-8", xfdf("\n\n<field name=\"\xE4\"/>"), "! line 5: there is a byte"},
            {"another encoding", "<?xml version='1.0' encoding='ISO-8859-1'?><xfdf>\xE4</xfdf>",
             "! line 1: the text is \"ISO-8859-1\""},
            {"UTF-16", std::string("\xFF\xFE<\0", 4), "! line 1: the text is UTF-16"},
            {"crossed", xfdf("<field name=\"a\"><value></field></value>"), "! line 3: <value> is not closed"},
            {"cut", "<xfdf>\n<fields", "! line 2: the tag <fields> has no end"},
            {"text out of place", xfdf("<field name=\"a\">1</field>"), "! line 3: there is text outside a value"},
            {"element in a value", xfdf("<field name=\"a\"><value><b>1</b></value></field>"),
             "! line 3: there is an element"},
            {"no name", xfdf("<field/>"), "! line 3: a field has no name"},
            {"two names", xfdf("<field name=\"a\" name=\"b\"/>"), "! line 3: the attributes of <field>"},
            {"another root", "<html/>", "! line 1: the root element is <html>"},
            {"second root", "<xfdf/>\n<xfdf/>", "! line 2: there is a second root"},
            {"empty", "", "! line 1: there is no element"},
            {"deep", repeated("<xfdf>", 100000), "! line 1: elements nest deeper"},
            {"long names", xfdf(repeated("<field name=\"" + std::string(2000, 'n') + "\">", 3)),
             "! line 3: the name of a field is too long"},
        });
}

TEST(DataFileTest, FormatsByName)
{
    const struct {
        const char* format;
        std::string bytes;
        const char* result;
    } cases[] = {
        {"json", "\xEF\xBB\xBF{\"a\":\"1\"}", "a=1;"},
        {"csv",
         std::string("\xFF\xFE"
                     "a\0;\0b\0\n\0\xE4\0;\0",
                     14),
         "a=\xC3\xA4;b=;"},
        {"xfdf", xfdf("<field name=\"a\"><value>1</value></field>"), "a=1;"},
        {"fdf", fdf("[<</T(a)/V(1)>>]"), "a=1;"},
        {"csv", "a,b\n1", "! the row of values is wrong"},
        {"csv", "\xFE\xFF\xD8", "! byte 2: the UTF-16 text breaks"},
        {".json", "{}", "! there is no data format \".json\""},
    };
    for (const auto& c : cases) {
        CPDFFormData data = {{"left", "over"}};
        const CPDFStatus status = read_form_bytes(c.bytes, c.format, data, {0, true});
        std::string got = status.ok() ? "" : "! " + status.text;
        for (const PDF_FORM_ENTRY& entry : data)
            got += show(entry);
        EXPECT_EQ(got.substr(0, std::string(c.result).size()), c.result) << got;
    }
}

TEST(DataFileTest, RowsAndMapsOfTextInMemory)
{
    const auto rows_of = [](CPDFFormRows& rows) {
        std::string out = std::to_string(rows.count()) + ": ";
        for (PDF_FORM_ROW row; rows.next(row); row = PDF_FORM_ROW()) {
            for (const PDF_FORM_ENTRY& entry : row.data)
                out += show(entry);
            out += row.status.text + "/";
        }
        return out;
    };
    CPDFFormRows rows;
    ASSERT_TRUE(rows.open_text("a;b\n1;2\n3;4\n", PDF_ROW_FORMAT::CSV).ok());
    EXPECT_EQ(rows_of(rows), "2: a=1;b=2;/a=3;b=4;/");
    ASSERT_TRUE(rows.open_text("{\"a\":\"1\"}\n\n{\"a\":true}", PDF_ROW_FORMAT::JSON_LINES).ok());
    EXPECT_EQ(rows.columns(), nullptr);
    EXPECT_EQ(rows_of(rows), "2: a=1;/a=yes;/");
    EXPECT_EQ(rows.open_text("\"a\n", PDF_ROW_FORMAT::CSV).text.substr(0, 7), "line 1:");
    CPDFColumnMap map;
    ASSERT_TRUE(map.read(R"({"A": {"field": "a", "upper": true}, "B": null})").ok());
    CPDFFormData data = {{"A", "x"}, {"B", "y"}};
    ASSERT_TRUE(map.apply(data).ok());
    ASSERT_EQ(data.size(), 1U);
    EXPECT_EQ(show(data[0]), "a=X;");
    EXPECT_EQ(map.read("[]").text, "a map is one object of columns and their fields");
}

}  // namespace
