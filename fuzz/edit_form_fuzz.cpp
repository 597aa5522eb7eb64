// A PDF file and behind its last end mark a row of changes, a few bytes each: open, change the form, save, open again.
#include "fuzz/form_check.h"

namespace {

// Everything once, for files without a row of changes.
constexpr uint8_t ALL_CHANGES[] = {0, 0, 1, 2, 0, 3, 0, 3, 4, 4, 5, 0, 2, 1, 2,
                                   0, 5, 2, 2, 3, 1, 6, 0, 1, 8, 4, 1, 0, 6, 1};

class Editor {
public:
    Editor(CPDFDocument& document, FuzzBytes choices) : m_document(document), m_choices(choices) {}

    void run()
    {
        constexpr int MOST_CHANGES = 32;
        for (int i = 0; i < MOST_CHANGES && !m_choices.done(); ++i) {
            const CPDFStatus status = change();
            check(status.ok() || !status.text.empty(), "a refusal has no sentence");
            check(status.code != PDF_CODE::NO_MEMORY, "memory runs out");
        }
    }

private:
    CPDFField* pick()
    {
        constexpr size_t MOST_FIELDS = 256;
        const std::vector<CPDFField*> fields = first_fields(m_document, MOST_FIELDS);
        return fields.empty() ? nullptr : fields[m_choices.below(fields.size())];
    }

    std::string name()
    {
        const char* const names[] = {"a", "b", "a.b", "a.b.c", "c", "", ".", "\xC3\xA9\xF0\x9F\x98\x80"};
        const size_t at = m_choices.below(std::size(names) + 1);
        return at < std::size(names) ? names[at] : std::string(m_choices.text());
    }

    PDF_FIELD_CHANGE entries()
    {
        PDF_FIELD_CHANGE entries;
        const uint8_t what = m_choices.byte();
        if (what & 1)
            entries.set_flags = m_choices.word();
        if (what & 2)
            entries.clear_flags = m_choices.word();
        if (what & 4)
            entries.max_length = static_cast<int8_t>(m_choices.byte());
        if (what & 8)
            entries.default_value = std::string(m_choices.text());
        if (what & 16)
            entries.options = std::vector<PDF_OPTION>{{"x", "shown"}, {std::string(m_choices.text()), ""}};
        return entries;
    }

    PDF_FIELD_DESIGN design()
    {
        constexpr const char* FONTS[] = {"Times", "Helv", "F"};
        PDF_FIELD_DESIGN design;
        const uint8_t what = m_choices.byte();
        if (what & 1)
            design.label = std::string(m_choices.text());
        if (what & 2)
            design.style.font = FONTS[m_choices.below(3)];
        if (what & 4)
            design.style.border_width = m_choices.below(5);
        if (what & 8)
            design.calculation = {"SUM", {std::string(m_choices.text())}};
        if (what & 16)
            design.format = {"AFNumber_Keystroke(2, 0);", "AFNumber_Format(2, 0);"};
        if (what & 32)
            design.style.caption = "4";
        return design;
    }

    PDF_MOVE move()
    {
        PDF_MOVE move;
        move.page = static_cast<int32_t>(m_choices.below(3));
        const double at = 10.0 * static_cast<double>(m_choices.below(32));
        if (m_choices.below(2))
            move.places = {{{at, at, 20, 10}, move.page}};
        return move;
    }

    CPDFStatus add()
    {
        PDF_NEW_FIELD field;
        field.kind = static_cast<PDF_FIELD_KIND_ID>(m_choices.below(KIND_COUNT));
        field.name = name();
        const auto page = static_cast<int32_t>(m_choices.below(3));
        const size_t buttons = 1 + m_choices.below(3);
        for (size_t i = 0; i < buttons; ++i) {
            const double at = 10.0 * static_cast<double>(i + m_choices.below(64));
            field.places.push_back({{at, at, 12.5, m_choices.below(8) * 4.0}, page});
            if (field.kind == KIND_RADIO)
                field.states.push_back(std::string(1, static_cast<char>('A' + i)));
        }
        field.entries = entries();
        return m_document.add_field(field, PDF_EDIT::FORCE);
    }

    CPDFStatus change()
    {
        const size_t what = m_choices.below(13);
        if (what == 0)
            return add();
        if (what == 7)
            return m_document.reset(PDF_FILL::FORCE);
        if (what == 8)
            return m_choices.byte() == 255 ? m_document.flatten(PDF_EDIT::FORCE) : saved();
        CPDFField* field = pick();
        if (!field)
            return {};
        switch (what) {
        case 1:
            return m_document.remove_field(*field, PDF_EDIT::FORCE);
        case 2:
            return m_document.rename_field(*field, name(), PDF_EDIT::FORCE);
        case 3:
            return m_document.move_field(*field, m_choices.below(4) ? pick() : nullptr, PDF_EDIT::FORCE);
        case 4:
            return m_document.change_field(*field, entries(), PDF_EDIT::FORCE);
        case 5:
            return m_document.reset({field}, PDF_FILL::FORCE);
        case 9:
            return m_document.design_fields({&field, 1}, design(), PDF_EDIT::FORCE);
        case 10:
            return m_document.move_widgets(*field, move(), PDF_EDIT::FORCE);
        case 11:
            return m_document.copy_field(*field, name(), move(), PDF_EDIT::FORCE);
        case 12:
            return m_document.order_tabs({static_cast<PDF_TAB_ORDER>(m_choices.below(4)), {field}, 0}, PDF_EDIT::FORCE);
        default:
            if (const char* wrong = set_fault(m_document, *field, value_for(m_document, *field, m_choices.byte())))
                fault(wrong);
            return {};
        }
    }

    CPDFStatus saved()
    {
        std::vector<uint8_t> out;
        return m_document.save(out);
    }

    CPDFDocument& m_document;
    FuzzBytes m_choices;
};

FuzzBytes changes_of(const uint8_t* data, size_t size)
{
    constexpr std::string_view MARK = "%%EOF\n";
    const size_t at = std::string_view(reinterpret_cast<const char*>(data), size).rfind(MARK);
    const size_t begin = at == std::string_view::npos ? size : at + MARK.size();
    return begin < size ? FuzzBytes(data + begin, size - begin) : FuzzBytes(ALL_CHANGES, sizeof ALL_CHANGES);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::vector<uint8_t> bytes(data, data + size);
    CPDFDocument document;
    document.set_rescue(PDF_RESCUE::OFF);  // it forks
    if (!document.open(bytes).ok())
        return 0;
    Editor(document, changes_of(data, size)).run();
    if (const char* wrong = save_fault(document, bytes))
        fault(wrong);
    return 0;
}
