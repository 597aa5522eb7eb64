#include <tinyxml.h>

#include "forms/exchange/field_set.h"
#include "forms/exchange/xml_guard.h"
#include "tests/forms/form_fixture.h"
#include "tests/support/pdf_builder.h"

namespace {
// The bound events in tree order: object number, kind, target.
std::string events_of(CPDFAcroForm& form)
{
    std::string text;
    for_each_field(form, [&](const CPDFField& field) {
        if (field.m_xfa_event || field.m_xfa_target)
            text += std::to_string(field.m_ref.num) + ":" + std::to_string(field.m_xfa_event) +
                    (field.m_xfa_target ? field.m_xfa_target : "-") + " ";
    });
    return text;
}

// The events that a template packet binds to null, form1[0](f1[0] f2[0] s2[0](f3[0] f1[1])), top: objects 2 to 8.
std::string bound_by(const std::string& packet)
{
    FormFixture f(
        "/Fields [9 0 R 2 0 R 8 0 R] /XFA [(template) 50 0 R]",
        "/T (form1[0]) /Kids [3 0 R 4 0 R 5 0 R]; /T (f1[0]); /T (f2[0]); /T (s2[0]) /Kids [6 0 R 7 0 R]; /T (f3[0]);"
        "/T (f1[1]); /T (top)",
        packet);
    EXPECT_EQ(shape_of(f.form), "- form1[0](f1[0] f2[0] s2[0](f3[0] f1[1])) top");
    return events_of(f.form);
}

using Text = const std::string&;
const auto subform = [](Text name, Text content) { return "<subform name='" + name + "'>" + content + "</subform>"; };
const auto field = [](Text name, Text act) { return "<field name='" + name + "'><event>" + act + "</event></field>"; };
const auto submit = [](Text name, Text target) { return field(name, "<submit target='" + target + "'/>"); };

int depth_of(const TiXmlNode& node)
{
    int depth = 0;
    for (const TiXmlElement* child = node.FirstChildElement(); child; child = child->NextSiblingElement())
        depth = std::max(depth, 1 + depth_of(*child));
    return depth;
}
}  // namespace

TEST(XfaTemplateTest, BindsEvents)
{
    const std::string f1 = submit("f1", "T");
    const std::pair<std::string, const char*> cases[] = {
        {subform("form1", f1), "3:1T "},
        {subform("form1", field("f2", "<script>xfa.host.resetData()</script>")), "4:2- "},
        {subform("form1", field("f2", "<script>print()</script>") + field("f1", "<script/>")), ""},
        {subform("form1", subform("s2", submit("f3", "U") + f1)), "6:1U 7:1T "},
        {"<subform>" + subform("form1", f1) + "</subform>", "3:1T "},
        {f1, ""},
        {subform("form1", f1) + "<subform>" + submit("top", "V") + "</subform>", "3:1T 8:1V "},
        {subform("form1", field("f1", "<submit/>") + field("f2", "text") + "<field><event/></field>"), ""},
        {subform("form1", f1 + submit("f1", "U")), "3:1U "},
        {subform("form1", f1 + field("f1", "<script>resetData</script>")), "3:2- "},
        {subform("form1", field("f1", "<x/></event><event><submit target='T'/>")), ""},
        {subform("form1", "<area>" + f1 + "</area>"), ""},
        {subform("form1", subform(std::string(300, 'n'), f1) + f1), "3:1T "},
        {subform("form1", submit("f1", "http://x/?a=1&amp;b=&#50;")), "3:1http://x/?a=1&b=2 "},
    };
    for (const auto& [content, expected] : cases)
        EXPECT_EQ(bound_by("<?xml version='1.0'?><template xmlns='x'>" + content + "</template>"), expected) << content;
}

TEST(XfaTemplateTest, HostilePackets)
{
    const std::string body = "<template>" + subform("form1", submit("f1", "&a;")) + "</template>";
    // The parser drops the ampersand of an entity that it does not know.
    const struct {
        const char* label;
        std::string packet;
        const char* expected = "";
    } cases[] = {
        {"zero byte after the declaration", std::string("<?xml \0", 7), ""},
        {"truncated", "<template><subform name='form1'>" + submit("f1", "T").substr(0, 30), ""},
        {"entity is not expanded", "<!DOCTYPE t [<!ENTITY a \"]>evil\">]>" + body, "3:1a; "},
        {"external entity",
         "<!DOCTYPE t SYSTEM 'file:///etc/passwd' [<!ENTITY a SYSTEM \"file:///etc/passwd\">]>" + body, "3:1a; "},
        {"type that never ends", "<!DOCTYPE t [" + body, ""},
        {"deep with skips between", "<template>" + repeated("<subform><!--x--><?p?><![CDATA[<]]>", 100000), ""},
        {"many attributes", "<template" + repeated(" a=''", 100000) + "/>", ""},
        {"many elements", "<template>" + repeated("<x/>", 600000) + "</template>", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(bound_by(c.packet), c.expected) << c.label;
}

// Whatever stands before deep markup, the guard and the parser agree on what is markup: every row of three tokens, read
// as UTF-8 and as bytes.
TEST(XmlGuardTest, NothingHidesDepth)
{
    const std::string tail = repeated("<a>", LIMIT_XML_DEPTH + 50);
    const char* const TOKENS[] = {"<?", "<?xml", "?>", ">",  "<!--", "-->", "<![CDATA[", "]]>", "<!D", "[",   "]",
                                  "'",  "\"",    "<",  "</", "<r",   "/",   "=",         "x",   " ",   "\xF0"};
    int refused = 0;
    std::string hiding;
    const auto check = [&](const std::string& head) {
        std::string text = head + tail;
        if (!guard_xml(text.data(), text.size())) {
            ++refused;
            return;
        }
        TiXmlDocument document;
        document.Parse(text.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
        if (depth_of(document) > LIMIT_XML_DEPTH && hiding.size() < 100)
            hiding += head + "\n";
    };
    for (const char* head :
         {"<!--> <![CDATA[ -->", "<?p > <r b='?>'>", "<r/><1 '>", "<r></r></ '>", "<!D [<!E ']>'>]>",
          "<?xml version='>' encoding='<!--'?>", "<?xml version='1.0' encoding='UTF-8'?><r>\xF0<!--"})
        check(head);
    for (const char* one : TOKENS) {
        for (const char* two : TOKENS) {
            for (const char* three : TOKENS) {
                check(std::string(one) + two + three);
                check(std::string("\xEF\xBB\xBF<r>") + one + two + three);
            }
        }
    }
    EXPECT_GT(refused, 1000);
    EXPECT_EQ(hiding, "");
    // A character cut at the end would take the parser beyond the text.
    for (std::string cut : {"<a>\xF0", "<a b='\xE2\x82", "<a>\xC3"}) {
        if (guard_xml(cut.data(), cut.size())) {
            EXPECT_LT(static_cast<unsigned char>(cut.back()), 0x80) << cut;
        }
    }
}

TEST(XmlGuardTest, LeavesSoundTextAsItIs)
{
    const std::string deep =
        repeated("<a>", LIMIT_XML_DEPTH - 1) + "<b c='>\"' d=\"/\"/>" + repeated("</a>", LIMIT_XML_DEPTH - 1);
    const std::string texts[] = {deep + deep, "<a>\u00E9<![CDATA[<c><d>]]></a>", "", "<a b='<!DOCTYPE x>'/>"};
    for (const std::string& text : texts) {
        std::string guarded = text;
        EXPECT_TRUE(guard_xml(guarded.data(), guarded.size())) << text.substr(0, 50);
        EXPECT_EQ(guarded, text);
    }
    std::string too_deep = "<a>" + repeated("<a>", LIMIT_XML_DEPTH);
    EXPECT_FALSE(guard_xml(too_deep.data(), too_deep.size()));
    std::string typed = "<!DOCTYPE a [<!-- don't --> <!ENTITY b ']>'>]><a/>";
    EXPECT_TRUE(guard_xml(typed.data(), typed.size()));
    EXPECT_EQ(typed, std::string(typed.size() - 4, ' ') + "<a/>");
}

TEST(FieldSetTest, PathsFillTheBufferExactly)
{
    for (const size_t size : {250u, 251u, 252u, 253u, 254u, 255u, 256u, 1000u}) {
        SCOPED_TRACE(size);
        TiXmlDocument document;
        const std::string name(size, 'n');
        const std::string xml = "<subform name='s'>" + submit(name, "T") + "<subform name='" + name + "'>" +
                                submit("f", "T") + "</subform></subform>";
        document.Parse(xml.c_str(), nullptr, TIXML_ENCODING_UNKNOWN);
        auto* const path = new char[FIELD_SET_PATH];  // on the heap, where a write beyond it is seen
        _PDF_FIELD_SET_ set;
        set.load(document.FirstChildElement(), path, 0);
        delete[] path;
        // ".s." and the terminator take 4 of the 256 bytes, ".f" 2 more.
        ASSERT_EQ(set.count, (size <= 252) + (size <= 250));
        if (set.count == 2) {
            EXPECT_EQ(set.items[1].name, ".s." + name + ".f");
        }
    }
}
