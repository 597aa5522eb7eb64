#include "core/dictionary.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "core/array.h"
#include "core/growable.h"

const char* const CPDFDictionary::sm_tag_subtype = "Subtype";
const char* const CPDFDictionary::sm_tag_parent = "Parent";
const char* const CPDFDictionary::sm_tag_font = "Font";
const char* const CPDFDictionary::sm_tag_acro_form = "AcroForm";
const char* const CPDFDictionary::sm_tag_filter = "Filter";
const char* const CPDFDictionary::sm_tag_fdec = "FlateDecode";
const char* const CPDFDictionary::sm_tag_length = "Length";

namespace {

// strcmp without the call: keys are short and mostly differ in their first character.
int compare_keys(const char* a, const char* b)
{
    while (*a && *a == *b) {
        ++a;
        ++b;
    }
    return static_cast<unsigned char>(*a) - static_cast<unsigned char>(*b);
}

PDF_DICT_ITEM* new_item(const char* key, size_t key_len)
{
    void* block = VXAlloc(sizeof(PDF_DICT_ITEM) + key_len + 1);
    if (!block)
        return nullptr;
    auto* item = new (block) PDF_DICT_ITEM;
    std::memcpy(item->key(), key, key_len);
    item->key()[key_len] = 0;
    return item;
}

void free_item(PDF_DICT_ITEM* item)
{
    item->~PDF_DICT_ITEM();
    VXFree(item);
}

}  // namespace

void CPDFDictionary::clear()
{
    for (int32_t i = 0; i < count; ++i)
        free_item(items[i]);
    VXFree(items);
    items = nullptr;
    count = 0;
    m_capacity = 0;
}

void CPDFDictionary::take(CPDFDictionary& src)
{
    clear();
    items = std::exchange(src.items, nullptr);
    count = std::exchange(src.count, 0);
    m_capacity = std::exchange(src.m_capacity, 0);
    src_begin = src.src_begin;
    src_end = src.src_end;
}

bool CPDFDictionary::reserve_one()
{
    return count < m_capacity || vx_add_room(items, m_capacity, m_capacity ? m_capacity : 8);
}

void CPDFDictionary::copy_from(const CPDFDictionary* src)
{
    if (!src)
        return;
    src_begin = src->src_begin;
    src_end = src->src_end;
    for (int32_t i = 0; i < src->count; ++i) {
        const char* key = src->items[i]->key();
        CPDFObj* value = append_unsorted(key, std::strlen(key));
        if (!value)
            return;
        value->copy_from(&src->items[i]->value);
    }
}

bool CPDFDictionary::find(const char* key, int32_t& pos) const
{
    int32_t lo = 0;
    int32_t hi = count - 1;
    while (lo <= hi) {
        const int32_t mid = (lo + hi) >> 1;
        const int order = compare_keys(key, items[mid]->key());
        if (order == 0) {
            pos = mid;
            return true;
        }
        if (order > 0)
            lo = mid + 1;
        else
            hi = mid - 1;
    }
    pos = lo;
    return false;
}

CPDFObj* CPDFDictionary::get_item(const char* key) const
{
    int32_t pos = 0;
    return find(key, pos) ? &items[pos]->value : nullptr;
}

CPDFObj* CPDFDictionary::value_slot(const char* key)
{
    int32_t pos = 0;
    if (find(key, pos))
        return &items[pos]->value;
    PDF_DICT_ITEM* item = reserve_one() ? new_item(key, std::strlen(key)) : nullptr;
    if (!item)
        return nullptr;
    std::memmove(items + pos + 1, items + pos, static_cast<size_t>(count - pos) * sizeof(*items));
    items[pos] = item;
    ++count;
    return &item->value;
}

CPDFObj* CPDFDictionary::append_unsorted(const char* key, size_t key_len)
{
    PDF_DICT_ITEM* item = reserve_one() ? new_item(key, key_len) : nullptr;
    if (!item)
        return nullptr;
    items[count++] = item;
    return &item->value;
}

void CPDFDictionary::sort_items()
{
    const auto by_key = [](const PDF_DICT_ITEM* a, const PDF_DICT_ITEM* b) {
        return compare_keys(a->key(), b->key()) < 0;
    };
    // Dictionaries of fields have about ten entries, often in order: insertion beats the general sort there.
    if (count > 32) {
        std::stable_sort(items, items + count, by_key);
    } else {
        for (int32_t i = 1; i < count; ++i) {
            PDF_DICT_ITEM* item = items[i];
            int32_t at = i;
            for (; at > 0 && by_key(item, items[at - 1]); --at)
                items[at] = items[at - 1];
            items[at] = item;
        }
    }
    int32_t kept = 0;
    for (int32_t i = 0; i < count; ++i) {
        if (i + 1 < count && compare_keys(items[i]->key(), items[i + 1]->key()) == 0)
            free_item(items[i]);
        else
            items[kept++] = items[i];
    }
    count = kept;
}

void CPDFDictionary::remove_item(const char* key)
{
    int32_t pos = 0;
    if (!find(key, pos))
        return;
    free_item(items[pos]);
    std::memmove(items + pos, items + pos + 1, static_cast<size_t>(count - pos - 1) * sizeof(*items));
    --count;
}

// Builds the value aside with `build(CPDFObj&)`, so that a failed allocation changes nothing.
template <typename Build>
void CPDFDictionary::set_built(const char* key, Build&& build)
{
    const VXFailureCheck check;
    CPDFObj value;
    build(value);
    CPDFObj* slot = check.failed() ? nullptr : value_slot(key);
    if (slot)
        slot->take(value);
}

void CPDFDictionary::set_item(const char* key, const CPDFObj* value)
{
    if (!value || value->type == PDF_OBJ_NULL)
        remove_item(key);
    else
        set_built(key, [value](CPDFObj& built) { built.copy_from(value); });
}

void CPDFDictionary::set_item_int(const char* key, int value)
{
    set_built(key, [value](CPDFObj& built) { built.set_int(value); });
}

void CPDFDictionary::set_item_str(const char* key, const void* bytes, int len)
{
    set_built(key, [bytes, len](CPDFObj& built) { built.set_string(bytes, len); });
}

void CPDFDictionary::set_item_name(const char* key, const char* name)
{
    set_built(key, [name](CPDFObj& built) { built.set_name(name); });
}

void CPDFDictionary::set_item_ref(const char* key, const PDF_REF& ref)
{
    set_built(key, [&ref](CPDFObj& built) { built.set_ref(ref); });
}

void CPDFDictionary::set_item_arr(const char* key, const CPDFArray* array)
{
    set_built(key, [array](CPDFObj& built) {
        if (built.set_array())
            built.arr->copy_from(array);
    });
}

void CPDFDictionary::set_item_dict(const char* key, const CPDFDictionary* dict)
{
    set_built(key, [dict](CPDFObj& built) {
        if (built.set_dict())
            built.dict->copy_from(dict);
    });
}

void CPDFStreamRec::copy_from(const CPDFStreamRec* src)
{
    dict.copy_from(&src->dict);
    in_file = src->in_file;
    data_len = src->data_len;
    ref = src->ref;
    word_a = src->word_a;
    in_memory = src->in_memory;
    handle = src->handle;
}
