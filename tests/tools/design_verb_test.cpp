// A designer's verbs: what add, set, move, copy and tabs make, up to a form from nothing that qpdf's reading of it shows to
// be one for screen readers.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <nlohmann/json.hpp>

#include "tests/tools/command_run.h"

namespace {

using nlohmann::json;
using testing::HasSubstr;
using Words = std::vector<std::string>;

const std::string PAGE = "<</Type/Page/Parent 2 0 R/MediaBox[0 0 300 300]";

// Two pages, the second turned, with a structure or without one. The paragraph in it is on the second page.
std::string blank(bool tagged)
{
    std::vector<std::string> objects = {"<</Type/Catalog/Pages 2 0 R>>", "<</Type/Pages/Kids[3 0 R 4 0 R]/Count 2>>",
                                        PAGE + ">>", PAGE + "/Rotate 90/StructParents 7>>"};
    if (tagged) {
        objects[0].insert(2, "/MarkInfo<</Marked true>>/StructTreeRoot 5 0 R/Lang(en)");
        objects.insert(objects.end(), {"<</Type/StructTreeRoot/K 6 0 R/ParentTree<</Nums[7[7 0 R]]>>>>",
                                       "<</Type/StructElem/S/Document/P 5 0 R/K 7 0 R>>",
                                       "<</Type/StructElem/S/P/P 6 0 R/Pg 4 0 R>>"});
    }
    return pdf_of(objects);
}

// A saved file as qpdf reads it.
class ReadByQpdf {
public:
    explicit ReadByQpdf(const json& all)
    {
        for (const auto& [key, object] : all["qpdf"][1].items()) {
            if (object.contains("value") && key.starts_with("obj:"))
                m_objects[key.substr(4)] = object["value"];
        }
        m_root = at(all["qpdf"][1]["trailer"]["value"]["/Root"]);
    }

    json at(const json& entry) const
    {
        const auto found = entry.is_string() ? m_objects.find(entry.get<std::string>()) : m_objects.end();
        return found == m_objects.end() ? entry : found->second;
    }

    // What is wrong with the widgets of a tagged document for whoever has it read aloud.
    std::string faults()
    {
        std::string text;
        collect(at(at(m_root["/StructTreeRoot"])["/ParentTree"]));
        for (const auto& [page_ref, page] : m_objects) {
            for (const json& ref : page.is_object() ? at(page.value("/Annots", json::array())) : json::array())
                text += faults_of(ref, at(ref), page);
        }
        return text;
    }

    size_t widgets() const { return m_widgets; }

    // The types of the elements and object references in the structure, in their order.
    std::string structure() { return structure_of(m_root["/StructTreeRoot"]); }
    size_t numbers() const { return m_tree.size(); }

private:
    std::string structure_of(const json& entry)
    {
        const json node = at(entry);
        std::string text;
        for (const json& kid : node.is_array() ? node : json::array())
            text += structure_of(kid);
        if (!node.is_object())
            return text;
        const std::string type = node.value("/S", node.value("/Type", ""));
        return type.substr(1) + " " + structure_of(node.value("/K", json::array()));
    }

    std::string faults_of(const json& ref, const json& widget, const json& page)
    {
        ++m_widgets;
        const auto number = m_tree.find(widget.value("/StructParent", -1));
        if (number == m_tree.end())
            return ref.dump() + " is not in the parent tree; ";
        const json element = at(number->second);
        const json field = widget.contains("/T") ? widget : at(widget["/Parent"]);
        const json kids = at(at(element["/P"])["/K"]);
        const json listed = at(element["/K"]);
        const auto is_this = [&](const json& kid) { return at(kid).value("/Obj", "") == ref; };
        const std::pair<bool, const char*> wanted[] = {
            {std::any_of(listed.begin(), listed.end(), is_this), "is not in the structure"},
            {std::find(kids.begin(), kids.end(), number->second) != kids.end(), "has an element that stands nowhere"},
            {field.contains("/TU") && element.value("/Alt", "") == field["/TU"], "has no label"},
            {page.value("/Tabs", "") == "/S", "is on a page without the order of the structure"},
            {widget.contains("/AP"), "shows nothing"},
        };
        std::string text;
        for (const auto& [good, fault] : wanted)
            text += good ? "" : ref.dump() + " " + fault + "; ";
        return text;
    }

    void collect(const json& node)
    {
        if (!node.is_object())
            return;
        const json pairs = at(node.value("/Nums", json::array()));
        for (size_t i = 0; i + 1 < pairs.size(); i += 2)
            m_tree[pairs[i].get<int>()] = pairs[i + 1];
        for (const json& kid : at(node.value("/Kids", json::array())))
            collect(at(kid));
    }

    std::map<std::string, json> m_objects;
    std::map<int, json> m_tree;
    json m_root;
    size_t m_widgets = 0;
};

class DesignVerbTest : public testing::Test {
protected:
    CommandResult edit(Words words)
    {
        words.insert(words.begin() + 1, file);
        words.emplace_back("--in-place");
        return folder.run(words);
    }

    void edit_all(const std::vector<Words>& edits)
    {
        for (const Words& words : edits) {
            const CommandResult result = edit(words);
            EXPECT_EQ(result.exit, 0) << words[0] << " " << words[2] << ": " << result.err;
        }
    }

    // Nothing where there is no qpdf.
    std::optional<ReadByQpdf> by_qpdf()
    {
        const std::string out = folder.path("q.json");
        if (std::system(
                ("qpdf --check '" + file + "' >/dev/null && qpdf --json=2 '" + file + "' >'" + out + "'").c_str()))
            return {};
        return ReadByQpdf(json::parse(read_text_file(out)));
    }

    CommandFolder folder;
    std::string file;
};

}  // namespace

TEST_F(DesignVerbTest, AFormFromNothing)
{
    const std::vector<Words> edits = {
        {"add", "text", "who.name", "--rect", "20,250,100,20", "--label", "Näme", "--font", "Times-Bold", "--font-size",
         "11"},
        {"add", "text", "born", "--rect", "2:20,190,20,100", "--label", "Date of birth", "--format", "date:mm/dd/yyyy"},
        {"add", "text", "a", "--rect", "20,200,60,20", "--rect", "2:60,200,20,60", "--label", "First", "--format",
         "number:2:1.234,56 €", "--align", "right"},
        {"add", "check", "ok", "--rect", "150,200,15,15", "--label", "Agreed", "--mark", "cross", "--border-color",
         "red"},
        {"add", "radio", "size", "--rect", "150,150,60,15", "--state", "S", "--state", "L", "--label", "Size"},
        {"add", "combo", "land", "--rect", "20,150,60,20", "--option", "ch=Switzerland", "--label", "Country"},
        {"add", "list", "many", "--rect", "20,80,60,50", "--option", "x", "--option", "y", "--label", "Many"},
        {"add", "push", "send", "--rect", "150,80,60,20", "--caption", "Send", "--action", "submit:https://x.test/?a=1",
         "--label", "Sends the form"},
        {"add", "signature", "sign", "--rect", "150,20,100,40", "--label", "Signature"},
        {"copy", "a", "b", "--rect", "100,200,40,20"},
        {"set", "b", "--label", "Second"},
        {"add", "text", "total", "--rect", "20,20,60,20", "--label", "Total", "--calculate", "sum:a,b", "--format",
         "number:0:$1,234.56"},
        {"add", "text", "gone", "--rect", "220,250,30,20", "--label", "Goes"},
        {"move", "b", "--page", "2"},
        {"remove", "gone"},
        {"fill", "a=1000,5", "b=2"},
    };
    for (const bool tagged : {false, true}) {
        SCOPED_TRACE(tagged);
        file = folder.write("form.pdf", blank(tagged));
        edit_all(edits);
        edit_all({{"tabs", "--by", tagged ? "structure" : "rows"}});
        EXPECT_EQ(folder.run({"get", file, "total"}).out, "1002.5\n");
        std::string shown;
        for (const json& field : json::parse(folder.run({"list", "--json", file}).out))
            shown +=
                field.contains("shown") && field["shown"].is_string() ? field["shown"].get<std::string>() + ";" : "";
        EXPECT_EQ(shown, "1.000,50 €;2,00 €;$1,003;");
        std::optional<ReadByQpdf> read = by_qpdf();
        if (!read)
            GTEST_SKIP() << "no qpdf";
        const std::string faults = read->faults();
        EXPECT_EQ(read->widgets(), 14u);
        EXPECT_EQ(read->numbers(), tagged ? 15u : 0u) << "one of the page, and one for each widget";
        EXPECT_TRUE(tagged ? faults.empty() : read->numbers() == 0) << faults;
        if (!tagged)
            continue;
        edit_all({{"fill", "b=3", "--flatten"}});
        read = by_qpdf();
        EXPECT_EQ(read->faults(), "");
        EXPECT_EQ(read->widgets(), 0u);
        EXPECT_EQ(read->numbers(), 1u) << "that of the page";
        EXPECT_EQ(read->structure(), "StructTreeRoot Document P ");
    }
}

TEST_F(DesignVerbTest, FontFilesWithCffOutlinesAreEmbedded)
{
    std::error_code ignored;
    std::string font;
    for (const auto& at : std::filesystem::recursive_directory_iterator("/usr/share/fonts", ignored)) {
        if (at.path().extension() == ".otf" && at.path().filename().string().starts_with("Nimbus"))
            font = at.path();
    }
    if (font.empty())
        GTEST_SKIP() << "no such font";
    file = folder.write("form.pdf", blank(false));
    edit_all({{"add", "text", "t", "--rect", "20,250,100,20", "--font", font, "--default", "Wäy"},
              {"add", "text", "u", "--rect", "20,200,100,20", "--font", font}});
    if (!by_qpdf())
        GTEST_SKIP() << "no qpdf";
    const std::string all = read_text_file(folder.path("q.json"));
    EXPECT_THAT(all, HasSubstr("/Type1C"));
    EXPECT_THAT(all, HasSubstr("\"/Subtype\": \"/Type1\""));
    EXPECT_EQ(all.find("/FontFile3"), all.rfind("/FontFile3")) << "embedded once";
}

TEST_F(DesignVerbTest, TabOrder)
{
    const struct {
        Words by;
        const char* first_page;
        const char* second_page;  // turned to the right: its x goes down, its y to the right
    } cases[] = {
        {{"rows"}, "a c b ", "f e "},
        {{"columns"}, "a b c ", "f e "},
        {{"c", "b"}, "c b a ", "e f "},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.by[0]);
        file = folder.write("tabs.pdf", blank(false));
        edit_all({{"add", "text", "b", "--rect", "10,100,50,20"},
                  {"add", "text", "c", "--rect", "100,205,50,20"},
                  {"add", "text", "a", "--rect", "10,200,50,20"},
                  {"add", "text", "e", "--rect", "2:10,100,20,50"},
                  {"add", "text", "f", "--rect", "2:10,10,20,50"}});
        Words words = {"tabs", "--by"};
        words.insert(words.end(), c.by.begin(), c.by.end());
        edit_all({words});
        std::optional<ReadByQpdf> read = by_qpdf();
        if (!read)
            GTEST_SKIP() << "no qpdf";
        for (const auto& [page, order] : {std::pair("3 0 R", c.first_page), std::pair("4 0 R", c.second_page)}) {
            std::string names;
            for (const json& annotation : read->at(read->at(page)["/Annots"]))
                names += read->at(annotation)["/T"].get<std::string>().substr(2) + " ";
            EXPECT_EQ(names, order);
        }
    }
}

TEST_F(DesignVerbTest, PatternsAndRefusals)
{
    file = folder.write("form.pdf", blank(false));
    edit_all({{"add", "text", "line1.amount", "--rect", "10,100,50,20"},
              {"add", "text", "line2.amount", "--rect", "10,150,50,20"},
              {"add", "check", "line2.ok", "--rect", "10,200,20,20"},
              {"set", "line*.amount", "--required", "on", "--format", "percent:1"},
              {"set", "--all", "--kind", "check", "--read-only", "on"}});
    std::string flags;
    for (const json& field : json::parse(folder.run({"list", "--json", file}).out))
        flags += field["flags"].dump() + " ";
    EXPECT_EQ(flags, "0 2 0 2 1 ");
    const struct {
        Words words;
        int exit;
        const char* part;
    } cases[] = {
        {{"set", "x*", "--required", "on"}, 1, "no field has a name like \"x*\""},
        {{"set", "--all", "--kind", "radio", "--required", "on"}, 1, "has no field of the kind radio"},
        {{"set", "--all", "line2.ok", "--required", "on"}, 2, "either names"},
        {{"set", "--all", "--font", "Comic"}, 1, "no font \"Comic\": give one"},
        {{"set", "--all", "--font", "/none.ttf"}, 1, "\"/none.ttf\" can't be a font of the form: it is no font"},
        {{"set", "line2.ok", "--align", "left"}, 1, "\"line2.ok\" is a check box, which has no alignment"},
        {{"set", "line2.ok", "--format", "number:2"}, 1, "has no format"},
        {{"set", "line2.ok", "--action", "print"}, 1, "has no action"},
        {{"set", "line2.ok", "--caption", "x"}, 1, "mark instead of a caption"},
        {{"set", "line2.amount", "--font-size", "5000"}, 1, "text size of 5000"},
        {{"set", "line2.amount", "--format", "number:2:12.3"}, 2, "is not number:DECIMALS"},
        {{"set", "line2.amount", "--color", "#12"}, 2, "a colour"},
        {{"set", "line2.amount", "--calculate", "sum:line2.amount"}, 1, "calculated from itself"},
        {{"set", "line2.amount", "--calculate", "sum:none"}, 1, "no field \"none\""},
        {{"move", "line2.amount"}, 2, "--rect, --page or both"},
        {{"move", "line2.amount", "--page", "3"}, 1, "no page 3"},
        {{"move", "line2.amount", "--rect", "1,1,9,9", "--rect", "1,1,9,9"}, 1, "has 1 widget: give one"},
        {{"move", "line2", "--page", "2"}, 1, "no widget"},
        {{"copy", "line2.amount", "line1.amount", "--page", "2"}, 1, "already"},
        {{"tabs", "--by", "structure"}, 1, "not tagged"},
        {{"tabs", "--by", "nobody"}, 1, "\"nobody\""},
        {{"add", "push", "p", "--rect", "1,1,9,9", "--action", "submit:a b"}, 2, "submit:URL"},
    };
    for (const auto& c : cases) {
        const CommandResult result = edit(c.words);
        EXPECT_EQ(result.exit, c.exit) << result.err;
        EXPECT_THAT(result.err, HasSubstr(c.part));
    }
}
