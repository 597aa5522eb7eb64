#include "capi/formwork.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <memory>
#include <nlohmann/json.hpp>
#include <sstream>
#include <thread>

#include "tests/support/alloc_walk.h"
#include "tests/support/new_hook.h"
#include "tests/support/pdf_builder.h"

namespace {

using nlohmann::json;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

struct Closer {
    void operator()(fw_document* document) const { fw_close(document); }
};
using Document = std::unique_ptr<fw_document, Closer>;

std::string bytes_of(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string sample(const char* name)
{
    return std::string(FORMWORK_SAMPLES_DIR) + "/" + name;
}

Document open(const std::string& bytes)
{
    fw_document* document = nullptr;
    EXPECT_EQ(fw_open_bytes(bytes.data(), bytes.size(), nullptr, &document), FW_OK) << fw_error();
    return Document(document);
}

Document open_sample(const char* name)
{
    return open(bytes_of(sample(name)));
}

fw_field find(const Document& document, const char* name, unsigned flags = FW_PLAIN)
{
    fw_field field = 0;
    EXPECT_EQ(fw_find_field(document.get(), name, flags, &field), FW_OK) << fw_error();
    return field;
}

std::string text_of(const Document& document, fw_field field, fw_text which = FW_VALUE)
{
    const char* text = nullptr;
    const fw_code code = fw_field_text(document.get(), field, which, &text);
    return code != FW_OK ? "code " + std::to_string(code) : text ? text : "none";
}

std::vector<std::string> items_of(const Document& document, fw_field field, fw_list which)
{
    std::vector<std::string> out;
    size_t count = 0;
    const char* text = nullptr;
    EXPECT_EQ(fw_item_count(document.get(), field, which, &count), FW_OK);
    for (size_t i = 0; i < count && fw_item(document.get(), field, which, i, &text) == FW_OK; ++i)
        out.emplace_back(text);
    return out;
}

// What a call hands out, made a string.
template <typename Call>
std::string handed(const Call& call, fw_code expected = FW_OK)
{
    char* text = nullptr;
    size_t size = 0;
    EXPECT_EQ(call(&text, &size), expected) << fw_error();
    const std::string out(text ? text : "", size);
    fw_free(text);
    return out;
}

std::string saved(const Document& document, unsigned flags = FW_PLAIN)
{
    return handed([&](char** bytes, size_t* size) { return fw_save_bytes(document.get(), flags, bytes, size); });
}

fw_code fill(const Document& document, const std::string& data, fw_format format, unsigned flags, json& report)
{
    fw_code code = FW_OK;
    char* text = nullptr;
    size_t size = 0;
    code = fw_fill(document.get(), format, data.data(), data.size(), flags, &text, &size);
    report = text ? json::parse(std::string(text, size)) : json();
    fw_free(text);
    return code;
}

TEST(CInterface, FillsEveryKindOfFieldAndSavesBehindTheInput)
{
    const std::string input = bytes_of(sample("kinds.pdf"));
    const Document document = open(input);
    const fw_field toppings = find(document, "toppings");
    const char* const two[] = {"mu", "on"};
    EXPECT_EQ(fw_set_value(document.get(), find(document, "address.city"), "Zürich", FW_PLAIN), FW_OK) << fw_error();
    EXPECT_EQ(fw_set_value(document.get(), find(document, "agree"), "true", FW_PLAIN), FW_OK) << fw_error();
    EXPECT_EQ(fw_set_value(document.get(), find(document, "colour"), "blue", FW_PLAIN), FW_OK) << fw_error();
    EXPECT_EQ(fw_set_values(document.get(), toppings, two, 2, FW_CHECK_ONLY), FW_OK) << fw_error();
    EXPECT_EQ(fw_set_values(document.get(), toppings, two, 2, FW_PLAIN), FW_OK) << fw_error();
    const std::string output = saved(document);
    EXPECT_TRUE(output.starts_with(input));
    EXPECT_EQ(output, input + saved(document, FW_UPDATE_ONLY));
    const Document again = open(output);
    EXPECT_EQ(text_of(again, find(again, "address.city")), "Zürich");
    EXPECT_EQ(text_of(again, find(again, "colour")), "blue");
    EXPECT_THAT(items_of(again, find(again, "toppings"), FW_VALUES), ElementsAre("on", "mu"));
    EXPECT_EQ(fw_set_value(again.get(), find(again, "colour"), "no such", FW_PLAIN), FW_WRONG_KIND);
    EXPECT_THAT(fw_error(), HasSubstr("colour"));
}

// What single calls tell is what the list tells.
TEST(CInterface, TellsOfFieldsWhatTheListTells)
{
    const Document document = open_sample("kinds.pdf");
    const json list = json::parse(
        handed([&](char** text, size_t* size) { return fw_list_json(document.get(), FW_PLAIN, text, size); }));
    size_t count = 0;
    ASSERT_EQ(fw_field_count(document.get(), &count), FW_OK);
    ASSERT_EQ(count, list.size());
    constexpr const char* KINDS[] = {"container", "radio", "push", "check", "text", "combo", "list", "signature"};
    for (size_t i = 0; i < count; ++i) {
        const json& listed = list[i];
        SCOPED_TRACE(listed["name"]);
        fw_field field = 0;
        ASSERT_EQ(fw_field_at(document.get(), i, &field), FW_OK);
        const auto number = [&](fw_number which) {
            int64_t value = -1;
            EXPECT_EQ(fw_field_number(document.get(), field, which, &value), FW_OK);
            return value;
        };
        const auto none_or = [](const json& text) { return text.is_null() ? "none" : text.get<std::string>(); };
        EXPECT_EQ(text_of(document, field, FW_NAME), listed["name"]);
        EXPECT_EQ(text_of(document, field, FW_LABEL), none_or(listed["label"]));
        EXPECT_EQ(KINDS[number(FW_KIND)], listed["kind"]);
        EXPECT_EQ(number(FW_FIELD_FLAGS), listed["flags"]);
        EXPECT_EQ(number(FW_OBJECT), listed["object"]);
        EXPECT_EQ(number(FW_PAGE), listed["page"].is_null() ? 0 : listed["page"].get<int>());
        EXPECT_EQ(items_of(document, field, FW_STATES), listed["states"].get<std::vector<std::string>>());
        EXPECT_EQ(items_of(document, field, FW_OPTION_VALUES).size(), listed["options"].size());
        if (!listed["value"].is_array()) {
            EXPECT_EQ(text_of(document, field), none_or(listed["value"]));
        }
        size_t widgets = 0;
        ASSERT_EQ(fw_widget_count(document.get(), field, &widgets), FW_OK);
        ASSERT_EQ(widgets, listed["widgets"].size());
        for (size_t at = 0; at < widgets; ++at) {
            fw_widget widget;
            ASSERT_EQ(fw_widget_at(document.get(), field, at, &widget), FW_OK);
            EXPECT_EQ(widget.object, listed["widgets"][at]);
            EXPECT_NEAR(widget.x1, listed["widgetRects"][at]["rect"][2].get<double>(), 0.001);
            fw_field found = 0;
            EXPECT_EQ(fw_field_of_object(document.get(), widget.object, &found), FW_OK);
            EXPECT_EQ(found, field);
        }
    }
}

TEST(CInterface, HandlesStayGoodOrAreStale)
{
    const Document document = open_sample("kinds.pdf");
    // Found before the form is loaded, a group and what is in it.
    const fw_field group = find(document, "address");
    const fw_field city = find(document, "address.city");
    const fw_field name = find(document, "name");
    EXPECT_EQ(find(document, "ess.cit", FW_GUESS), city);
    size_t count = 0;
    EXPECT_EQ(fw_field_count(document.get(), &count), FW_OK);
    EXPECT_EQ(text_of(document, group, FW_NAME), "address");
    EXPECT_EQ(find(document, "address.city"), city);
    EXPECT_EQ(fw_set_value(document.get(), city, "Ulm", FW_PLAIN), FW_OK);
    EXPECT_EQ(fw_revert(document.get()), FW_OK);
    EXPECT_EQ(text_of(document, city), "London");

    const Document other = open_sample("kinds.pdf");
    const fw_field foreign = find(other, "name");
    for (const fw_field wrong : {foreign, fw_field{0}, fw_field{1}, ~fw_field{0}, name + 1000})
        EXPECT_EQ(fw_set_value(document.get(), wrong, "x", FW_PLAIN), FW_STALE) << wrong;

    EXPECT_EQ(fw_rename_field(document.get(), city, "place", nullptr, FW_PLAIN), FW_OK) << fw_error();
    EXPECT_EQ(text_of(document, city, FW_NAME), "address.place");
    EXPECT_EQ(fw_rename_field(document.get(), city, nullptr, "", FW_PLAIN), FW_OK) << fw_error();
    EXPECT_EQ(text_of(document, city, FW_NAME), "place");
    fw_field added = 0;
    constexpr const char* FIELD =
        R"({"kind":"text","name":"new","places":[{"page":1,"rect":[9,9,90,20]}],"required":true})";
    EXPECT_EQ(fw_add_field(document.get(), FIELD, FW_PLAIN, &added), FW_OK) << fw_error();
    EXPECT_EQ(fw_change_field(document.get(), added, R"({"label":"A new one","maxLength":3})", FW_PLAIN), FW_OK);
    EXPECT_EQ(text_of(document, added, FW_LABEL), "A new one");
    EXPECT_EQ(fw_set_value(document.get(), added, "four", FW_PLAIN), FW_LIMIT);
    EXPECT_EQ(fw_remove_field(document.get(), name, FW_PLAIN), FW_OK) << fw_error();
    EXPECT_EQ(text_of(document, name), "code 16");
    EXPECT_EQ(text_of(document, city), "London");
    EXPECT_EQ(fw_revert(document.get()), FW_OK);
    EXPECT_EQ(text_of(document, city), "code 16");
    EXPECT_EQ(text_of(document, added), "code 16");
    const fw_field again = find(document, "address.city");
    EXPECT_EQ(fw_append(document.get(), other.get(), FW_RENAME, FW_PLAIN), FW_OK) << fw_error();
    EXPECT_EQ(text_of(document, again), "code 16");
    EXPECT_EQ(text_of(document, find(document, "address.city_2")), "London");
    EXPECT_EQ(fw_flatten(document.get(), FW_PLAIN), FW_OK) << fw_error();
    EXPECT_EQ(fw_field_count(document.get(), &count), FW_OK);
    EXPECT_EQ(count, 0);
}

// Fields a and b, and a group with a name that a also has; the structure names an object that is not there.
std::string damaged_structure()
{
    PdfBuilder file;
    file.object(1, "<</Type/Catalog/Pages 2 0 R/AcroForm 3 0 R/StructTreeRoot 6 0 R/MarkInfo<</Marked true>>>>");
    file.object(2, "<</Type/Pages/Kids[4 0 R]/Count 1>>");
    file.object(3, "<</Fields[10 0 R 11 0 R]/DA(/Helv 10 Tf 0 g)>>");
    file.object(4, "<</Type/Page/Parent 2 0 R/MediaBox[0 0 300 300]/Annots[10 0 R 11 0 R]>>");
    file.object(6, "<</Type/StructTreeRoot/K[]/ParentTree 7 0 R/ParentTreeNextKey 1>>");
    file.object(7, "<</Nums[0 99 0 R]>>");
    file.object(10, "<</Subtype/Widget/Rect[10 10 90 30]/FT/Tx/T(a)/V(one)/StructParent 0/P 4 0 R/F 4>>");
    file.object(11, "<</Subtype/Widget/Rect[10 40 90 60]/FT/Tx/T(b)/V(two)/P 4 0 R/F 4>>");
    return file.table().text;
}

TEST(CInterface, ChangesThatFailHalfWayEndHandles)
{
    const Document document = open(damaged_structure());
    const fw_field field = find(document, "a");
    EXPECT_EQ(fw_remove_field(document.get(), field, FW_CHECK_ONLY), FW_BAD_REQUEST);
    EXPECT_EQ(text_of(document, field), "one");
    EXPECT_EQ(fw_remove_field(document.get(), field, FW_PLAIN), FW_DAMAGED);
    EXPECT_EQ(text_of(document, field), "code 16");
    EXPECT_EQ(fw_revert(document.get()), FW_OK);
    EXPECT_EQ(text_of(document, find(document, "a")), "one");
}

TEST(CInterface, NewNameAndGroupAreTakenTogetherOrNotAtAll)
{
    PdfBuilder file;
    file.form({"<</FT/Tx/T(a)/V(one)>>", "<</T(g)/Kids[12 0 R 13 0 R]>>"});
    file.object(12, "<</FT/Tx/T(a)/V(two)/Parent 11 0 R>>").object(13, "<</FT/Tx/T(b)/Parent 11 0 R>>");
    const Document document = open(file.table().text);
    const fw_field field = find(document, "a");
    const auto rename = [&](const char* name, const char* group) {
        return fw_rename_field(document.get(), field, name, group, FW_PLAIN);
    };
    EXPECT_EQ(rename("b", "g"), FW_BAD_EDIT);
    EXPECT_EQ(text_of(document, field, FW_NAME), "a");
    EXPECT_EQ(rename("z", "none"), FW_NO_FIELD);
    EXPECT_EQ(text_of(document, field, FW_NAME), "a");
    EXPECT_EQ(rename("z", "g"), FW_OK) << "the group has an a already: " << fw_error();
    EXPECT_EQ(text_of(document, field, FW_NAME), "g.z");
    EXPECT_EQ(text_of(document, field), "one");
}

TEST(CInterface, FormDataAreTakenWholeOrNotAtAll)
{
    const Document document = open_sample("kinds.pdf");
    json report;
    EXPECT_EQ(fill(document, R"({"name":"Ada","colour":"none such","nmae":"x"})", FW_JSON, FW_PLAIN, report),
              FW_WRONG_KIND);
    ASSERT_EQ(report.size(), 3);
    EXPECT_EQ(report[1]["result"], "refused");
    EXPECT_THAT(report[2]["why"], HasSubstr("name"));
    EXPECT_EQ(saved(document, FW_UPDATE_ONLY), "");
    EXPECT_EQ(fill(document, R"({"name":"Ada","nmae":"x"})", FW_JSON, FW_IGNORE_UNKNOWN | FW_CHECK_ONLY, report),
              FW_OK);
    EXPECT_EQ(saved(document, FW_UPDATE_ONLY), "");
    EXPECT_EQ(fill(document, R"({"name":"Ada","nmae":"x"})", FW_JSON, FW_IGNORE_UNKNOWN, report), FW_OK);
    EXPECT_EQ(text_of(document, find(document, "name")), "Ada");
    // What is written in a format is read from it.
    for (const fw_format format : {FW_JSON, FW_CSV, FW_FDF, FW_XFDF}) {
        SCOPED_TRACE(format);
        const std::string data = handed([&](char** text, size_t* size) {
            return fw_export(document.get(), format, nullptr, 0, FW_PLAIN, text, size);
        });
        const Document other = open_sample("kinds.pdf");
        EXPECT_EQ(fill(other, data, format, FW_FORCE, report), FW_OK) << fw_error();
        EXPECT_EQ(text_of(other, find(other, "name")), "Ada");
    }
    const fw_field name = find(document, "name");
    EXPECT_EQ(
        handed([&](char** text, size_t* size) { return fw_export(document.get(), FW_URL, &name, 1, 0, text, size); }),
        "name=Ada");
    EXPECT_EQ(fill(document, "{", FW_JSON, FW_PLAIN, report), FW_BAD_DATA);
    EXPECT_EQ(fill(document, "a=b", FW_URL, FW_PLAIN, report), FW_BAD_ARGUMENT);
}

TEST(CInterface, RowsFillOneFormAfterAnother)
{
    const Document document = open_sample("kinds.pdf");
    const std::string table = "name,colour\nAda,red\nBob,none such\nEve,blue\nZoe,red,too many\n";
    fw_rows* rows = nullptr;
    ASSERT_EQ(fw_open_rows(FW_CSV, table.data(), table.size(), &rows), FW_OK) << fw_error();
    size_t count = 0;
    EXPECT_EQ(fw_row_count(rows, &count), FW_OK);
    EXPECT_EQ(count, 4);
    const fw_field name = find(document, "name");
    const auto next = [&] { return fw_fill_row(rows, document.get(), FW_PLAIN, &count, nullptr, nullptr); };
    EXPECT_EQ(next(), FW_OK) << fw_error();
    EXPECT_EQ(text_of(document, name), "Ada");
    EXPECT_EQ(next(), FW_WRONG_KIND);
    EXPECT_EQ(saved(document, FW_UPDATE_ONLY), "");
    EXPECT_EQ(next(), FW_OK) << fw_error();
    EXPECT_EQ(count, 3);
    EXPECT_EQ(text_of(document, name), "Eve");
    EXPECT_EQ(next(), FW_BAD_DATA);
    EXPECT_EQ(count, 4);
    EXPECT_EQ(saved(document, FW_UPDATE_ONLY), "");
    EXPECT_EQ(next(), FW_END);
    EXPECT_EQ(count, 0);
    fw_close_rows(rows);
}

TEST(CInterface, RefusesWhatIsNoArgument)
{
    const Document document = open_sample("kinds.pdf");
    fw_document* const at = document.get();
    const fw_field name = find(document, "name");
    fw_document* out = nullptr;
    fw_rows* rows = nullptr;
    fw_open_options small = {};
    EXPECT_EQ(fw_open_file(sample("kinds.pdf").c_str(), &small, &out), FW_BAD_ARGUMENT);
    EXPECT_EQ(fw_open_file(sample("kinds.pdf").c_str(), nullptr, nullptr), FW_BAD_ARGUMENT);
    EXPECT_EQ(fw_open_file("no such file.pdf", nullptr, &out), FW_NOT_FOUND);
    EXPECT_EQ(fw_open_bytes("x", 1, nullptr, &out), FW_NOT_PDF);
    EXPECT_EQ(out, nullptr);
    size_t count = 7;
    fw_field field = 7;
    EXPECT_EQ(fw_field_count(nullptr, &count) + fw_field_at(nullptr, 0, &field), 2 * FW_BAD_ARGUMENT);
    EXPECT_EQ(count + field, 0);
    const fw_code codes[] = {
        fw_open_file(nullptr, nullptr, &out),
        fw_open_bytes(nullptr, 10, nullptr, &out),
        fw_find_field(at, nullptr, 0, nullptr),
        fw_field_at(at, 10000, nullptr),
        fw_field_text(at, name, static_cast<fw_text>(7), nullptr),
        fw_field_number(at, name, static_cast<fw_number>(-1), nullptr),
        fw_item(at, name, FW_VALUES, 5, nullptr),
        fw_item_count(at, name, static_cast<fw_list>(9), nullptr),
        fw_widget_at(at, name, 9, nullptr),
        fw_list_json(at, 0, nullptr, nullptr),
        fw_set_value(at, name, nullptr, 0),
        fw_set_values(at, name, nullptr, 1, 0),
        fw_fill(at, FW_JSON, nullptr, 1, 0, nullptr, nullptr),
        fw_reset(at, nullptr, 1, 0),
        fw_open_rows(FW_FDF, "", 0, &rows),
        fw_fill_row(nullptr, at, 0, nullptr, nullptr, nullptr),
        fw_add_field(at, nullptr, 0, nullptr),
        fw_append(at, at, FW_REFUSE, 0),
        fw_save_file(at, nullptr),
        fw_set_option(at, FW_DRAW, 7),
        fw_has(at, static_cast<fw_fact>(99), nullptr),
    };
    for (size_t i = 0; i < std::size(codes); ++i)
        EXPECT_EQ(codes[i], FW_BAD_ARGUMENT) << "call " << i;
    EXPECT_EQ(fw_add_field(at, "{\"kind\":1}", 0, nullptr) == FW_OK, false);
    fw_close(nullptr);
    fw_free(nullptr);
}

TEST(CInterface, ProgressIsToldAndCancels)
{
    const Document document = open_sample("kinds.pdf");
    const fw_field name = find(document, "name");
    int calls = 0;
    const fw_progress stop = [](double, void* user) { return ++*static_cast<int*>(user); };
    const auto text_of_call = [&](const auto& call) {
        EXPECT_EQ(fw_set_progress(document.get(), stop, &calls), FW_OK);
        const std::string out = handed(call, FW_CANCELLED);
        EXPECT_EQ(fw_set_progress(document.get(), nullptr, nullptr), FW_OK);
        return out;
    };
    EXPECT_EQ(text_of_call([&](char** text, size_t* size) { return fw_list_json(document.get(), 0, text, size); }), "");
    EXPECT_EQ(fw_set_progress(document.get(), stop, &calls), FW_OK);
    EXPECT_EQ(fw_set_value(document.get(), name, "Eve", FW_PLAIN), FW_CANCELLED);
    EXPECT_EQ(fw_set_progress(document.get(), nullptr, nullptr), FW_OK);
    EXPECT_EQ(saved(document, FW_UPDATE_ONLY), "");
    EXPECT_EQ(fw_set_value(document.get(), name, "Ada", FW_PLAIN), FW_OK);
    EXPECT_EQ(text_of_call([&](char** text, size_t* size) { return fw_save_bytes(document.get(), 0, text, size); }),
              "");
    EXPECT_EQ(calls, 3);
    const Document again = open(saved(document));
    EXPECT_EQ(text_of(again, find(again, "name")), "Ada");
}

TEST(CInterface, FactsAndNotes)
{
    const auto has = [](const Document& document, fw_fact fact) {
        int holds = -1;
        EXPECT_EQ(fw_has(document.get(), fact, &holds), FW_OK);
        return holds;
    };
    EXPECT_EQ(has(open_sample("signed.pdf"), FW_IS_SIGNED), 1);
    EXPECT_EQ(has(open_sample("kinds.pdf"), FW_IS_SIGNED), 0);
    EXPECT_EQ(has(open_sample("no-form.pdf"), FW_HAS_FORM), 0);
    const Document xfa = open_sample("xfa.pdf");
    EXPECT_EQ(has(xfa, FW_HAS_XFA), 1);
    const char* note = "";
    EXPECT_EQ(fw_note(xfa.get(), 0, &note), FW_OK);
    EXPECT_EQ(note, nullptr);
    fw_field field = 0;
    ASSERT_EQ(fw_field_at(xfa.get(), 0, &field), FW_OK);
    EXPECT_EQ(fw_reset(xfa.get(), nullptr, 0, FW_PLAIN), FW_OK);
    EXPECT_EQ(fw_note(xfa.get(), 0, &note), FW_OK);
    ASSERT_NE(note, nullptr);
    EXPECT_THAT(note, HasSubstr("XFA"));
    std::string broken = bytes_of(sample("kinds.pdf"));
    broken.replace(broken.rfind("startxref"), 9, "startxxxx");
    const fw_open_options options = {sizeof options, nullptr, 0, 1};
    fw_document* out = nullptr;
    EXPECT_EQ(fw_open_bytes(broken.data(), broken.size(), &options, &out), FW_DAMAGED);
}

TEST(CInterface, DocumentsOfThreadsAreIndependent)
{
    const auto work = [] {
        for (int i = 0; i < 20; ++i) {
            const Document document = open_sample("kinds.pdf");
            EXPECT_EQ(fw_set_value(document.get(), find(document, "name"), std::to_string(i).c_str(), FW_PLAIN), FW_OK);
            const Document again = open(saved(document));
            EXPECT_EQ(text_of(again, find(again, "name")), std::to_string(i));
            EXPECT_EQ(fw_set_value(document.get(), 7, "x", FW_PLAIN), FW_STALE);
        }
    };
    std::thread first(work);
    std::thread second(work);
    first.join();
    second.join();
}

// Opens, fills, lists and saves; what is handed out is let go.
fw_code whole_way(const std::string& input, std::string& output)
{
    size_t size = 0;
    fw_document* document = nullptr;
    char* texts[2] = {};
    fw_field field = 0;
    fw_code code = fw_open_bytes(input.data(), input.size(), nullptr, &document);
    if (code == FW_OK)
        code = fw_find_field(document, "name", FW_PLAIN, &field);
    if (code == FW_OK)
        code = fw_set_value(document, field, "Ada", FW_PLAIN);
    if (code == FW_OK)
        code = fw_list_json(document, FW_PLAIN, &texts[0], nullptr);
    if (code == FW_OK)
        code = fw_save_bytes(document, FW_PLAIN, &texts[1], &size);
    EXPECT_EQ(code == FW_OK, texts[1] != nullptr);
    {
#ifdef FORMWORK_ALLOC_HOOK
        const NewHookPause pause;
#endif
        output.assign(texts[1] ? texts[1] : "", size);
    }
    for (char* text : texts)
        fw_free(text);
    fw_close(document);
    return code;
}

TEST(CInterface, MemoryThatRunsOutIsACode)
{
    const std::string input = bytes_of(sample("kinds.pdf"));
    each_failed_allocation([&](const auto& arm) {
        fw_code code = FW_OK;
        std::string output;
        const bool failed = arm([&] { code = whole_way(input, output); });
        EXPECT_EQ(code, failed ? FW_NO_MEMORY : FW_OK) << fw_error();
    });
#ifdef FORMWORK_ALLOC_HOOK
    std::string whole;
    fail_new_after(INT64_MAX);
    EXPECT_EQ(whole_way(input, whole), FW_OK);
    const int64_t calls = new_calls();
    for (int64_t i = 0; i < calls; ++i) {
        std::string output;
        fail_new_after(i);
        const fw_code code = whole_way(input, output);
        fail_new_after(-1);
        // Sorting goes on without memory.
        ASSERT_TRUE(code == FW_NO_MEMORY || output == whole) << "new " << i << " fails, and the code is " << code;
    }
#endif
}

}  // namespace
