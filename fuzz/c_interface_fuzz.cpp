// Calls of the C interface in any order, with handles that were handed out, have ended, belong to the other document or are made up.
#include <cstring>
#include <vector>

#include "capi/formwork.h"
#include "fuzz/fuzz_bytes.h"

namespace {

constexpr int MOST_CALLS = 64;
constexpr size_t MOST_OUTPUT = 1 << 24;

struct CALLS {
    CALLS(const uint8_t* data, size_t size) : choices(data, size) {}

    FuzzBytes choices;
    fw_document* documents[2] = {};
    std::vector<fw_field> fields;

    fw_document* document() { return documents[choices.below(2)]; }
    unsigned flags() { return choices.byte() & 0x7f; }
    std::string text() { return std::string(choices.take(choices.byte() & 0x1f)); }

    fw_field field()
    {
        const size_t pick = choices.byte();
        if (pick == 0xff)
            return choices.word() | static_cast<uint64_t>(choices.word()) << 32;
        return fields.empty() ? 0 : fields[pick % fields.size()];
    }

    void keep(fw_code code, fw_field field)
    {
        check((code == FW_OK) == (field != 0), "a field comes with success, and without it none does");
        if (field != 0)
            fields.push_back(field);
    }

    // A text that was handed out.
    static void take(fw_code code, char* text, size_t size)
    {
        check(code == FW_OK || !text, "a call that failed hands out a text");
        check(!text || size > MOST_OUTPUT || std::strlen(text) <= size, "a text that was handed out does not end");
        fw_free(text);
    }

    void find();
    void read();
    void write();
    void change();
    void give();
};

void CALLS::find()
{
    fw_field found = 0;
    fw_document* const at = document();
    fw_code code = FW_OK;
    switch (choices.below(3)) {
    case 0:
        code = fw_field_at(at, choices.byte(), &found);
        break;
    case 1: {
        const std::string name = text();
        code = fw_find_field(at, name.c_str(), flags(), &found);
        break;
    }
    default:
        code = fw_field_of_object(at, choices.byte(), &found);
    }
    keep(code, found);
}

void CALLS::read()
{
    fw_document* const at = document();
    const fw_field which = field();
    const int pick = choices.byte() % 10 - 1;  // some are none of the enumeration
    const char* text = nullptr;
    int64_t number = 0;
    size_t count = 0;
    fw_widget widget;
    const fw_code code = fw_field_text(at, which, static_cast<fw_text>(pick), &text);
    check(code == FW_OK || !text, "a text of no field");
    if (text)
        check(std::strlen(text) <= MOST_OUTPUT, "a long text");
    fw_field_number(at, which, static_cast<fw_number>(pick), &number);
    fw_item_count(at, which, static_cast<fw_list>(pick), &count);
    if (count > 0)
        check(fw_item(at, which, static_cast<fw_list>(pick), count - 1, &text) == FW_OK && text,
              "a list lacks its last");
    check(fw_item(at, which, static_cast<fw_list>(pick), count, &text) != FW_OK, "a list has more than it counts");
    fw_widget_count(at, which, &count);
    fw_widget_at(at, which, choices.byte(), &widget);
    fw_note(at, choices.byte(), &text);
}

void CALLS::write()
{
    fw_document* const at = document();
    const fw_field which = field();
    const std::string value = text();
    const char* const values[] = {value.c_str(), "1"};
    char* report = nullptr;
    size_t size = 0;
    switch (choices.below(6)) {
    case 0:
        fw_set_value(at, which, value.c_str(), flags());
        break;
    case 1:
        fw_set_values(at, which, values, choices.below(3), flags());
        break;
    case 2:
        fw_fill(at, static_cast<fw_format>(choices.below(9)), value.data(), value.size(), flags(), &report, &size);
        fw_free(report);
        break;
    case 3:
        fw_reset(at, &which, choices.below(2), flags());
        break;
    case 4:
        fw_calculate(at);
        break;
    default:
        fw_revert(at);
    }
}

void CALLS::change()
{
    constexpr const char* FIELDS[] = {
        R"({"kind":"text","name":"a.b","places":[{"page":1,"rect":[9,9,90,20]}],"label":"x"})",
        R"({"kind":"radio","name":"r","places":[{"page":1,"rect":[9,9,9,9]},{"page":1,"rect":[29,9,9,9]}],"states":["A","B"]})",
    };
    constexpr const char* CHANGES[] = {R"({"required":true,"label":"y"})", R"({"maxLength":3})",
                                       R"({"options":["1","2"]})", R"({"places":[{"page":1,"rect":[50,50,20,20]}]})"};
    fw_document* const at = document();
    fw_field added = 0;
    switch (choices.below(6)) {
    case 0: {
        const fw_code code = fw_add_field(at, FIELDS[choices.below(2)], flags(), &added);
        keep(code, added);
        break;
    }
    case 1:
        fw_change_field(at, field(), CHANGES[choices.below(4)], flags());
        break;
    case 2:
        fw_remove_field(at, field(), flags());
        break;
    case 3: {
        const std::string name = text();
        const std::string group = text();
        fw_rename_field(at, field(), choices.below(2) ? name.c_str() : nullptr,
                        choices.below(2) ? group.c_str() : nullptr, flags());
        break;
    }
    case 4:
        fw_flatten(at, flags());
        break;
    default:
        fw_append(at, document(), static_cast<fw_same_names>(choices.below(4)), flags());
    }
}

void CALLS::give()
{
    fw_document* const at = document();
    const fw_field which = field();
    char* text = nullptr;
    size_t size = 0;
    fw_code code = FW_OK;
    switch (choices.below(4)) {
    case 0:
        code = fw_list_json(at, flags(), &text, &size);
        break;
    case 1:
        code = fw_summary_json(at, &text, &size);
        break;
    case 2:
        code = fw_export(at, static_cast<fw_format>(choices.below(9)), &which, choices.below(2), flags(), &text, &size);
        break;
    default:
        code = fw_save_bytes(at, flags(), &text, &size);
    }
    take(code, text, size);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // What follows the last end mark are the calls.
    const std::string_view all(reinterpret_cast<const char*>(data), size);
    const size_t mark = all.rfind("%%EOF");
    const size_t end = mark == std::string_view::npos ? 0 : mark + 5;
    const fw_open_options options = {sizeof options, nullptr, 1, 1};
    CALLS calls(data + end, size - end);
    for (fw_document*& document : calls.documents)
        check((fw_open_bytes(data, end, &options, &document) == FW_OK) == (document != nullptr), "opened, or not");
    for (int i = 0; i < MOST_CALLS && !calls.choices.done(); ++i) {
        void (CALLS::*const KINDS[])() = {&CALLS::find,  &CALLS::find,   &CALLS::read, &CALLS::read,
                                          &CALLS::write, &CALLS::change, &CALLS::give};
        (calls.*KINDS[calls.choices.below(7)])();
    }
    for (fw_document* document : calls.documents)
        fw_close(document);
    return 0;
}
