#include "engine/annot_widget.h"
#include "forms/field_select.h"
#include "tests/forms/form_fixture.h"
#include "tests/support/alloc_walk.h"
#include "tests/support/pdf_builder.h"

namespace {
std::string taken(char* text)
{
    const VXBlock<char> guard(text);
    return text ? text : "null";
}

// What the four operations give, in lines: url, url2, xml, xml2. Those equal to the one before are left out.
std::string data_of(CPDFField& field)
{
    std::string all, last;
    for (auto operation :
         {&CPDFField::get_form_url, &CPDFField::get_form_url2, &CPDFField::get_form_xml, &CPDFField::get_form_xml2}) {
        int len = -1;
        char* result = (field.*operation)(len);
        EXPECT_EQ(static_cast<size_t>(len), result ? std::strlen(result) : 0u);
        const std::string text = taken(result);
        all += text == last ? "" : (all.empty() ? "" : "\n") + text;
        last = text;
    }
    return all;
}
}  // namespace

TEST(FormDataTest, Example)
{
    FormFixture f(
        "/Fields [2 0 R 3 0 R 4 0 R 99 0 R 5 0 R 6 0 R 7 0 R]",
        "/FT /Tx /T (name) /V (John); /FT /Btn /T (agree) /V /Yes; /FT /Btn /Ff 32768 /T (size) /V /1 /Kids [8 0 R "
        "9 0 R 10 0 R]; /FT /Ch /Ff 131072 /T (color) /Opt [[(r) (Red)] [(g) (Green)]] /I [1]; /T (addr) /Kids [11 "
        "0 R 12 0 R]; /FT /Ch /T (pets) /Opt [(cat) (dog) (owl)] /I [0 2]; /X 1; /AP << /N << /1 1 0 R >> >>;"
        "/AP << /N << /2 1 0 R >> >>; /FT /Tx /T (city) /V (Paris); /FT /Tx /T (zip) /V (750)");
    CPDFAnnotWidget widgets[3];
    for (uint32_t i = 0; i < 3; ++i) {
        widgets[i].load(&f.doc.xref, {8 + i, 0});
        f.field(8 + i).m_widget = &widgets[i];
    }
    EXPECT_EQ(data_of(f.field(2)) + data_of(f.field(3)), "name=John\n<name>John</name>agree=Yes\n<agree>Yes</agree>");
    EXPECT_EQ(data_of(f.field(4)) + data_of(f.field(5)), "size=2\n<size>1</size>color=g\n<color>g</color>");
    const std::string addr = "<addr><city>Paris</city><zip>750</zip></addr>";
    EXPECT_EQ(data_of(f.field(6)), "null\ncity=Paris&zip=750\nnull\n" + addr);
    const std::string pets = "<pets><value>cat</value>\r\n<value>owl</value>\r\n</pets>";
    EXPECT_EQ(data_of(f.field(7)), "pets=\n<pets></pets>\n" + pets);

    const std::string all = "<name>John</name><agree>Yes</agree><size>1</size><color>g</color>" + addr + pets;
    const std::string declaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>";
    const std::string every_pair = "name=John&agree=Yes&size=2&color=g&city=Paris&zip=750&pets=";
    const struct {
        const char* fields;
        int flags;
        std::string url, xml;
    } cases[] = {
        {"null", 0, every_pair, "<fields>" + all + "</fields>"},
        {"[]", 2, every_pair, "<fields>" + all + "</fields>"},
        {"[(name)]", 1, every_pair, "<fields>" + all + "</fields>"},
        {"[(name) (addr.city)]", 0, "name=John&city=Paris", "<name>John</name><city>Paris</city>"},
        {"[(name) (agree)]", 2, "name=John&agree=Yes", "<name>John</name><agree>Yes</agree>"},
        {"[12 0 R (x) 77 0 R /name () 6 0 R 12 0 R]", 0, "zip=750&zip=750", "<zip>750</zip><zip>750</zip>"},
        {"[(addr)]", 0, "null", ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.fields);
        CPDFObj fields;
        parse_object(c.fields, fields);
        EXPECT_EQ(taken(f.form.get_url_para(fields.array(), c.flags)), c.url);
        EXPECT_EQ(taken(f.form.get_url_xml(fields.array(), c.flags)), declaration + c.xml);
    }
    f.form.m_has_xfa = 1;
    EXPECT_EQ(taken(f.form.get_url_xml(nullptr, 0)), declaration + all);
    EXPECT_EQ(taken(FormFixture("").form.get_url_para(nullptr, 0)), "null");
    EXPECT_EQ(taken(FormFixture("/Fields [2 0 R]", "/X 1").form.get_url_para(nullptr, 0)), "");

    const char* const groups[][3] = {
        {"/Off", "7", "size=0\n<size>Off</size>"}, {"/1", "[(a) (b c)]", "size=b+c\n<size>1</size>"},
        {"/3", "7", "size=\n<size>3</size>"},      {"/1", "[(a)]", "size=\n<size>1</size>"},
        {"(1)", "[(a)]", "size=\n<size></size>"},
    };
    for (const auto& [value, opts, data] : groups) {
        f.doc.put(4, std::string("<< /FT /Btn /Ff 32768 /T (size) /Kids [8 0 R 9 0 R] /V ") + value + "/Opt " + opts +
                         ">>");
        f.form.unload();
        f.load();
        f.field(9).m_widget = &widgets[1];
        EXPECT_EQ(data_of(f.field(4)), data);
    }
}

TEST(FormDataTest, NamesAndValues)
{
    const std::string n127(127, 'n'), n62(62, 'n'), quotes(200, '"');
    const std::string entities = repeated("&quot;", 127);
    const std::string tag = entities.substr(0, 252);  // at most 254 bytes, whole characters only
    const struct {
        std::string field, data;
    } cases[] = {
        {"/FT /Tx /T (a[1][2]) /V (1 & 2)", "a[1]=1+%26+2\n<a[1]>1 &amp; 2</a[1]>"},
        {"/FT /Tx /T (#x) /V (v)", "null\n#x=v\nv"},
        {"/FT /Tx /T (%x) /V (v)", "%25x=v\n\n<%x>v</%x>"},
        {"/FT /Tx /T <FEFF04160020> /V 7", "\xD0\x96+=\n<\xD0\x96 ></\xD0\x96 >"},
        {"/FT /Tx /T (" + n127 + "n) /V (<)", n127 + "=%3C\n<" + n127 + ">&lt;</" + n127 + ">"},
        {"/T (" + quotes + ")", "null\n\nnull\n<" + tag + "></" + tag + ">"},
        {"/FT /Btn /Ff 65536 /T (b) /Kids [3 0 R]", "null\nkid=v\nnull"},
        {"/T (#subform[0]) /Kids [3 0 R 4 0 R 5 0 R 3 0 R 6 0 R]",
         "null\nkid=v&last=\nnull\n<kid>v</kid><c></c>own<last></last>"},
        {"/FT /Tx /T (t) /V (v) /Kids [5 0 R 3 0 R]", "t=v\nt=v&kid=v\n<t>v</t>\n<t>own<kid>v</kid>v</t>"},
        {"/FT /Btn /T (c)", "c=Off\n<c>Off</c>"},
        {"/FT /Btn /T (c) /V /0 /Opt [[(A&B) (text)]]", "c=A%26B\n<c>A&amp;B</c>"},
        {"/FT /Btn /T (c) /V /0 /Opt [(" + n62 + "n)]", "c=" + n62 + "\n<c>" + n62 + "</c>"},
        {"/FT /Btn /T (c) /V /a#26b", "c=a&b\n<c>a&b</c>"},
        {"/FT /Btn /T (c) /V (y z\\000end)", "c=y z\n<c>y z</c>"},
        {"/FT /Ch /Ff 131072 /T (c) /Opt [(a) ()] /V (b&)", "c=\n<c></c>\n<c>b&amp;</c>"},
        {"/FT /Ch /T (c) /Opt [(a) (" + quotes + ")] /I [1 2 -1]",
         "c=\n<c></c>\n<c><value>" + entities + "</value>\r\n</c>"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.field);
        FormFixture f("/Fields [2 0 R]", c.field + "; /FT /Tx /T (kid) /V (v); /T (c) /Kids [7 0 R]; /FT /Tx /V (own);"
                                                   "/FT /Tx /T (last); /X 1");
        EXPECT_EQ(data_of(f.field(2)), c.data);
    }
    FormFixture f("/Fields [2 0 R]", "/FT /Btn /T (c) /DV /On#20");
    f.field(2).m_value.free();
    EXPECT_EQ(data_of(f.field(2)), "c=On \n<c>On </c>");
    f.field(2).m_def_value.set_string("On", 2);
    EXPECT_EQ(data_of(f.field(2)), "c=\n<c></c>");
}

// The index of a long list gives what the search gives: names that are prefixes of others, that have dots, or are
// passed over.
TEST(FormDataTest, LongListsFindTheSameFields)
{
    const std::string names[] = {"a", "b", "ab", "a.b", "b[0]", "#c", "", "a"};
    constexpr int FIELDS = 300;
    uint32_t seed = 7;
    const auto next = [&](uint32_t bound) { return (seed = seed * 1664525u + 1013904223u) / 65536u % bound; };
    std::string kids[FIELDS + 1];  // the last are the form's
    for (int i = 0; i < FIELDS; ++i)
        kids[i < 30 ? FIELDS : next(static_cast<uint32_t>(i))] += std::to_string(i + 2) + " 0 R ";
    std::string objects = "/T (a)";
    for (int i = 0; i < FIELDS; ++i)
        objects += (i ? "; /T (" + names[next(8)] + ")" : "") + " /Kids [9000 0 R " + kids[i] + "]";
    FormFixture f("/Fields [" + kids[FIELDS] + "]", objects);
    CPDFFieldFinder indexed(f.form, FIELDS);
    CPDFFieldFinder plain(f.form, 1);
    int found = 0;
    for (int i = 0; i < 2000; ++i) {
        std::string path = names[next(8)];
        for (uint32_t more = next(4); more > 0; --more)
            path += "." + names[next(8)];
        CPDFObj entry;
        entry.set_string(path.data(), static_cast<int32_t>(path.size()));
        CPDFField* expected = plain.find(entry);
        found += expected != nullptr;
        ASSERT_EQ(indexed.find(entry), expected) << path;
        entry.set_ref({static_cast<uint32_t>(i), 0});
        ASSERT_EQ(indexed.find(entry), plain.find(entry));
    }
    EXPECT_TRUE(found > 200 && found < 1800) << found;
}

// Neither many fields of one name on the way nor at its end make a long list slow.
TEST(FormDataTest, LongListsOfEqualNames)
{
    constexpr int FIELDS = 10000;
    for (const bool same_first : {true, false}) {
        std::string tops;
        std::string objects;
        CPDFArray list;
        for (int i = 0; i < FIELDS; ++i) {
            const std::string number = std::to_string(i);
            const std::string first = same_first ? "a" : "a" + number;
            const std::string last = same_first ? "k" + number : "k";
            tops += std::to_string(2 * i + 2) + " 0 R ";
            objects += std::string(i ? "; " : "") + "/T (" + first + ") /Kids [" + std::to_string(2 * i + 3) +
                       " 0 R]; /FT /Tx /V (v) /T (" + last + ") /Parent " + std::to_string(2 * i + 2) + " 0 R";
            const std::string path = first + "." + last;
            list.append_str(path.data(), static_cast<int32_t>(path.size()));
        }
        FormFixture f("/Fields [" + tops + "]", objects);
        const std::string text = taken(f.form.get_url_para(&list, 0));
        EXPECT_EQ(std::count(text.begin(), text.end(), '='), FIELDS);
    }
}

TEST(FormDataTest, FailedAllocationsGiveNull)
{
    const std::string state(1100, 's');
    each_failed_allocation([&](const auto& arm) {
        FormFixture f("/Fields [2 0 R]", "/FT /Tx /T (a) /V (v) /Kids [3 0 R 4 0 R]; /FT /Btn /T (b) /V /" + state +
                                             "; /FT /Btn /V /" + state);
        std::string texts;
        const bool failed = arm([&] {
            texts =
                taken(f.form.get_url_para(nullptr, 0)) + taken(f.form.get_url_xml(nullptr, 0)) + data_of(f.field(2));
        });
        EXPECT_EQ(texts.find("null") != texts.npos, failed);
    });
}
