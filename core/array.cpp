#include "core/array.h"

#include <cstring>
#include <new>

#include "core/growable.h"

void CPDFArray::clear()
{
    for (int32_t i = 0; i < count; ++i)
        items[i].free();
    VXFree(items);
    items = nullptr;
    count = 0;
    m_capacity = 0;
}

CPDFObj* CPDFArray::append()
{
    if (count == m_capacity && !vx_add_room(items, m_capacity, m_capacity ? m_capacity : 4))
        return nullptr;
    return new (&items[count++]) CPDFObj;
}

void CPDFArray::copy_from(const CPDFArray* src)
{
    if (!src || src->count == 0)
        return;
    if (!items) {
        items = vx_alloc_array<CPDFObj>(static_cast<size_t>(src->count));
        m_capacity = items ? src->count : 0;
    }
    for (int32_t i = 0; i < src->count; ++i) {
        CPDFObj* element = append();
        if (!element)
            return;
        element->copy_from(&src->items[i]);
    }
}

// Builds the element aside with `build(CPDFObj&)`, so that a failed allocation changes nothing.
template <typename Build>
void CPDFArray::append_built(Build&& build)
{
    const VXFailureCheck check;
    CPDFObj value;
    build(value);
    CPDFObj* element = check.failed() ? nullptr : append();
    if (element)
        element->take(value);
}

void CPDFArray::append_str(const void* bytes, int len)
{
    append_built([bytes, len](CPDFObj& built) { built.set_string(bytes, len); });
}

void CPDFArray::append_int(int value)
{
    append_built([value](CPDFObj& built) { built.set_int(value); });
}

void CPDFArray::append_ref(const PDF_REF& ref)
{
    append_built([&ref](CPDFObj& built) { built.set_ref(ref); });
}

void CPDFArray::append_arr(const CPDFArray* src)
{
    append_built([src](CPDFObj& built) {
        if (built.set_array())
            built.arr->copy_from(src);
    });
}

void CPDFArray::remove_obj(int index)
{
    if (index < 0 || index >= count)
        return;
    items[index].free();
    std::memmove(static_cast<void*>(items + index), static_cast<const void*>(items + index + 1),
                 static_cast<size_t>(count - index - 1) * sizeof(CPDFObj));
    --count;
}
