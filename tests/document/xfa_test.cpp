// XFA data: values of fields go where the template says, and nothing else moves.
#include <filesystem>

#include "document/xfa/data_value.h"
#include "document/xfa/xfa_date.h"
#include "formats/apply_data.h"
#include "tests/document/fill_fixture.h"
#include "tests/support/alloc_walk.h"

namespace {
constexpr std::string_view HEAD =
    "<xfa:datasets xmlns:xfa=\"http://www.xfa.org/schema/xfa-data/1.0/\"\n><more a='1'/><xfa:data\n>";
constexpr std::string_view TAIL = "</xfa:data\n><!-- - --></xfa:datasets>\n";

std::string data_set(std::string_view data)
{
    return std::string(HEAD).append(data).append(TAIL);
}

// A form with the top field form1[0], under it `fields`, objects 20 and following, and in streams of their own the template's inside
// and the whole data set.
std::string xfa_form(const std::string& fields, const std::string& inside, const std::string& data)
{
    std::string kids;
    std::string objects;
    uint32_t num = 20;
    for (const std::string& field : split(fields, ';')) {
        const bool is_deeper = field.find("/Parent") != std::string::npos;
        kids += is_deeper ? "" : std::to_string(num) + " 0 R ";
        objects += (objects.empty() ? "" : ";") + field + (is_deeper ? "" : "/Parent 10 0 R");
        ++num;
    }
    PdfBuilder file = begin_form({"/T(form1[0])/Kids[" + kids + "]"}, objects, "/XFA[(template)5 0 R(datasets)6 0 R]");
    const std::string whole = "<template><subform name='form1'>" + inside + "</subform></template>";
    return file.stream(5, "", inside.empty() ? "" : whole).stream(6, "", data).table().text;
}

struct WRITTEN {
    CPDFStatus status;
    std::string notes;
    std::string data;
};

WRITTEN written(const std::string& file)
{
    FormAtWork f(file);
    WRITTEN out;
    std::vector<std::string> notes;
    out.status = f.document.write_xfa(&notes);
    for (const std::string& note : notes)
        out.notes += note;
    const std::string saved = f.saved();
    out.data = FileAtWork(saved).data(6);
    EXPECT_EQ(out.status.ok() || saved == file, true) << "a refusal changed the file";
    return out;
}
}  // namespace

TEST(XfaTest, ValuesGoWhereTheTemplateSays)
{
    const struct {
        const char* label;
        const char* fields;
        const char* form;
        const char* data;
        const char* expected;
    } cases[] = {
        {"levels that are bound to nothing or have no name",
         "/T(p[0])/Kids[21 0 R];/FT/Tx/T(a[0])/V(1)/Parent 20 0 R;/T(#subform[0])/Kids[23 0 R];/FT/Tx/T(a[0])/V(2)/Parent 22 0 R",
         "<subform name='p'><bind match='none'/><field name='a'/></subform><subform><area><field name='a'/></area></subform>",
         "<form1><a>x</a><k>kept</k><a b='c'\n/></form1>", "<form1><a>1</a><k>kept</k><a b='c'\n>2</a></form1>"},
        {"global fields share a value", "/T(s[0])/Kids[21 0 R];/FT/Tx/T(g[0])/V(1)/Parent 20 0 R;/FT/Tx/T(g[0])/V(1)",
         "<subform name='s'><field name='g'><bind match='global'/></field></subform><field name='g'><bind match='global'/></field>",
         "<form1><s/><g/></form1>", "<form1><s/><g>1</g></form1>"},
        {"references", "/FT/Tx/T(a[0])/V(1);/FT/Tx/T(b[0])/V(2);/FT/Tx/T(c[0])/V(3);/FT/Tx/T(d[0])/V(4)",
         "<field name='a'><bind match='dataRef' ref='$.x.y[1]'/></field><field name='b'><bind match='dataRef' ref='$record.z'/></field>"
         "<field name='c'><bind match='dataRef' ref='$data.q\\.r'/></field><field name='d'><bind match='dataRef' ref='xfa.datasets.data.form1.x.y'/></field>",
         "<form1><x><y/></x></form1>", "<form1><x><y>4</y><y>1</y></x><z>2</z></form1><q.r>3</q.r>"},
        {"instances",
         "/T(r[0])/Kids[21 0 R];/FT/Tx/T(a[0])/V(1)/Parent 20 0 R;/T(r[1])/Kids[23 0 R];/FT/Tx/T(a[0])/V(2)/Parent 22 0 R",
         "<subform name='r'><occur max='-1'/><field name='a'/></subform><field name='r'/>",
         "<form1><r><a>x</a></r><!--c--></form1>", "<form1><r><a>1</a></r><!--c--><r><a>2</a></r></form1>"},
        {"instances by reference",
         "/T(r[0])/Kids[21 0 R];/FT/Tx/T(a[0])/V(1)/Parent 20 0 R;/T(r[1])/Kids[23 0 R];/FT/Tx/T(a[0])/V(2)/Parent 22 0 R",
         "<subform name='r'><occur max='5'/><bind match='dataRef' ref='$.l.i[*]'/><field name='a'/></subform>",
         "<form1><l><i/><i/><i/></l></form1>", "<form1><l><i><a>1</a></i><i><a>2</a></i><i/></l></form1>"},
        {"what is missing, with those before it", "/FT/Tx/T(a[1])/V(2);/FT/Tx/T(a[0]);/FT/Tx/T(b[0])",
         "<field name='a'/><field name='a'/><field name='b'/>", "", "<form1><a></a><a>2</a></form1>"},
        {"elements of other fields", "/FT/Tx/T(a[1])/V(2)", "<field name='a'/><field name='a'/>",
         "<form1><a>0</a><a>1</a><a>9</a></form1>", "<form1><a>0</a><a>2</a><a>9</a></form1>"},
        {"texts as they are written", "/FT/Tx/T(a[0])/V(<&\rb);/FT/Tx/T(b[0])/V(p q)",
         "<field name='a'/><field name='b'/>",
         "<form1><a>&lt;&#38;&#xD;b</a><b><body xmlns='http://www.w3.org/1999/xhtml'>p\n <b>q</b></body></b></form1>",
         "<form1><a>&lt;&#38;&#xD;b</a><b><body xmlns='http://www.w3.org/1999/xhtml'>p\n <b>q</b></body></b></form1>"},
        {"buttons",
         "/FT/Btn/T(a[0])/V/Yes;/FT/Btn/T(b[0])/V/Off;/FT/Btn/T(c[0])/V/Off;/FT/Btn/Ff 32768/T(g[0])/V/1/Opt[(n)(y)]/Kids[24 0 R 25 0 R];"
         "/Parent 23 0 R/Subtype/Widget/AP<</N<</0 4 0 R>>>>;/Parent 23 0 R/Subtype/Widget/AP<</N<</1 4 0 R>>>>",
         "<field name='a'><items><text>on</text><text>no</text></items></field><field name='b'><items><text>on</text><text>no</text></items></field>"
         "<field name='c'/><exclGroup name='g'><field><items><text>n</text></items></field><field><items><text>y</text></items></field></exclGroup>",
         "<form1><a>no</a><b>on</b><c/><g>n</g></form1>", "<form1><a>on</a><b>no</b><c/><g>y</g></form1>"},
        {"choices",
         "/FT/Ch/T(a[0])/V(Two)/Opt[[(1)(One)][(2)(Two)]];/FT/Ch/Ff 2097152/T(b[0])/V[(x)(y)]/Opt[(x)(y)(z)];/FT/Ch/T(c[0])/V(x)/Opt[(x)]",
         "<field name='a'/><field name='b'/><field name='c'/>",
         "<form1><a>1</a><b><value>x</value></b><c><value>x</value><value>y</value></c></form1>",
         "<form1><a>2</a><b><value>x</value><value>y</value></b><c><value>x</value></c></form1>"},
        {"numbers and dates",
         "/FT/Tx/T(n[0])/V(1,234.50);/FT/Tx/T(m[0])/V(2,000);/FT/Tx/T(d[0])/V(2/9/2024);/FT/Tx/T(e[0])/V(02/09/2024)",
         "<field name='n'><ui><numericEdit/></ui></field><field name='m'><ui><numericEdit/></ui></field>"
         "<field name='d'><ui><dateTimeEdit/></ui><format><picture>date{M/D/YYYY}</picture></format></field>"
         "<field name='e'><ui><dateTimeEdit/></ui><bind><picture>date{MM/DD/YYYY}</picture></bind></field>",
         "<form1><n>1234.5000</n><m>1</m><d>2024-02-08</d><e/></form1>",
         "<form1><n>1234.5000</n><m>2000</m><d>2024-02-09</d><e>02/09/2024</e></form1>"},
        {"no template", "/T(p[0])/Kids[21 0 R];/FT/Tx/T(a[1])/V(1)/Parent 20 0 R;/FT/Btn/Ff 65536/T(b)/V/x", "",
         "<form1><p><a/><z/></p></form1>", "<form1><p><a/><z/><a>1</a></p></form1>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const WRITTEN out = written(xfa_form(c.fields, c.form, data_set(c.data)));
        EXPECT_EQ(out.data, data_set(c.expected));
        EXPECT_EQ(out.status.text + out.notes, "");
        EXPECT_EQ(written(xfa_form(c.fields, c.form, out.data)).data, out.data) << "not what was written";
    }
}

TEST(XfaTest, OfFieldsThatShareAValueTheChangedOneIsRight)
{
    const std::string global = "<bind match='global'/></field>";
    FormAtWork f(xfa_form("/FT/Tx/T(g[0])/V(old);/FT/Tx/T(g[1])/V(old)",
                          "<field name='g'>" + global + "<field name='g'>" + global,
                          data_set("<form1><g>old</g></form1>")));
    for (const char* name : {"form1[0].g[0]", "form1[0].g[1]"}) {
        f.document.revert();
        EXPECT_TRUE(f.set(name, "new").ok());
        EXPECT_TRUE(f.document.write_xfa().ok());
        const std::string saved = f.saved();
        EXPECT_EQ(FileAtWork(saved).data(6), data_set("<form1><g>new</g></form1>"));
        EXPECT_EQ(written(saved).data, data_set("<form1><g>new</g></form1>"));
    }
}

TEST(XfaTest, OneStreamBlankDataAndRevert)
{
    const std::string packets = "<x><template><subform name='t'/></template><d:datasets xmlns:d='u'/><t/></x>";
    PdfBuilder file = begin_form({"/FT/Tx/T(t)/V(v)/DV(d)"}, "", "/XFA 5 0 R");
    FormAtWork f(file.stream(5, "/Type/X", packets).table().text, PDF_LOAD::NAMED_FIELDS);
    std::vector<std::string> notes;
    EXPECT_TRUE(f.document.write_xfa(&notes).ok());
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_NE(notes[0].find("is not known, so they are not written there: \"t\""), std::string::npos);
    EXPECT_EQ(f.saved(), file.text);

    PdfBuilder single = begin_form({"/FT/Tx/T(t)/V(v)"}, "", "/XFA 5 0 R");
    FormAtWork s(single.stream(5, "", "<x><d:datasets xmlns:d='u'/><t/></x>").table().text);
    EXPECT_TRUE(s.set("t", "two").ok());
    EXPECT_TRUE(s.document.write_xfa().ok());
    EXPECT_EQ(FileAtWork(s.saved()).data(5),
              "<x><d:datasets xmlns:d='u'><d:data><t>two</t></d:data></d:datasets><t/></x>");
    s.document.revert();
    EXPECT_EQ(s.saved(), single.text);

    const WRITTEN blank = written(xfa_form("/FT/Tx/T(a[0])/V(1)", "<field name='a'/>", " \n"));
    EXPECT_NE(blank.data.find("<xfa:data><form1><a>1</a></form1></xfa:data></xfa:datasets>"), std::string::npos);
}

TEST(XfaTest, WhatCantBeWrittenIsToldByName)
{
    const std::pair<const char*, const char*> lost[] = {
        {"<field name='b'/>", "belong is not known, so they are not written there: \"form1[0].a[0]\""},
        {"<field name='a'><bind match='dataRef' ref='$.x.@id'/></field>", "\"form1[0].a[0]\""},
        {"<field name='a'><bind match='dataRef' ref='$.x[1000000]'/></field>", "\"form1[0].a[0]\""},
        {"<field name='a'><bind match='dataRef' ref='x.y()'/></field>", "\"form1[0].a[0]\""},
        {"<field name='a'><bind match='dataRef' ref='$'/></field>", "\"form1[0].a[0]\""},
        {"<field name='a'><bind use='#p'/></field>", "\"form1[0].a[0]\""},
        {"<field name='a'><ui><dateTimeEdit/></ui></field>", "these dates are in no form that the XFA template tells"},
        {"<field name='a'><bind match='none'/></field>", ""},
    };
    for (const auto& [form, note] : lost) {
        SCOPED_TRACE(form);
        const std::string data = data_set("<form1><a>2024-01-01</a><c/></form1>");
        const WRITTEN out = written(
            xfa_form("/FT/Tx/T(a[0])/V(soon);/FT/Tx/T(c[0])/V(1)", std::string(form) + "<field name='c'/>", data));
        EXPECT_TRUE(out.status.ok());
        EXPECT_EQ(out.data, data_set("<form1><a>2024-01-01</a><c>1</c></form1>"));
        EXPECT_TRUE(*note ? out.notes.find(note) != std::string::npos : out.notes.empty()) << out.notes;
    }
    std::string deep;
    for (int i = 0; i < 300; ++i)
        deep += "<a>";
    const std::pair<std::string, const char*> refused[] = {
        {"<datasets><data></datasets>", "no well-formed XML"},
        {"<datasets a=1/>", "no well-formed XML"},
        {"<datasets/><datasets/>", "no well-formed XML"},
        {"<!DOCTYPE x [<!ENTITY e 'x'>]><datasets/>", "have a document type"},
        {"<datasets>" + deep, "more inside one another"},
        {"<?xml version='1.0' encoding='UTF-16'?><datasets/>", "are not UTF-8"},
        {"<datasets>\xFF</datasets>", "are not UTF-8"},
        {"<other/>", "no data set that can be changed"},
    };
    for (const auto& [data, why] : refused) {
        SCOPED_TRACE(data.substr(0, 60));
        const WRITTEN out = written(xfa_form("/FT/Tx/T(a[0])/V(1)", "<field name='a'/>", data));
        EXPECT_EQ(out.status.code, PDF_CODE::BAD_DATA);
        EXPECT_NE(out.status.text.find(why), std::string::npos) << out.status.text;
    }
    const WRITTEN bad = written(xfa_form("/FT/Tx/T(a[0])/V(\\001)", "<field name='a'/>", data_set("")));
    EXPECT_EQ(bad.status.text, "field \"form1[0].a[0]\" does not fit into the XFA data: XML can't hold its value");
    EXPECT_TRUE(FormAtWork(form_of({"/T(t)"})).document.write_xfa().ok());
}

TEST(XfaTest, DataOfAFormWithoutFields)
{
    const std::string data = data_set("<f><a.b>1</a.b><g><i/><i>&amp;</i><n xfa:dataNode='dataGroup'/></g></f>");
    const std::string signature = "/FT/Sig/T(s)";
    const std::string file = xfa_form(signature, "<field name='x'/>", data);
    FormAtWork f(file);
    ASSERT_TRUE(f.document.has_only_xfa());
    std::vector<PDF_XFA_VALUE> values;
    ASSERT_TRUE(f.document.xfa_values(values).ok());
    std::string listed;
    for (const PDF_XFA_VALUE& at : values)
        listed += at.path + "=" + at.value + ";";
    EXPECT_EQ(listed, "f.a\\.b=1;f.g.i[0]=;f.g.i[1]=&;");

    const CPDFFormData wrong = {
        {"f.g", "1"}, {"f.g.i[2]", "1"}, {"f.g.i[0]", std::vector<std::string>{}}, {"f.g.i", "1"}, {"f.g.i", "2"}};
    const std::string why = refusals_of(plan_data(f.document, wrong, PDF_FILL::RESPECT_READ_ONLY)).text;
    EXPECT_EQ(
        why,
        "the XFA data have no value \"f.g\"; the XFA data have no value \"f.g.i[2]\"; the value \"f.g.i[0]\" of the XFA data is one "
        "text; field \"f.g.i\" is given more than one value");
    EXPECT_EQ(f.saved(), file);
    const auto items = plan_data(f.document, {{"f.g.i", "<"}, {"f.a\\.b", true}}, PDF_FILL::RESPECT_READ_ONLY);
    ASSERT_TRUE(apply_data(f.document, items).ok());
    EXPECT_EQ(FileAtWork(f.saved()).data(6),
              data_set("<f><a.b>true</a.b><g><i>&lt;</i><i>&amp;</i><n xfa:dataNode='dataGroup'/></g></f>"));

    const std::string lock = "/V<</ByteRange[0 1 2 3]/Contents<00>>>/Lock<</Action/All>>";
    FormAtWork locked(xfa_form(signature + lock, "", data));
    const std::vector<PDF_XFA_VALUE> one = {{"f.g.i", "1"}};
    EXPECT_EQ(locked.document.set_xfa_values(one).text,
              "the data of the form are locked by the signature \"form1[0].s\"");
    EXPECT_TRUE(locked.document.set_xfa_values(one, PDF_FILL::FORCE).ok());
    EXPECT_FALSE(FormAtWork(form_of({"/T(t)"})).document.has_only_xfa());
}

TEST(XfaTest, Dates)
{
    const struct {
        const char* picture;
        const char* text;
        const char* plain;
    } cases[] = {
        {"date{MM/DD/YYYY}|date{M/D/YY}", "2/9/24", "2024-02-09"},
        {"date{D. MMMM YYYY}", "9. May 1999", "1999-05-09"},
        {"date(en_US){MMM D, YYYY}", "Dec 31, 2000", "2000-12-31"},
        {"date{MM/DD/YYYY}", "2/9/2024", ""},
        {"date{MM/DD/YYYY}", "13/01/2024", ""},
        {"text{99}", "12", ""},
        {"date{", "12", ""},
    };
    for (const auto& c : cases) {
        XFA_DATE date;
        const bool is_read = read_xfa_date(c.picture, c.text, date);
        EXPECT_EQ(is_read ? write_xfa_date(XFA_PLAIN_DATE, date) : "", c.plain) << c.picture << " " << c.text;
    }
}

TEST(XfaTest, AllocationFailures)
{
    const std::string form = data_set("<form1><a></a></form1>");
    const std::string file = xfa_form("/FT/Tx/T(a[0])/V(1)", "<field name='a'/>", form);
    for (const bool by_path : {false, true}) {
        each_failed_allocation([&](const auto& arm) {
            FormAtWork f(file);
            CPDFStatus status;
            const bool failed = arm([&] {
                status = by_path ? f.document.set_xfa_values({{"form1.a", "1"}}) : f.document.write_xfa();
            });
            EXPECT_EQ(status.code, failed ? PDF_CODE::NO_MEMORY : PDF_CODE::OK);
            const std::string now = FileAtWork(f.saved()).data(6);
            EXPECT_TRUE(now == data_set("<form1><a>1</a></form1>") || (failed && now == form)) << now;
        });
    }
}

// What real forms hold: their data are what their fields say, so that writing them changes nothing.
TEST(XfaTest, DataOfRealFormsStayAsTheyAre)
{
    const char* corpus = std::getenv("FORMWORK_CORPUS");
    if (!corpus || !std::filesystem::is_directory(corpus))
        GTEST_SKIP() << "no corpus";
    int count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(corpus)) {
        CPDFDocument document;
        if (entry.path().extension() != ".pdf" || !document.open(entry.path().string()).ok() || !document.has_xfa())
            continue;
        SCOPED_TRACE(entry.path().filename().string());
        std::vector<std::string> notes;
        EXPECT_TRUE(document.write_xfa(&notes).ok());
        EXPECT_TRUE(notes.empty()) << notes[0];
        EXPECT_EQ(document.xref().changed_count(), 0);
        ++count;
    }
    EXPECT_GT(count, 0);
}
