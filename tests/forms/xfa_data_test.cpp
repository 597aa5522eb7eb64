#include "forms/exchange/xfa_packet.h"
#include "tests/forms/form_fixture.h"
#include "tests/support/alloc_walk.h"

namespace {
const std::string OPENING = "<xfa:datasets xmlns:xfa=\"http://www.xfa.org/schema/xfa-data/1.0/\"><xfa:data>";
const std::string CLOSING = "</xfa:data></xfa:datasets>";
const std::string FIELDS =
    "/T (form1[0]) /Kids [3 0 R 4 0 R]; /FT /Tx /T (t[0]) /V (abc) /Parent 2 0 R;"
    "/T (#subform[0]) /Kids [5 0 R] /Parent 2 0 R; /FT /Btn /T (c[0]) /V /1 /Parent 4 0 R; /FT /Btn /Ff 65536 /T (p)";
const std::string DATA = OPENING + "<form1><t>abc</t><c>1</c></form1>" + CLOSING;

// The packet of `text` in brackets, "" when there is none.
std::string packet_of(const std::string& text)
{
    PDF_XFA_RANGE range;
    return find_xfa_datasets(text, range) ? "[" + text.substr(range.begin, range.end - range.begin) + "]" : "";
}
}  // namespace

TEST(XfaDataTest, DataSetFromTheFields)
{
    FormFixture f("/Fields [2 0 R null 6 0 R] /XFA [(template) 49 0 R (datasets) 50 0 R]", FIELDS, "old");
    f.form.reset_XFA(&f.doc.xref);
    EXPECT_EQ(f.doc.data(50), DATA);
    EXPECT_EQ(f.doc.show(50), "stream<< /Filter /FlateDecode /Length " + std::to_string(DATA.size()) + " >>");
    FormFixture empty("/XFA [(datasets) 50 0 R]", "", "old");
    empty.form.reset_XFA(&empty.doc.xref);
    EXPECT_EQ(empty.doc.data(50), OPENING + CLOSING);
    FormFixture none("/Fields [2 0 R]", FIELDS);
    none.form.reset_XFA(&none.doc.xref);
    EXPECT_EQ(none.doc.xref.changed_count(), 0);
}

TEST(XfaDataTest, SingleStreamKeepsItsOtherPackets)
{
    const std::string head =
        "\xEF\xBB\xBF<?xml version='1.0' encoding=\"UTF-8\"?>\r\n<xdp:xdp xmlns:xdp='x'><template/>\n";
    const std::string old = "<d:datasets xmlns:d='http://www.xfa.org/schema/xfa-data/1.0/'><d:data/></d:datasets >";
    FormFixture f("/Fields [2 0 R] /XFA 50 0 R", FIELDS, head + old + "<!-- \xE9 --></xdp:xdp>\n");
    for (int round = 0; round < 2; ++round) {
        f.form.reset_XFA(&f.doc.xref);
        EXPECT_EQ(f.doc.data(50), head + DATA + "<!-- \xE9 --></xdp:xdp>\n");
    }
    FormFixture cut("/Fields [2 0 R] /XFA 50 0 R", FIELDS, head + old);
    cut.form.reset_XFA(&cut.doc.xref);
    EXPECT_EQ(cut.doc.xref.changed_count(), 0) << "what follows is lost";
}

TEST(XfaPacketTest, FindsTheElementOnly)
{
    const std::string bound = "'http://www.xfa.org/schema/xfa-data/1.0/'";
    const std::string packet = "<a:datasets xmlns:a=" + bound + "><b>x</b></a:datasets>";
    const struct {
        const char* label;
        std::string text, found;
    } cases[] = {
        {"in the root", "<r>" + packet + "</r>", packet},
        {"bound by the root", "<r xmlns:q=" + bound + "><q:datasets/></r>", "<q:datasets/>"},
        {"default namespace", "<r><datasets b='' xmlns=" + bound + " ></datasets></r>",
         "<datasets b='' xmlns=" + bound + " ></datasets>"},
        {"bound to something else again", "<r xmlns:q=" + bound + "><q:datasets xmlns:q='x'/></r>", ""},
        {"another namespace", "<r><a:datasets xmlns:a='http://www.xfa.org/schema/xfa-data/1.0'/></r>", ""},
        {"too deep", "<r><c>" + packet + "</c></r>", ""},
        {"in a comment", "<r><!--" + packet + "-->" + packet + "</r>", packet},
        {"in character data", "<r><c><![CDATA[</c>" + packet + "]]></c>" + packet + "</r>", packet},
        {"in a value", "<r><c d=\"" + packet + "\" e='>\"'/>" + packet + "</r>", packet},
        {"end in a value", "<r><a:datasets xmlns:a=" + bound + " b='</a:datasets>/>'/></r>",
         "<a:datasets xmlns:a=" + bound + " b='</a:datasets>/>'/>"},
        {"document type", "<!DOCTYPE r [<!ENTITY e 'x'>]><r>" + packet + "</r>", ""},
        {"closed by another name", "<r><a:datasets xmlns:a=" + bound + "></b></r>", ""},
        {"no quotes", "<r><c d=e/>" + packet + "</r>", ""},
        {"end before start", "</r><r>" + packet + "</r>", ""},
        {"Latin-1", "<?xml version='1.0' encoding='ISO-8859-1'?><r>" + packet + "</r>", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(packet_of(c.text), c.found.empty() ? "" : "[" + c.found + "]") << c.label;
    // Every cut of a document is refused without reading beyond it.
    const std::string whole = "<?xml version='1.0' encoding='utf-8'?><r a=\"b\">" + packet + "<![CDATA[x]]></r>";
    for (size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(packet_of(std::string(whole, 0, size)), "") << size;
}

// Declarations that each element could search again.
TEST(XfaPacketTest, HostileTextTakesLinearTime)
{
    std::string names = "<r";
    std::string packets;
    for (int i = 0; i < 200000; ++i) {
        names += " xmlns:p" + std::to_string(i) + "='http://www.xfa.org/schema/xfa-data/1.0/'";
        packets += "<q:datasets/>";
    }
    EXPECT_EQ(packet_of(names + ">" + packets + "</r>"), "");
}

TEST(XfaDataTest, AllocationFailures)
{
    for (const bool single : {false, true}) {
        const std::string before = single ? "<r>" + OPENING + CLOSING + "</r>" : "old";
        const std::string after = single ? "<r>" + DATA + "</r>" : DATA;
        for (const bool again : {false, true}) {
            SCOPED_TRACE(std::string(single ? "one stream" : "packets") + (again ? " again" : ""));
            each_failed_allocation([&](const auto& arm) {
                FormFixture f(single ? "/Fields [2 0 R] /XFA 50 0 R" : "/Fields [2 0 R] /XFA [(datasets) 50 0 R]",
                              FIELDS, before);
                if (again)
                    f.form.reset_XFA(&f.doc.xref);
                const bool failed = arm([&] { f.form.reset_XFA(&f.doc.xref); });
                const std::string now = f.doc.data(50);
                EXPECT_TRUE(now == after || (failed && !again && now == before)) << now;
                EXPECT_EQ(f.doc.xref.changed_count(), now == after ? 1 : 0);
            });
        }
    }
}
