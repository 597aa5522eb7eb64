#include <cstring>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/growable.h"
#include "core/xref_table.h"
#include "forms/field.h"
#include "forms/field_edit.h"

namespace {

PDF_String* shown_text(PDF_FIELD_OPT& opt)
{
    return opt.text.buf ? &opt.text : &opt.val;
}

// The selection as "I" and "V". False when an index has no option.
bool make_sels(const CPDFField& holder, CPDFObj& indices, CPDFObj& texts)
{
    if (!indices.set_array() || !texts.set_array())
        return false;
    for (int32_t i = 0; i < holder.m_sel_cnt; ++i) {
        const int32_t index = holder.m_sels[i];
        if (index < 0 || index >= holder.m_opt_cnt)
            return false;
        const PDF_String* text = shown_text(holder.m_opts[index]);
        texts.arr->append_str(text->buf, text->len);
        indices.arr->append_int(index);
    }
    return true;
}

void make_opts(const CPDFField& holder, CPDFObj& opts)
{
    opts.set_array();
    for (int32_t i = 0; opts.array() && i < holder.m_opt_cnt; ++i) {
        const PDF_FIELD_OPT& opt = holder.m_opts[i];
        if (opt.text.len == 0) {
            opts.arr->append_str(opt.val.buf, opt.val.len);
            continue;
        }
        CPDFArray pair;
        pair.append_str(opt.val.buf, opt.val.len);
        pair.append_str(opt.text.buf, opt.text.len);
        opts.arr->append_arr(&pair);
    }
}

// Writes the options, and with them the selection, unless that is left as it is or has no options.
void store_opts(const CPDFField& holder, bool with_sels)
{
    const VXFailureCheck memory;
    CPDFObj opts;
    CPDFObj indices;
    CPDFObj texts;
    make_opts(holder, opts);
    if (with_sels && make_sels(holder, indices, texts))
        store_entries(holder, {{"Opt", &opts}, {"I", &indices}, {"V", &texts}}, memory);
    else
        store_entries(holder, {{"Opt", &opts}}, memory);
}

}  // namespace

// Readers end at the field that has options, or at the topmost one.
CPDFField* CPDFField::choice_holder()
{
    if (m_type != FIELD_CHOICE)
        return nullptr;
    CPDFField* holder = this;
    while (holder->m_opt_cnt <= 0 && holder->m_parent) {
        holder = holder->m_parent;
        if (holder->m_type != FIELD_CHOICE)
            return nullptr;
    }
    return holder;
}

PDF_String* CPDFField::get_choice_opt(int index)
{
    const CPDFField* holder = choice_holder();
    return holder && index >= 0 && index < holder->m_opt_cnt ? shown_text(holder->m_opts[index]) : nullptr;
}

int CPDFField::get_choice_opt_cnt()
{
    const CPDFField* holder = choice_holder();
    return holder ? holder->m_opt_cnt : 0;
}

int CPDFField::get_choice_sel()
{
    const CPDFField* holder = choice_holder();
    return holder && holder->m_sels && holder->m_sel_cnt > 0 ? holder->m_sels[0] : -1;
}

void CPDFField::set_choice_sel(int index)
{
    CPDFField* holder = choice_holder();
    if (!holder)
        return;
    // A selection that is there may have no room for an entry.
    if (holder->m_sel_cnt < 1 && !vx_set_room(holder->m_sels, 1))
        return;
    holder->m_sels[0] = index;
    holder->m_sel_cnt = 1;
    if (index < 0 || index >= holder->m_opt_cnt)
        return;
    const VXFailureCheck memory;
    const PDF_String& val = holder->m_opts[index].val;
    CPDFObj value;
    CPDFObj indices;
    value.set_string(val.buf, val.len);
    if (indices.set_array())
        indices.arr->append_int(index);
    if (change_entries(*holder, {{"V", &value}, {"I", &indices}}, memory) != PDF_CHANGE_RESULT::NO_DICTIONARY)
        holder->m_value.take(value);
}

void CPDFField::set_choice_sels(const int* sels, int count)
{
    CPDFField* holder = choice_holder();
    if (!holder || count < 0)
        return;
    // Copied first: it may be a part of what is replaced.
    const auto size = static_cast<size_t>(count);
    auto* copy = vx_alloc_array<int32_t>(size);
    if (!copy)
        return;
    if (count > 0)
        std::memcpy(copy, sels, size * sizeof(int32_t));
    VXFree(holder->m_sels);
    holder->m_sels = copy;
    holder->m_sel_cnt = count;
    const VXFailureCheck memory;
    CPDFObj indices;
    CPDFObj texts;
    if (make_sels(*holder, indices, texts))
        store_entries(*holder, {{"I", &indices}, {"V", &texts}}, memory);
}

int CPDFField::insert_choice_opt(int index, PDF_String* val, PDF_String* text)
{
    CPDFField* holder = choice_holder();
    return holder ? holder->insert_own_opt(index, val, text) : 0;
}

int CPDFField::insert_own_opt(int index, const PDF_String* val, const PDF_String* text)
{
    if (index < 0 || index > m_opt_cnt)
        return 0;
    // Copied first: they may be strings of an option.
    const VXFailureCheck check;
    CPDFObj own_val;
    CPDFObj own_text;
    own_val.set_string(val ? val->buf : nullptr, val ? val->len : 0);
    own_text.set_string(text ? text->buf : nullptr, text ? text->len : 0);
    if (check.failed() || !vx_set_room(m_opts, static_cast<size_t>(m_opt_cnt) + 1))
        return 0;
    std::memmove(m_opts + index + 1, m_opts + index, static_cast<size_t>(m_opt_cnt - index) * sizeof(PDF_FIELD_OPT));
    m_opts[index].val.take(own_val.str);
    m_opts[index].text.take(own_text.str);
    ++m_opt_cnt;
    for (int32_t i = 0; i < m_sel_cnt; ++i)
        m_sels[i] += m_sels[i] >= index;
    store_opts(*this, true);
    return 1;
}

int CPDFField::remove_choice_opt(int index)
{
    CPDFField* holder = choice_holder();
    return holder ? holder->remove_own_opt(index) : 0;
}

int CPDFField::remove_own_opt(int index)
{
    if (index < 0 || index >= m_opt_cnt)
        return 0;
    const bool was_selected = unselect(index);
    m_opts[index].val.release();
    m_opts[index].text.release();
    std::memmove(m_opts + index, m_opts + index + 1,
                 static_cast<size_t>(m_opt_cnt - index - 1) * sizeof(PDF_FIELD_OPT));
    --m_opt_cnt;
    store_opts(*this, was_selected);
    return 1;
}

// Adjusts the selection to the removal of option `index`; whether that option was selected. Behind its entry every
// later one is lowered, and a selection that becomes empty falls back to the first option.
bool CPDFField::unselect(int index)
{
    int32_t at = 0;
    while (at < m_sel_cnt && m_sels[at] != index) {
        m_sels[at] -= m_sels[at] > index;
        ++at;
    }
    if (at == m_sel_cnt)
        return false;
    for (; at + 1 < m_sel_cnt; ++at)
        m_sels[at] = m_sels[at + 1] - 1;
    if (--m_sel_cnt == 0) {
        m_sels[0] = 0;
        m_sel_cnt = 1;
    }
    return true;
}
