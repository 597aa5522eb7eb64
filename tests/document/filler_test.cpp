#include "document/fill/filler.h"

#include <sstream>

#include "tests/document/fill_fixture.h"
#include "tests/support/alloc_walk.h"

namespace {
constexpr int CHECK = 0, RADIO = 0x8000, TOGGLE_NOT_OFF = 0xC000, UNISON = 0x2008000;

std::vector<std::string> words_of(const std::string& text)
{
    std::istringstream in(text);
    return {std::istream_iterator<std::string>(in), {}};
}

// A button field "f", object 10, with one widget for each state, objects 20 and following; one is merged with the field.
std::string button_form(int flags, const std::vector<std::string>& states, const std::string& opt)
{
    std::string field = "<</FT/Btn/T(f)/V/Off/Ff " + std::to_string(flags);
    field += opt.empty() ? "" : "/Opt[" + opt + "]";
    PdfBuilder file;
    std::string kids;
    for (uint32_t i = 0; i < states.size() && states.size() > 1; ++i) {
        file.object(20 + i, "<</Parent 10 0 R" + widget_states(states[i]) + ">>");
        kids += std::to_string(20 + i) + " 0 R ";
    }
    field += states.size() > 1 ? "/Kids[" + kids + "]" : widget_states(states[0]);
    return file.form({field + ">>"}).table().text;
}

// "V" and then '+' for each widget that is on, '-' for each that is off.
std::string button_state(FormAtWork& f, const std::vector<std::string>& states)
{
    std::string text = f.entry(10, "V").substr(1);
    for (uint32_t i = 0; i < states.size(); ++i) {
        const std::string shown = f.entry(states.size() > 1 ? 20 + i : 10, "AS");
        text += shown == "/Off" ? "-" : shown == "/" + states[i] ? "+" : "?";
    }
    return text;
}

// "true" and "false" spelled ":true" and ":false" are no texts; several texts are separated by '|'.
CPDFValue value_of(const std::string& word)
{
    if (word == ":true" || word == ":false")
        return word == ":true";
    if (word.find('|') == std::string::npos)
        return word;
    std::vector<std::string> several = split(word, '|');
    several.erase(std::remove(several.begin(), several.end(), ""), several.end());
    return several;
}
}  // namespace

// Each step sets a value and says what then holds, '!' for a refusal that changes nothing.
TEST(FillerTest, ToggleMatrix)
{
    const struct {
        int flags;
        const char *states, *opt, *steps;
    } cases[] = {
        {CHECK, "Yes", "",
         "Yes>Yes+ Off>Off- true>Yes+ :false>Off- :true>Yes+ false>Off- On>Yes+ NO>Off- 1>Yes+ oFF>Off- maybe>! a|b>! >!"},
        {CHECK, "No", "", "no>No+ 0>Off- yes>No+ No>No+"},
        {CHECK, "Yes", "(ja)", "ja>Yes+ Off>Off- Yes>Yes+ nein>!"},
        {CHECK, "true", "", ":false>Off- true>true+"},
        {CHECK, "a a", "", "a>a++ Off>Off-- :true>a++"},
        {CHECK, "a a", "(x) (y)", "x>a++ Off>Off-- y>a++ a>a++"},
        {CHECK, "a b", "", "a>a+- b>b-+ :false>Off-- :true>! true>! yes>! c>! b>b-+ NO>Off--"},
        {CHECK, "Yes No", "", "No>No-+ no>! 0>Off--"},
        {CHECK, "0 1", "(x) (y)", "x>0+- y>1-+ 0>0+- 1>1-+"},
        {CHECK, "0 1", "(x) (x)", "x>0+- 1>1-+ Off>Off--"},
        {CHECK, "0 1", "(x)", "1>1-+ x>0+- y>!"},
        {RADIO, "a", "", "a>a+ Off>Off- :true>! true>! :false>Off-"},
        {RADIO, "a a", "(x) (y)", "x>a+- y>a-+ a>a+-"},
        {RADIO, "a b c", "", "b>b-+- c>c--+ a>a+-- false>Off--- no>!"},
        {TOGGLE_NOT_OFF, "a b", "", "b>b-+ a>a+- Off>Off--"},
        {RADIO, "0 1 2", "(x) (y) (z)", "y>1-+- 2>2--+ x>0+-- w>!"},
        {RADIO, "0 1 2", "(x) (x) (z)", "x>0+-- 1>1-+- z>2--+ Off>Off---"},
        {RADIO, "0 1 2", "(x)", "x>0+-- 2>2--+ 1>1-+-"},
        {RADIO, "0 1", "(1) (0)", "1>1-+ 0>0+-"},
        {UNISON, "a a b", "", "a>a++- b>b--+ Off>Off---"},
        {UNISON, "a b c", "", "c>c--+ a>a+--"},
        {UNISON, "0 1 2", "(x) (x) (z)", "x>0++- 1>1++- z>2--+"},
        {UNISON, "0 0 2", "(x) (y) (z)", "y>0++- z>2--+"},
        {RADIO, "J\xC3\xBC J\xFC", "", "J\xC3\xBC>J\xC3\xBC+- Off>Off--"},
        {RADIO, "a#20b J#FC #c3#bc", "(\xFC) (y)", "b>! y>J\xFC-+- \xC3\xBC>\xC3\xBC--+ J\xC3\xBC>J\xFC-+-"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::to_string(c.flags) + " " + c.states + " " + c.opt);
        std::vector<std::string> states = words_of(c.states);
        FormAtWork f(button_form(c.flags, states, c.opt));
        for (std::string& state : states) {
            for (size_t at = state.find('#'); at != std::string::npos; at = state.find('#', at + 1))
                state.replace(at, 3, 1, static_cast<char>(std::stoi(state.substr(at + 1, 2), nullptr, 16)));
        }
        std::string expected = button_state(f, states);
        for (const std::string& step : words_of(c.steps)) {
            SCOPED_TRACE(step);
            const size_t sign = step.find('>');
            const bool refused = step.substr(sign + 1) == "!";
            expected = refused ? expected : step.substr(sign + 1);
            const CPDFStatus status = f.set("f", value_of(step.substr(0, sign)));
            EXPECT_EQ(status.ok(), !refused) << status.text;
            EXPECT_EQ(button_state(f, states), expected);
            FormAtWork again(f.saved());
            EXPECT_EQ(button_state(again, states), expected);
            EXPECT_EQ(again.memory(), f.memory());
        }
        EXPECT_EQ(f.entry(3, "NeedAppearances"), "-");
    }
}

TEST(FillerTest, ChoiceMatrix)
{
    constexpr int LIST = 0, MULTI = 0x200000, COMBO = 0x20000, EDIT = 0x60000;
    const std::string pairs = "/Opt[[(a)(Apple)][(b)(Berry)][(Apple)(Other)]]";
    const struct {
        const char* label;
        int flags;
        std::string entries;
        const char* value;
        const char* expected;  // "V" and "I", "!" when refused
    } cases[] = {
        {"export value", COMBO, pairs, "b", "(b) [1]"},
        {"shown text", COMBO, pairs, "Berry", "(b) [1]"},
        {"shown text that is another's export value", COMBO, pairs, "Apple", "(Apple) [2]"},
        {"pairs and strings of other kinds", LIST, "/Opt[[(a)][(b)(B)(x)](c)[]4]", "a", "(a) [0]"},
        {"behind references", LIST, "/Opt 30 0 R", "Far", "(f) [0]"},
        {"one-element array", LIST, "/Opt[(c)[(a)]]", "a", "(a) [1]"},
        {"the same twice", LIST, "/Opt[(a)(a)(b)]", "a", "(a) [0]"},
        {"beyond ASCII", LIST, "/Opt[(x)<FEFF20AC>(\xFC)]", "\xC3\xBC", "<FC> [2]"},
        {"no options", LIST, "", "a", "!"},
        {"no such option", LIST, "/Opt[(a)]/V(z)/I[7]", "y", "!"},
        {"stale selection", LIST, "/Opt[(a)(b)(c)]/V(z)/I[2 7]/RV(r)", "a", "(a) [0]"},
        {"several", MULTI, pairs, "Other|a", "[(a) (Apple)] [0 2]"},
        {"several, one of them twice", MULTI, pairs, "b|Berry|a", "[(a) (b)] [0 1]"},
        {"several, one unknown", MULTI, pairs, "a|z", "!"},
        {"several in a list box for one", LIST, pairs, "a|b", "!"},
        {"several in a combo box", COMBO | MULTI, pairs, "a|b", "!"},
        {"one as a list", LIST, pairs, "b|", "(b) [1]"},
        {"true", COMBO, "/Opt[(true)]", ":true", "!"},
        {"nothing", LIST, pairs + "/V(a)/I[0]", "", "- -"},
        {"nothing, list", MULTI, pairs + "/V[(a)(b)]/I[0 1]", "|", "- -"},
        {"nothing, default", LIST, pairs + "/V(a)/DV(b)/I[0]", "", "() -"},
        {"free text", EDIT, pairs + "/V(a)/I[0]", "free \xE2\x82\xAC", "<FEFF0066007200650065002020AC> -"},
        {"free text without options", EDIT, "", "a", "(a) -"},
        {"free text in a list box", LIST | 0x40000, pairs, "free", "!"},
        {"free text, not editable", COMBO, pairs, "free", "!"},
        {"free text, empty", EDIT, pairs + "/V(a)/I[0]", "", "- -"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const std::string field = "<</FT/Ch/T(f)/Ff " + std::to_string(c.flags) + c.entries + ">>";
        FormAtWork f(PdfBuilder().form({field}).object(30, "[[31 0 R(Far)]]").object(31, "(f)").table().text);
        f.document.set_drawing(PDF_DRAWING::LEAVE_TO_VIEWERS);
        const std::string before = f.saved();
        const CPDFStatus status = f.set("f", value_of(c.value));
        EXPECT_EQ(status.ok() ? f.entry(10, "V") + " " + f.entry(10, "I") : "!", c.expected) << status.text;
        EXPECT_EQ(f.saved() == before, !status.ok());
        EXPECT_EQ(f.entry(10, "RV"), "-");
        EXPECT_EQ(f.entry(3, "NeedAppearances"), status.ok() ? "true" : "-");
        FormAtWork again(f.saved());
        EXPECT_EQ(again.memory(), f.memory());
        EXPECT_EQ(again.entry(10, "V") + again.entry(10, "I"), f.entry(10, "V") + f.entry(10, "I"));
    }
}

// Kids with names are fields of their own; kids without one show their parent's value.
TEST(FillerTest, ValuesBelongToTheNearestNamedField)
{
    const std::string opt = "/Opt[[(a)(A)][(b)(B)]]";
    const struct {
        const char* label;
        std::string field, kid;
        const char *name, *value;
        const char* expected;  // "V" and "I" of the field, then of the kid
    } cases[] = {
        {"options of the parent", "/FT/Ch" + opt, "/T(k)", "f.k", "B", "- - (b) [1]"},
        {"own options", "/FT/Ch" + opt, "/T(k)/Opt[(B)]", "f.k", "B", "- - (B) [0]"},
        {"the parent itself", "/FT/Ch" + opt, "/T(k)", "f", "B", "(b) [1] - -"},
        {"choice widget with a stale value", "/FT/Ch/V(a)/I[0]" + opt, "/V(a)/I[0]/RV(r)", "f", "b", "(b) [1] - -"},
        {"text widget with a stale value", "/FT/Tx/V(x)/RV(r)", "/V(x)", "f", "new", "(new) - - -"},
        {"button widget with a stale value", "/FT/Btn/V/Off", "/V/Off" + widget_states("On"), "f", "On", "/On - - -"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        PdfBuilder file;
        file.form({"<</T(f)/Kids[20 0 R]" + c.field + ">>"})
            .object(20, "<</Subtype/Widget/Parent 10 0 R" + c.kid + ">>");
        FormAtWork f(file.table().text);
        const CPDFStatus status = f.set(c.name, c.value);
        EXPECT_TRUE(status.ok()) << status.text;
        const auto entries = [&f](uint32_t num) { return f.entry(num, "V") + " " + f.entry(num, "I"); };
        EXPECT_EQ(entries(10) + " " + entries(20), c.expected);
        EXPECT_EQ(FormAtWork(f.saved()).memory(), f.memory());
        // The kid taken by its number is as good as its name.
        FormAtWork by_number(file.text);
        CPDFField* kid = by_number.document.form().find(PDF_REF{20, 0});
        ASSERT_TRUE(kid);
        if (kid->m_name.len == 0) {
            EXPECT_TRUE(by_number.document.set_value(*kid, c.value).ok());
            EXPECT_EQ(by_number.saved(), f.saved());
        }
    }
}

TEST(FillerTest, TextsAndTheirLimits)
{
    const std::string long_one = "\xF0\x9F\x98\x80 \xC3\xA9\xE2\x82\xACzzzzzzz1";
    const std::string odd = std::string("a\0\x01(\\)\r\n\xF0\x9F\x98\x80", 12);
    const struct {
        const char* label;
        std::string field, kid;
        CPDFValue value;
        PDF_CODE code;
    } cases[] = {
        {"at the limit, in characters", "/MaxLen 11", "", long_one.substr(0, long_one.size() - 1), PDF_CODE::OK},
        {"above it", "/MaxLen 11", "", long_one, PDF_CODE::LIMIT},
        {"limit of the parent", "/MaxLen 3", "/T(k)", std::string("four"), PDF_CODE::LIMIT},
        {"limit of its own", "/MaxLen 3", "/T(k)/MaxLen 4", std::string("four"), PDF_CODE::OK},
        {"every byte survives", "", "", odd, PDF_CODE::OK},
        {"long", "", "", std::string(1000000, '('), PDF_CODE::OK},
        {"maximum 0", "/MaxLen 0", "", std::string("four"), PDF_CODE::OK},
        {"maximum below 0", "/MaxLen -5", "", std::string("four"), PDF_CODE::OK},
        {"true", "/MaxLen 4", "", true, PDF_CODE::OK},
        {"a list", "", "", std::vector<std::string>{"a"}, PDF_CODE::WRONG_KIND},
        {"read-only", "/Ff 1", "", std::string("x"), PDF_CODE::READ_ONLY},
        {"read-only, inherited", "/Ff 1", "/T(k)", std::string("x"), PDF_CODE::READ_ONLY},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.label);
        const std::string name = c.kid.empty() ? "f" : "f.k";
        PdfBuilder file;
        file.form({"<</FT/Tx/T(f)/V(old)/RV(r)/Kids[20 0 R 21 0 R]" + c.field + ">>"});
        file.object(20, "<</Subtype/Widget/Parent 10 0 R" + c.kid + ">>")
            .object(21, "<</Subtype/Widget/Parent 10 0 R>>");
        FormAtWork f(file.table().text);
        EXPECT_EQ(f.set(name, c.value).code, c.code);
        EXPECT_TRUE(c.code == PDF_CODE::OK || f.saved() == file.text);
        const bool forced = c.code == PDF_CODE::READ_ONLY;  // no other rule can be forced
        EXPECT_EQ(f.set(name, c.value, PDF_FILL::FORCE).code, forced ? PDF_CODE::OK : c.code);
        if (c.code != PDF_CODE::OK && !forced)
            continue;
        const std::string* text = std::get_if<std::string>(&c.value);
        FormAtWork again(f.saved());
        EXPECT_EQ(utf8_of(*again.field(name).get_edit_value()), text ? *text : "true");
        EXPECT_EQ(again.memory(), f.memory());
        EXPECT_EQ(again.entry(c.kid.empty() ? 10 : 20, "RV"), "-");
    }
}

TEST(FillerTest, GroupsWithoutATypeHandDownFlagsAndMaximum)
{
    const struct {
        const char *group, *field;
        PDF_CODE code;
    } cases[] = {
        {"/Ff 1", "/FT/Tx", PDF_CODE::READ_ONLY}, {"/Ff 1", "/FT/Tx/Ff 2", PDF_CODE::OK},
        {"/Ff 1", "/FT/Tx/Ff 0", PDF_CODE::OK},   {"/Ff 0", "/FT/Tx", PDF_CODE::OK},
        {"/MaxLen 2", "/FT/Tx", PDF_CODE::LIMIT}, {"/MaxLen 2", "/FT/Tx/MaxLen 3", PDF_CODE::OK},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(std::string(c.group) + " " + c.field);
        PdfBuilder file;
        file.form({std::string("<</T(g)/Kids[20 0 R]") + c.group + ">>"});
        file.object(20, "<</T(g)/Parent 10 0 R/Kids[21 0 R]>>");
        file.object(21, std::string("<</T(f)/Parent 20 0 R") + c.field + ">>");
        FormAtWork f(file.table().text);
        const PDF_CODE code = f.set("g.g.f", std::string("abc")).code;
        EXPECT_EQ(code, c.code);
        CPDFField& group = *f.document.field("g");
        PDF_FIELD_CHANGE change;
        change.clear_flags = FIELD_READ_ONLY;
        EXPECT_TRUE(f.document.change_field(group, change).ok());
        EXPECT_EQ(f.set("g.g.f", std::string("ab")).code, PDF_CODE::OK);
    }
}

// Whatever allocation fails: every object is as it was or as it should be, and with memory back the value goes in.
TEST(FillerTest, AllocationFailures)
{
    const std::string text =
        PdfBuilder()
            .form({"<</FT/Tx/T(t)/V(old)/RV(r)/Kids[22 0 R]>>", "<</FT/Btn/Ff 32768/T(r)/V/Off/Kids[20 0 R 21 0 R]>>",
                   "<</FT/Ch/Ff 2097152/T(c)/V(a)/I[0]/Opt[(a)[(b)(B)](c)]>>"})
            .object(20, "<</Parent 11 0 R" + widget_states("x") + ">>")
            .object(21, "<</Parent 11 0 R" + widget_states("y") + ">>")
            .object(22, "<</Parent 10 0 R/Subtype/Widget/V(x)>>")
            .table()
            .text;
    const std::pair<const char*, const char*> values[] = {{"t", "new"}, {"r", "y"}, {"c", "c|B"}, {"c", ""}};
    for (const auto& [name, value] : values) {
        SCOPED_TRACE(std::string(name) + "=" + value);
        const auto shown = [](FormAtWork& f) {
            std::vector<std::string> objects;
            for (const uint32_t num : {3, 10, 11, 12, 20, 21, 22}) {
                CPDFObj own;
                f.document.xref().get_entity(own, {num, 0});
                objects.push_back(show_object(own));
            }
            return objects;
        };
        FormAtWork whole(text);
        const std::vector<std::string> before = shown(whole);
        EXPECT_TRUE(whole.set(name, value_of(value)).ok());
        const std::vector<std::string> after = shown(whole);
        each_failed_allocation([&, name = name, value = value](const auto& arm) {
            FormAtWork f(text);
            CPDFField& field = f.field(name);
            const CPDFValue wanted = value_of(value);
            const bool failed = arm([&] { EXPECT_NE(f.document.set_value(field, wanted).code, PDF_CODE::LIMIT); });
            const std::vector<std::string> now = shown(f);
            for (size_t i = 0; i < now.size(); ++i)
                EXPECT_TRUE(now[i] == after[i] || (failed && now[i] == before[i])) << now[i];
            f.document.revert();
            f.document.fields_changed();
            EXPECT_TRUE(f.document.set_value(field, wanted).ok());
            EXPECT_EQ(shown(f), after);
        });
    }
}
