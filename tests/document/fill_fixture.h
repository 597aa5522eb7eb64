// A form file at work: built from a few lines, opened, filled, saved and opened again.
#pragma once

#include <stdexcept>

#include "document/document.h"
#include "document/lookup/field_text.h"
#include "engine/annot_widget.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_walk.h"
#include "tests/support/pdf_builder.h"

// Entries of a widget with the on state `on`, a name as written in a file.
inline std::string widget_states(const std::string& on)
{
    return "/Subtype/Widget/AS/Off/AP<</N<</" + on + " 4 0 R/Off 4 0 R>>>>";
}

// Objects from `num` on, separated by ';'. What begins with '/' is a dictionary without its brackets.
inline PdfBuilder& put_objects(PdfBuilder& file, uint32_t num, const std::string& objects, uint32_t gen = 0)
{
    for (const std::string& text : split(objects, ';'))
        file.object(num++, text[0] == '/' ? "<<" + text + ">>" : text, gen);
    return file;
}

// The beginning of a form file with these entries of fields, objects 10 and following; 20 and following are `kids`.
inline PdfBuilder begin_form(std::vector<std::string> fields, const std::string& kids = "",
                             const std::string& more = "")
{
    for (std::string& field : fields)
        field = "<<" + field + ">>";
    PdfBuilder file;
    return put_objects(file.form(fields, more), 20, kids);
}

inline std::string form_of(const std::vector<std::string>& fields, const std::string& kids = "")
{
    return begin_form(fields, kids).table().text;
}

class FormAtWork {
public:
    explicit FormAtWork(const std::string& text, PDF_LOAD load = PDF_LOAD::WHOLE_FORM)
    {
        const CPDFStatus status = document.open(std::vector<uint8_t>(text.begin(), text.end()), load);
        EXPECT_TRUE(status.ok()) << status.text;
    }

    CPDFField& field(const std::string& name)
    {
        CPDFField* found = document.field(name);
        return found ? *found : throw std::out_of_range("no field " + name);
    }

    CPDFStatus set(const std::string& name, const CPDFValue& value, PDF_FILL fill = PDF_FILL::RESPECT_READ_ONLY)
    {
        return document.set_value(field(name), value, fill);
    }

    std::string entry(uint32_t num, const char* key) { return show_entry(document.xref(), num, key); }

    // What the engine has in memory of every field's value and selection.
    std::string memory()
    {
        std::string text;
        CPDFNumberedNames names(document.form());
        for_each_field(document.form(), [&](CPDFField& field) {
            text += names.name_of(field) + "=" + show_object(field.m_value);
            for (int32_t i = 0; i < field.m_sel_cnt; ++i)
                text += " " + std::to_string(field.m_sels[i]);
            text += ";";
        });
        return text;
    }

    std::string saved()
    {
        std::vector<uint8_t> out;
        EXPECT_TRUE(document.save(out).ok());
        return {out.begin(), out.end()};
    }

    CPDFDocument document;
};
