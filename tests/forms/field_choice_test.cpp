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

using Operation = int (*)(CPDFField&);

int select(CPDFField& field, std::vector<int> sels)
{
    field.set_choice_sels(sels.data(), static_cast<int>(sels.size()));
    return 1;
}

}  // namespace

TEST(FieldChoiceTest, Operations)
{
    const std::string opt = " [[(a) (Apple)] (b) [(c) (Cherry)]]";
    const struct {
        const char* label;
        const char* entries;
        Operation run;
        int result;
        std::string expected;
    } cases[] = {
        {"one", "/I [0 2] /V (x)",
         [](CPDFField& f) {
             f.set_choice_sel(1);
             return 1;
         },
         1, "1 | [1] (b)" + opt},
        {"one, export value", "",
         [](CPDFField& f) {
             f.set_choice_sel(2);
             return 1;
         },
         1, "2 | [2] (c)" + opt},
        {"one, empty selection", "/I []",
         [](CPDFField& f) {
             f.set_choice_sel(0);
             return 1;
         },
         1, "0 | [0] (a)" + opt},
        {"one, too large", "/I [0] /V (x)",
         [](CPDFField& f) {
             f.set_choice_sel(3);
             return 1;
         },
         1, "3 | [0] (x)" + opt},
        {"one, negative", "/V (x)",
         [](CPDFField& f) {
             f.set_choice_sel(-1);
             return 1;
         },
         1, "-1 | - (x)" + opt},
        {"several, in the order given", "/V (x)",
         [](CPDFField& f) {
             return select(f, {2, 0});
         },
         1, "2 0 | [2 0] [(Cherry) (Apple)],(x)" + opt},
        {"several, single", "", [](CPDFField& f) { return select(f, {1}); }, 1, "1 | [1] [(b)],null" + opt},
        {"several, none", "/I [1] /V (x)", [](CPDFField& f) { return select(f, {}); }, 1, "| [] [],(x)" + opt},
        {"several, one too large", "/I [1] /V (x)",
         [](CPDFField& f) {
             return select(f, {0, 5});
         },
         1, "0 5 | [1] (x)" + opt},
        {"several, its own selection", "/I [1 2]",
         [](CPDFField& f) {
             f.set_choice_sels(f.m_sels, 2);
             return 1;
         },
         1, "1 2 | [1 2] [(b) (Cherry)],null" + opt},
        {"insert in front", "/I [0 2] /V (x)",
         [](CPDFField& f) { return f.insert_choice_opt(0, text("n"), text("New")); }, 1,
         "1 3 | [1 3] [(Apple) (Cherry)],(x) [[(n) (New)] [(a) (Apple)] (b) [(c) (Cherry)]]"},
        {"insert at the end", "/I [2]", [](CPDFField& f) { return f.insert_choice_opt(3, text("n"), nullptr); }, 1,
         "2 | [2] [(Cherry)],null [[(a) (Apple)] (b) [(c) (Cherry)] (n)]"},
        {"insert before the last", "/I [2]", [](CPDFField& f) { return f.insert_choice_opt(2, text("n"), text("")); },
         1, "3 | [3] [(Cherry)],null [[(a) (Apple)] (b) (n) [(c) (Cherry)]]"},
        {"insert, nothing selected", "", [](CPDFField& f) { return f.insert_choice_opt(1, nullptr, nullptr); }, 1,
         "| [] [],null [[(a) (Apple)] () (b) [(c) (Cherry)]]"},
        {"insert, selection outside", "/I [7]", [](CPDFField& f) { return f.insert_choice_opt(3, text("n"), nullptr); },
         1, "8 | [7] - [[(a) (Apple)] (b) [(c) (Cherry)] (n)]"},
        {"insert a copy of an option", "",
         [](CPDFField& f) { return f.insert_choice_opt(0, &f.m_opts[2].val, &f.m_opts[2].text); }, 1,
         "| [] [],null [[(c) (Cherry)] [(a) (Apple)] (b) [(c) (Cherry)]]"},
        {"insert too far", "/I [0]", [](CPDFField& f) { return f.insert_choice_opt(4, text("n"), nullptr); }, 0,
         "0 | [0] -" + opt},
        {"insert, negative", "/I [0]", [](CPDFField& f) { return f.insert_choice_opt(-1, text("n"), nullptr); }, 0,
         "0 | [0] -" + opt},
        {"remove between", "/I [0 2]", [](CPDFField& f) { return f.remove_choice_opt(1); }, 1,
         "0 1 | [0 2] - [[(a) (Apple)] [(c) (Cherry)]]"},
        {"remove the first selected", "/I [1 2]", [](CPDFField& f) { return f.remove_choice_opt(1); }, 1,
         "1 | [1] [(Cherry)],null [[(a) (Apple)] [(c) (Cherry)]]"},
        {"remove the only selected", "/I [1]", [](CPDFField& f) { return f.remove_choice_opt(1); }, 1,
         "0 | [0] [(Apple)],null [[(a) (Apple)] [(c) (Cherry)]]"},
        {"remove, selection out of order", "/I [2 1 0]", [](CPDFField& f) { return f.remove_choice_opt(1); }, 1,
         "1 -1 | [2 1 0] - [[(a) (Apple)] [(c) (Cherry)]]"},
        {"remove all", "/I [0]",
         [](CPDFField& f) { return f.remove_choice_opt(0) + f.remove_choice_opt(0) + f.remove_choice_opt(0); }, 3,
         "0 | [0] [(Cherry)],null []"},
        {"remove and insert", "",
         [](CPDFField& f) { return f.insert_choice_opt(1, text("n"), nullptr) + f.remove_choice_opt(0); }, 2,
         "| [] [],null [(n) (b) [(c) (Cherry)]]"},
        {"remove too far", "/I [0]", [](CPDFField& f) { return f.remove_choice_opt(3); }, 0, "0 | [0] -" + opt},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        FormFixture f("/Fields [2 0 R]", THREE + std::string(c.entries));
        EXPECT_EQ(c.run(f.field(2)), c.result);
        EXPECT_EQ(state(f, f.field(2)), c.expected);
        // Another kind, and a field whose dictionary is gone.
        FormFixture other("/Fields [2 0 R]", std::string(c.entries) + THREE + " /FT /Tx");
        const std::string before = state(other, other.field(2));
        c.run(other.field(2));
        EXPECT_EQ(state(other, other.field(2)), before);
        FormFixture gone("/Fields [2 0 R]", THREE + std::string(c.entries));
        gone.doc.put_free(2);
        const std::string value = show_object(gone.field(2).m_value);
        EXPECT_EQ(c.run(gone.field(2)), c.result);
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

// The document keeps whole versions, and refused insertions change nothing.
TEST(FieldChoiceTest, AllocationFailures)
{
    const Operation operations[] = {
        [](CPDFField& f) {
            f.set_choice_sel(1);
            return 1;
        },
        [](CPDFField& f) {
            return select(f, {2, 0, 1});
        },
        [](CPDFField& f) { return f.insert_choice_opt(1, text("n"), text("New")); },
        [](CPDFField& f) { return f.remove_choice_opt(1); },
    };
    for (const Operation& run : operations) {
        for (const char* entries : {"/I [1 2] /V (x)", "/V (x)"}) {
            SCOPED_TRACE(std::to_string(&run - operations) + entries);
            FormFixture whole("/Fields [2 0 R]", THREE + std::string(entries));
            const std::string before = whole.doc.show(2);
            const std::string memory_before = state(whole, whole.field(2));
            run(whole.field(2));
            const std::string after = whole.doc.show(2);
            const int32_t count = whole.field(2).m_opt_cnt;
            each_failed_allocation([&](const auto& arm) {
                FormFixture f("/Fields [2 0 R]", THREE + std::string(entries));
                CPDFField& field = f.field(2);
                int result = 0;
                const bool failed = arm([&] { result = run(field); });
                if (!result)
                    EXPECT_EQ(state(f, field), memory_before);
                else
                    EXPECT_EQ(field.m_opt_cnt, count);
                const std::string now = f.doc.show(2);
                EXPECT_TRUE(now == after || failed) << now;
                // An option list is never short of an option, nor a selection short of an index.
                const std::string opts[] = {before, after};
                bool known = false;
                for (const std::string& text : opts)
                    known = known || now.substr(now.find("/Opt")).substr(0, now.find("/V") - now.find("/Opt")) ==
                                         text.substr(text.find("/Opt")).substr(0, text.find("/V") - text.find("/Opt"));
                EXPECT_TRUE(known) << now;
                EXPECT_TRUE(now.substr(0, now.find("/Opt")) == before.substr(0, before.find("/Opt")) ||
                            now.substr(0, now.find("/Opt")) == after.substr(0, after.find("/Opt")))
                    << now;
            });
        }
    }
}

#endif
