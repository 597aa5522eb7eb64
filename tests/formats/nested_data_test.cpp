// FDF and XFDF that other programs wrote, or that nobody should have.
#include <gtest/gtest.h>

#include "formats/import/fdf_data.h"
#include "formats/import/xfdf_data.h"

namespace {

std::string show(const CPDFFormData& data)
{
    std::string out;
    for (const PDF_FORM_ENTRY& entry : data) {
        out += entry.name + "=";
        if (const auto* text = std::get_if<std::string>(&entry.value))
            out += *text;
        else
            for (const std::string& item : std::get<std::vector<std::string>>(entry.value))
                out += "[" + item + "]";
        out += ';';
    }
    return out;
}

// The entries, or "! " and the fault.
template <typename Read>
std::string result(Read&& read, const std::string& text)
{
    CPDFFormData data = {{"left", "over"}};
    const CPDFStatus status = read(text, data);
    EXPECT_EQ(status.ok(), status.text.empty());
    EXPECT_TRUE(status.ok() || data.empty());
    return status.ok() ? show(data) : "! " + status.text;
}

std::string repeat(const std::string& text, size_t count)
{
    std::string out;
    for (; count > 0; --count)
        out += text;
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

// A file with these fields in object 1 and more objects.
std::string fdf(const std::string& fields, const std::string& objects = "")
{
    return "%FDF-1.2\n1 0 obj<</FDF<</Fields" + fields + ">>>>endobj " + objects + " trailer<</Root 1 0 R>>%%EOF";
}

TEST(NestedDataTest, Fdf)
{
    check(
        read_fdf_data,
        {
            {"kids, names, numbers", fdf("[<</T(a)/V(1)/Kids[<</T(b)/V/S#20t>><</T(c)/V -1.50>>]>><</T(d)/V true>>]"),
             "a=1;a.b=S t;a.c=-1.5;d=true;"},
            {"kids without a name", fdf("[<</T(a)/Kids[<</V(1)>>]>>]"), "a=1;"},
            {"UTF-16 and options", fdf("[<</T<FEFF00E4>/V<FEFFD83DDE00>/Opt[[(a)(b)](c)]/Ff 2>>]"), "ä=😀;"},
            {"list", fdf("[<</T(a)/V[(x)/y 2]>><</T(b)/V[]>>]"), "a=[x][y][2];b=;"},
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
            {"deep", fdf(repeat("[", 300) + repeat("]", 300)), "! byte "},
            {"large number", "%FDF-1.2\n8388607 0 obj null endobj", "! byte 9: the object number 8388607"},
        });
}

std::string xfdf(const std::string& fields)
{
    return "<?xml version=\"1.0\"?>\n<xfdf xmlns=\"http://ns.adobe.com/xfdf/\">\n<fields>" + fields +
           "</fields></xfdf>";
}

TEST(NestedDataTest, Xfdf)
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
            {"deep", repeat("<xfdf>", 100000), "! line 1: elements nest deeper"},
            {"long names", xfdf(repeat("<field name=\"" + std::string(2000, 'n') + "\">", 3)),
             "! line 3: the name of a field is too long"},
        });
}

}  // namespace
