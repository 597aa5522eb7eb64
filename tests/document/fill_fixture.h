// A form file at work: built from a few lines, opened, filled, saved and opened again.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

#include "core/dictionary.h"
#include "core/xref_table.h"
#include "document/document.h"
#include "document/field_text.h"
#include "engine/annot_widget.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_walk.h"
#include "tests/support/memory_document.h"
#include "tests/support/pdf_builder.h"

// Entries of a widget with the on state `on`, a name as written in a file.
inline std::string widget_states(const std::string& on)
{
    return "/Subtype/Widget/AS/Off/AP<</N<</" + on + " 4 0 R/Off 4 0 R>>>>";
}

// The texts between the marks.
inline std::vector<std::string> split(const std::string& text, char mark)
{
    std::vector<std::string> parts;
    for (size_t begin = 0; begin < text.size();) {
        const size_t end = std::min(text.find(mark, begin), text.size());
        parts.push_back(text.substr(begin, end - begin));
        begin = end + 1;
    }
    return parts;
}

// Objects from `num` on, separated by ';'. What begins with '/' is a dictionary without its brackets.
inline PdfBuilder& put_objects(PdfBuilder& file, uint32_t num, const std::string& objects, uint32_t gen = 0)
{
    for (const std::string& text : split(objects, ';'))
        file.object(num++, text[0] == '/' ? "<<" + text + ">>" : text, gen);
    return file;
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

    // Entry `key` of the newest version of object `num` as text, "-" when there is none.
    std::string entry(uint32_t num, const char* key)
    {
        CPDFObj own;
        document.xref().get_entity(own, {num, 0});
        const CPDFDictionary* dict = own.dictionary();
        const CPDFObj* value = dict ? dict->get_item(key) : nullptr;
        return value ? show_object(*value) : "-";
    }

    // What the engine has in memory of every field's value and selection.
    std::string memory()
    {
        std::string text;
        for_each_field(document.form(), [&text](CPDFField& field) {
            text += full_name_with_no(field) + "=" + show_object(field.m_value);
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
