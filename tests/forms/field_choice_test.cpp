#include <iterator>
#include <sstream>

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "tests/forms/form_fixture.h"
#include "tests/support/alloc_walk.h"

namespace {

constexpr const char* THREE = "/FT /Ch /Opt [[(a) (Apple)] (b) [(c) (Cherry)]] ";

PDF_String* text(const char* characters)
{
    static PDF_String strings[2];
    static int next = 0;
    PDF_String& string = strings[next++ % 2];
    string = {static_cast<int32_t>(std::string(characters).size()),
              reinterpret_cast<unsigned char*>(const_cast<char*>(characters))};
    return &string;
}

// The selection in memory, the value in memory where it differs from "V", and "I", "V", "Opt" of the document.
std::string state(FormFixture& f, CPDFField& field)
{
    std::string out;
    for (int32_t i = 0; i < field.m_sel_cnt; ++i)
        out += std::to_string(field.m_sels[i]) + " ";
    out += "|";
    CPDFObj own;
    f.doc.xref.get_entity(own, field.m_ref);
    for (const char* key : {"I", "V", "Opt"}) {
        const CPDFObj* entry = own.dictionary() ? own.dict->get_item(key) : nullptr;
        out += entry ? " " + show_object(*entry) : " -";
        if (key[0] == 'V' && show_object(field.m_value) != (entry ? show_object(*entry) : "null"))
            out += "," + show_object(field.m_value);
    }
    return out;
}

// Runs operations like "sel 1, sels 2 0, ins 0 val text, del 3" and returns the last result. "sels" alone selects nothing,
// "same" hands the field its own selection, "copy 2" inserts option 2 again in front.
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
            field.set_choice_sels(field.m_sels, field.m_sel_cnt);
        else if (verb == "copy")
            result = field.insert_choice_opt(0, &field.m_opts[index].val, &field.m_opts[index].text);
        else if (verb == "ins")
            result = field.insert_choice_opt(index, text(val.c_str()), shown.empty() ? nullptr : text(shown.c_str()));
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
        const char* entries;
        const char* operations;
        int result;
        std::string expected;
    } cases[] = {
        {"/I [0 2] /V (x)", "sel 1", 1, "1 | [1] (b)" + opt},
        {"", "sel 2", 1, "2 | [2] (c)" + opt},
        {"/I []", "sel 0", 1, "0 | [0] (a)" + opt},
        {"", "sels, sel 0", 1, "0 | [0] (a)" + opt},
        {"/I [0] /V (x)", "sel 3", 1, "3 | [0] (x)" + opt},
        {"/V (x)", "sel -1", 1, "-1 | - (x)" + opt},
        {"/V (x)", "sels 2 0", 1, "2 0 | [2 0] [(Cherry) (Apple)],(x)" + opt},
        {"", "sels 1", 1, "1 | [1] [(b)],null" + opt},
        {"/I [1] /V (x)", "sels", 1, "| [] [],(x)" + opt},
        {"/I [1] /V (x)", "sels 0 5", 1, "0 5 | [1] (x)" + opt},
        {"/I [1 2]", "same", 1, "1 2 | [1 2] [(b) (Cherry)],null" + opt},
        {"/I [0 2] /V (x)", "ins 0 n New", 1,
         "1 3 | [1 3] [(Apple) (Cherry)],(x) [[(n) (New)] [(a) (Apple)] (b) [(c) (Cherry)]]"},
        {"/I [2]", "ins 3 n", 1, "2 | [2] [(Cherry)],null [[(a) (Apple)] (b) [(c) (Cherry)] (n)]"},
        {"/I [2]", "ins 2 n", 1, "3 | [3] [(Cherry)],null [[(a) (Apple)] (b) (n) [(c) (Cherry)]]"},
        {"", "ins 1", 1, "| [] [],null [[(a) (Apple)] () (b) [(c) (Cherry)]]"},
        {"/I [7]", "ins 3 n", 1, "8 | [7] - [[(a) (Apple)] (b) [(c) (Cherry)] (n)]"},
        {"", "copy 2", 1, "| [] [],null [[(c) (Cherry)] [(a) (Apple)] (b) [(c) (Cherry)]]"},
        {"/I [0]", "ins 4 n", 0, "0 | [0] -" + opt},
        {"/I [0]", "ins -1 n", 0, "0 | [0] -" + opt},
        {"/I [0 2]", "del 1", 1, "0 1 | [0 2] - [[(a) (Apple)] [(c) (Cherry)]]"},
        {"/I [1 2]", "del 1", 1, "1 | [1] [(Cherry)],null [[(a) (Apple)] [(c) (Cherry)]]"},
        {"/I [1]", "del 1", 1, "0 | [0] [(Apple)],null [[(a) (Apple)] [(c) (Cherry)]]"},
        {"/I [2 1 0]", "del 1", 1, "1 -1 | [2 1 0] - [[(a) (Apple)] [(c) (Cherry)]]"},
        {"/I [0]", "del 0, del 0, del 0", 1, "0 | [0] [(Cherry)],null []"},
        {"", "ins 1 n, del 0", 1, "| [] [],null [(n) (b) [(c) (Cherry)]]"},
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
        std::string top;
        std::string middle;
        const char* expected;  // options, the second one, selection; the object that set_choice_sel and insert change
    } cases[] = {
        {"own", "/FT /Ch /Opt [(x)]", std::string(THREE) + "/I [2]", "3 b 2; 3 3"},
        {"parent's", THREE + std::string("/I [1]"), "/I [2]", "3 b 1; 2 2"},
        {"parent's, empty of its own", THREE, "/Opt []", "3 b -1; 2 2"},
        {"nobody's", "/FT /Ch", "/I [2]", "0 - -1; 0 2"},
        {"parent of another kind", "/FT /Tx /Opt [(x) (y)]", "/FT /Ch", "0 - -1; 0 0"},
        {"kind of its own", "", "/FT /Ch", "0 - -1; 0 0"},
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
        field.insert_choice_opt(0, text("n"), nullptr);
        EXPECT_EQ(result + changed(), c.expected);
    }
    FormFixture f("/Fields [2 0 R]", "/FT /Ch /Opt [(v) [(v) (Shown)] [(v) ()] [(v)]]");
    const char* const shown[] = {"v", "Shown", "", "v"};
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(text_of(*f.field(2).get_choice_opt(i)), shown[i]);
}

#ifdef FORMWORK_ALLOC_HOOK

std::string part(const std::string& text, const char* begin, const char* end)
{
    const size_t at = text.find(begin);
    return at == std::string::npos ? "" : text.substr(at, text.find(end, at) - at);
}

// The document keeps whole versions, and refused insertions change nothing.
TEST(FieldChoiceTest, AllocationFailures)
{
    for (const char* operation : {"sel 1", "sels 2 0 1", "ins 1 n New", "del 1"}) {
        for (const char* entries : {"/I [1 2] /V (x)", "/V (x)"}) {
            SCOPED_TRACE(std::string(operation) + entries);
            FormFixture whole("/Fields [2 0 R]", THREE + std::string(entries));
            const std::string before = whole.doc.show(2);
            const std::string memory_before = state(whole, whole.field(2));
            run(whole.field(2), operation);
            const std::string after = whole.doc.show(2);
            const int32_t count = whole.field(2).m_opt_cnt;
            each_failed_allocation([&](const auto& arm) {
                FormFixture f("/Fields [2 0 R]", THREE + std::string(entries));
                CPDFField& field = f.field(2);
                int result = 0;
                const bool failed = arm([&] { result = run(field, operation); });
                if (!result)
                    EXPECT_EQ(state(f, field), memory_before);
                else
                    EXPECT_EQ(field.m_opt_cnt, count);
                const std::string now = f.doc.show(2);
                EXPECT_TRUE(now == after || failed) << now;
                // What an entry says is the old or the new: no option list is short of an option.
                for (const auto& [begin, end] :
                     {std::pair("<<", "/Opt"), std::pair("/Opt", "/V"), std::pair("/V", ">>")})
                    EXPECT_TRUE(part(now, begin, end) == part(before, begin, end) ||
                                part(now, begin, end) == part(after, begin, end))
                        << now;
            });
        }
    }
}

#endif
