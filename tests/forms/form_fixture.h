// A form over an in-memory document, and readers that turn what loaded into short text.
#pragma once

#include "core/text.h"
#include "forms/acro_form.h"
#include "forms/field.h"
#include "forms/field_walk.h"
#include "tests/support/memory_document.h"

using NameReader = int (CPDFField::*)(wchar_t*, int);

// What `reader` writes into a buffer of `size` characters. A write outside it, a length that is not the text's, or a
// missing terminator is a test failure.
inline std::wstring name_of(CPDFField& field, NameReader reader = &CPDFField::get_full_name2, int size = 512)
{
    constexpr wchar_t GUARD = 0x7EADBEEF;
    std::vector<wchar_t> buf(static_cast<size_t>(size) + 2, GUARD);
    const int len = (field.*reader)(buf.data() + 1, size);
    EXPECT_TRUE(buf.front() == GUARD && buf.back() == GUARD);
    if (size <= 0)
        return {};
    EXPECT_LT(len, size);
    EXPECT_EQ(len, ucs_len(buf.data() + 1));
    return buf.data() + 1;
}

// Borrows the bytes of `text`.
inline PDF_String string_of(const std::string& text)
{
    return {static_cast<int32_t>(text.size()), reinterpret_cast<unsigned char*>(const_cast<char*>(text.data()))};
}

inline std::string text_of(const PDF_String& s)
{
    return s.buf ? std::string(s.buf, s.buf + s.len) : "";
}

// A field's stored name, its widgets as '*', its kids in parentheses: a(b** c(d)).
inline std::string shape_of(const CPDFField& field)
{
    std::string text = text_of(field.m_name) + std::string(static_cast<size_t>(field.m_widget_cnt), '*');
    for (int32_t i = 0; i < field.m_kid_cnt; ++i) {
        EXPECT_TRUE(field.m_kids[i]->m_parent == &field && field.m_kids[i]->m_index == i);
        text += (i ? " " : "(") + shape_of(*field.m_kids[i]);
    }
    return text + (field.m_kid_cnt ? ")" : "");
}

// The top-level slots in order, '-' for a null one.
inline std::string shape_of(const CPDFAcroForm& form)
{
    std::string text;
    for (int32_t i = 0; i < form.m_field_cnt; ++i)
        text += (i ? " " : "") + (form.m_fields[i] ? shape_of(*form.m_fields[i]) : "-");
    return text;
}

// A document whose object 1 is the form dictionary with `entries`, whose objects from 2 on are `objects`, and whose
// object 50 is `stream`; and the form loaded from it.
class FormFixture {
public:
    explicit FormFixture(const std::string& entries, const std::string& objects = "", const std::string& stream = "")
        : doc("<< " + entries + " >>;" + objects)
    {
        if (!stream.empty())
            doc.put_stream(50, stream);
        load();
    }

    void load()
    {
        CPDFObj entry;
        entry.set_ref({1, 0});
        form.load(&doc.xref, &entry, &root, {90, 0});
    }

    // The field with the object number `num`, which must be there.
    CPDFField& field(uint32_t num)
    {
        CPDFField* found = form.find(PDF_REF{num, 0});
        return found ? *found : throw std::out_of_range("no field " + std::to_string(num));
    }

    MemoryDocument doc;
    CPDFObj root;
    CPDFAcroForm form;
};
