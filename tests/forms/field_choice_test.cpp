#include <sstream>

#include "tests/forms/form_fixture.h"

namespace {
constexpr const char* THREE = "/FT /Ch /Opt [[(a) (Apple)] (b) [(c) (Cherry)]] ";

// The selection in memory, the value in memory where it differs from "V", and "I", "V", "Opt" of the document.
std::string state(FormFixture& f, CPDFField& field)
{
    std::string out;
    for (int32_t i = 0; i < field.m_sel_cnt; ++i)
        out += std::to_string(field.m_sels[i]) + " ";
    out += "|";
    for (const char* key : {"I", "V", "Opt"}) {
        const std::string entry = f.doc.entry(field.m_ref.num, key);
        out += " " + entry;
        if (key[0] == 'V' && show_object(field.m_value) != (entry == "-" ? "null" : entry))
            out += "," + show_object(field.m_value);
    }
    return out;
}

int insert(CPDFField& field, int index, const std::string& val, const std::string& shown)
{
    PDF_String first = string_of(val);
    PDF_String second = string_of(shown);
    return field.insert_choice_opt(index, &first, shown.empty() ? nullptr : &second);
}

// Runs operations like "sel 1, sels 2 0, ins 0 val text, del 3" and returns the last result. "sels" alone selects
// nothing, "same" hands the field its own selection from the place on, "copy 2" inserts option 2 again in front.
int run(CPDFField& field, const std::string& operations)
{
    int result = 1;
    std::istringstream all(operations);
    for (std::string operation; std::getline(all, operation, ',');) {
        std::istringstream in(operation);
        std::string verb, val, shown;
        int index = -1;
        in >> verb;
        if (verb == "sels") {
            const std::vector<int> sels{std::istream_iterator<int>(in), {}};
            field.set_choice_sels(sels.data(), static_cast<int>(sels.size()));
            continue;
        }
        in >> index >> val >> shown;
        if (verb == "sel")
            field.set_choice_sel(index);
        else if (verb == "same")
            field.set_choice_sels(field.m_sels + index, field.m_sel_cnt - index);
        else if (verb == "copy")
            result = field.insert_choice_opt(0, &field.m_opts[index].val, &field.m_opts[index].text);
        else if (verb == "ins")
            result = insert(field, index, val, shown);
        else
            result = field.remove_choice_opt(index);
    }
    return result;
}
}  // namespace

TEST(FieldChoiceTest, Operations)
{
    const std::string opt = " [[(a) (Apple)] (b) [(c) (Cherry)]]";
    const struct {
        const char *entries, *operations;
        int result;
        std::string expected;
    } cases[] = {
        {"/I [0 2] /V (x)", "sel 1", 1, "1 | [1] (b)" + opt},
        {"/I [0] /V (x)", "sel 3", 1, "3 | [0] (x)" + opt},
        {"/V (x)", "sel -1", 1, "-1 | - (x)" + opt},
        {"/V (x)", "sels 2 0", 1, "2 0 | [2 0] [(Cherry) (Apple)],(x)" + opt},
        {"/I [1] /V (x)", "sels", 1, "| [] [],(x)" + opt},
        {"/I [1] /V (x)", "sels 0 5", 1, "0 5 | [1] (x)" + opt},
        {"/I [1 2]", "same 0", 1, "1 2 | [1 2] [(b) (Cherry)],null" + opt},
        {"/I [1 2 0]", "same 1", 1, "2 0 | [2 0] [(Cherry) (Apple)],null" + opt},
        {"/I [0 2] /V (x)", "ins 0 n New", 1,
         "1 3 | [1 3] [(Apple) (Cherry)],(x) [[(n) (New)] [(a) (Apple)] (b) [(c) (Cherry)]]"},
        {"/I [7]", "ins 3 n", 1, "8 | [7] - [[(a) (Apple)] (b) [(c) (Cherry)] (n)]"},
        {"", "copy 2", 1, "| [] [],null [[(c) (Cherry)] [(a) (Apple)] (b) [(c) (Cherry)]]"},
        {"/I [0]", "ins 4 n", 0, "0 | [0] -" + opt},
        {"/I [1 2]", "del 1", 1, "1 | [1] [(Cherry)],null [[(a) (Apple)] [(c) (Cherry)]]"},
        {"/I [1]", "del 1", 1, "0 | [0] [(Apple)],null [[(a) (Apple)] [(c) (Cherry)]]"},
        {"/I [2 1 0]", "del 1", 1, "1 -1 | [2 1 0] - [[(a) (Apple)] [(c) (Cherry)]]"},
        {"/I [0]", "del 0, del 0, del 0", 1, "0 | [0] [(Cherry)],null []"},
        {"/I [0]", "del 3", 0, "0 | [0] -" + opt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.operations) + " on " + c.entries);
        FormFixture f("/Fields [2 0 R]", THREE + std::string(c.entries));
        EXPECT_EQ(run(f.field(2), c.operations), c.result);
        EXPECT_EQ(state(f, f.field(2)), c.expected);
        // Another kind, and a field whose dictionary is gone.
        FormFixture other("/Fields [2 0 R]", std::string(c.entries) + THREE + " /FT /Tx");
        const std::string before = state(other, other.field(2));
        run(other.field(2), c.operations);
        EXPECT_EQ(state(other, other.field(2)), before);
        FormFixture gone("/Fields [2 0 R]", THREE + std::string(c.entries));
        gone.doc.put_free(2);
        const std::string value = show_object(gone.field(2).m_value);
        EXPECT_EQ(run(gone.field(2), c.operations), c.result);
        EXPECT_EQ(gone.doc.xref.changed_count(), 0);
        EXPECT_EQ(show_object(gone.field(2).m_value), value);
        EXPECT_EQ(gone.field(2).get_choice_sel(), f.field(2).get_choice_sel());
        EXPECT_EQ(gone.field(2).get_choice_opt_cnt(), f.field(2).get_choice_opt_cnt());
    }
}

TEST(FieldChoiceTest, OptionsAndSelectionAreTheHolders)
{
    const struct {
        const char* label;
        std::string top, middle;
        const char* expected;  // options, the second one, selection; the object that set_choice_sel and insert change
    } cases[] = {
        {"own", "/FT /Ch /Opt [(x)]", std::string(THREE) + "/I [2]", "3 b 2; 3 3"},
        {"parent's", THREE + std::string("/I [1]"), "/I [2]", "3 b 1; 2 2"},
        {"nobody's", "/FT /Ch", "/I [2]", "0 - -1; 0 2"},
        {"parent of another kind", "/FT /Tx /Opt [(x) (y)]", "/FT /Ch", "0 - -1; 0 0"},
        {"no choice", "/FT /Tx", THREE + std::string("/FT /Tx /I [1]"), "0 - -1; 0 0"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        FormFixture f("/Fields [2 0 R]", "/T (t) /Kids [3 0 R] " + c.top + "; /T (m) " + c.middle);
        CPDFField& field = f.field(3);
        const PDF_String* second = field.get_choice_opt(1);
        std::string result = std::to_string(field.get_choice_opt_cnt()) + " " + (second ? text_of(*second) : "-") +
                             " " + std::to_string(field.get_choice_sel()) + ";";
        const int count = field.get_choice_opt_cnt();
        EXPECT_TRUE(!field.get_choice_opt(-1) && !field.get_choice_opt(count));
        const auto changed = [&f] {
            const int num = f.doc.xref.changed_count() ? static_cast<int>(f.doc.xref.changed()[0].ref.num) : 0;
            f.doc.xref.discard_changes();
            return " " + std::to_string(num);
        };
        field.set_choice_sel(1);
        result += changed();
        insert(field, 0, "n", "");
        EXPECT_EQ(result + changed(), c.expected);
    }
}
