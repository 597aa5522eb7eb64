#include "document/merge/object_copier.h"

#include <cstring>

#include "core/alloc.h"
#include "core/array.h"
#include "core/limits.h"
#include "core/xref_table.h"
#include "file/object_reader.h"
#include "file/security/security_handler.h"

namespace {

CPDFStatus too_much(const char* what)
{
    return CPDFStatus::failed(PDF_CODE::LIMIT, std::string("the documents can't be merged: ") + what);
}

CPDFStatus no_memory()
{
    return CPDFStatus::failed(PDF_CODE::NO_MEMORY, "there is not enough memory to merge the documents");
}

}  // namespace

PDF_REF CPDFObjectCopier::copied(uint32_t num)
{
    const auto [place, is_new] = m_places.try_emplace(num);
    if (is_new) {
        place->second = {m_into.new_obj_num(), 0};
        m_waiting.push_back(num);
    }
    return place->second;
}

void CPDFObjectCopier::renumber(CPDFObj& value)
{
    if (value.type == PDF_OBJ_REF) {
        const PDF_REF to = copied(value.ref.num);
        if (to.num)
            value.set_ref(to);
        else
            value.free();
    }
    for (int32_t i = 0; value.array() && i < value.arr->count; ++i)
        renumber(value.arr->items[i]);
    if (CPDFDictionary* dict = value.any_dictionary())
        renumber(*dict);
}

void CPDFObjectCopier::renumber(CPDFDictionary& dict)
{
    if (m_adapt)
        m_adapt(dict);
    for (int32_t i = dict.count - 1; i >= 0; --i) {
        CPDFObj& value = dict.items[i]->value;
        renumber(value);
        if (value.type == PDF_OBJ_NULL)
            dict.remove_item(dict.items[i]->key());
    }
}

CPDFStatus CPDFObjectCopier::finish()
{
    while (!m_waiting.empty()) {
        const uint32_t num = m_waiting.front();
        m_waiting.pop_front();
        if (CPDFStatus status = copy(num, m_places[num]); !status.ok())
            return status;
    }
    return {};
}

CPDFStatus CPDFObjectCopier::copy(uint32_t num, const PDF_REF& to)
{
    const VXFailureCheck memory;
    CPDFObj object;
    m_from.xref.get_entity(object, {num, 0});
    if (m_from.reader.budget().exhausted())
        return too_much("the second takes more work to read than its size justifies");
    if (to.num > LIMIT_OBJECT_NUMBER)
        return too_much("they have too many objects");
    const auto changed = m_entries.find(num);
    CPDFDictionary* dict = changed != m_entries.end() ? object.any_dictionary() : nullptr;
    for (int32_t i = 0; dict && i < changed->second.count; ++i)
        dict->remove_item(changed->second.items[i]->key());
    renumber(object);
    for (int32_t i = 0; dict && i < changed->second.count; ++i)
        dict->set_item(changed->second.items[i]->key(), &changed->second.items[i]->value);
    if (memory.failed())
        return no_memory();
    if (object.type == PDF_OBJ_STREAM)
        return copy_stream(*object.stream, to);
    // What is missing in the source is so in the copy.
    return object.type == PDF_OBJ_NULL || m_into.take_changed(to, object) ? CPDFStatus() : no_memory();
}

// Streams that lie in a sound file don't overlap, so their data are not longer than the file.
CPDFStatus CPDFObjectCopier::copy_stream(CPDFStreamRec& rec, const PDF_REF& to)
{
    const uint8_t* bytes = nullptr;
    size_t size = 0;
    if (const PDF_MEM_STREAM* memory = rec.in_memory ? m_from.xref.mem_stream(rec.handle) : nullptr) {
        bytes = memory->data;
        size = memory->len;
    } else if (rec.in_file && rec.handle <= m_from.size && rec.data_len <= m_from.size - rec.handle) {
        bytes = m_from.data + rec.handle;
        size = rec.data_len;
        m_data_copied += size;
    }
    if (m_data_copied > m_from.size || size > INT32_MAX)
        return too_much("the streams of the second overlap, or one of them is too long");
    VXBlock<unsigned char> data(static_cast<unsigned char*>(VXAlloc(size)));
    if (!data)
        return no_memory();
    if (size)
        std::memcpy(data.get(), bytes, size);
    const CPDFSecurityHandler* security = m_from.reader.security();
    if (security && rec.in_file)
        size = decrypt_in_place(security->stream_key(&m_from.xref, rec.dict, rec.ref), data.get(), size);
    const PDF_CHANGE_RESULT result = m_into.take_stream(to, rec.dict, data.release(), static_cast<int>(size));
    return result == PDF_CHANGE_RESULT::STORED ? CPDFStatus() : no_memory();
}

void put_apart(CPDFXRefTable& xref, CPDFDictionary& owner, const char* key, CPDFObj& value)
{
    const PDF_REF ref = {xref.new_obj_num(), 0};
    if (xref.take_changed(ref, value))
        owner.set_item_ref(key, ref);
}
