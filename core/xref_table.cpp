#include "core/xref_table.h"

#include <algorithm>
#include <cstring>

#include "core/alloc.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/object_source.h"

namespace {

constexpr int32_t CHANGED_STEP = 32;
constexpr uint32_t ENTRY_STEP = 256;

// Deep-copies `src`, leaving out the dictionary entries that are not asked for.
void copy_wanted(CPDFObj& out, const CPDFObj& src, const CPDFKeySet* keys)
{
    const CPDFDictionary* dict = src.dictionary();
    if (!keys || !dict) {
        out.copy_from(&src);
        return;
    }
    CPDFDictionary* copy = out.set_dict();
    for (int32_t i = 0; copy && i < dict->count; ++i) {
        const char* key = dict->items[i]->key();
        const size_t len = std::strlen(key);
        CPDFObj* value = keys->contains(key, len) ? copy->append_unsorted(key, len) : nullptr;
        if (value)
            value->copy_from(&dict->items[i]->value);
    }
}

}  // namespace

CPDFObjectSource::~CPDFObjectSource() = default;

bool CPDFObjectSource::splice_object(CPDFXRefTable& /*xref*/, uint32_t /*num*/, const PDF_XREF_ENTRY& /*entry*/,
                                     PDF_ENTRY_CHANGES /*changes*/, PDF_String& /*out*/)
{
    return false;
}

bool CPDFObjectSource::splice_text(const PDF_String& /*text*/, PDF_ENTRY_CHANGES /*changes*/, PDF_String& /*out*/)
{
    return false;
}

void CPDFObjectSource::read_text(CPDFObj& /*out*/, const PDF_String& /*text*/, const CPDFKeySet* /*keys*/) {}

CPDFXRefTable::CPDFXRefTable(CPDFObjectSource* source) : m_source(source) {}

CPDFXRefTable::~CPDFXRefTable()
{
    discard_changes();
    VXFree(m_entries);
    VXFree(m_changed);
    VXFree(m_before);
}

void CPDFXRefTable::discard_changes()
{
    if (m_next_num_before)
        m_next_num = m_next_num_before;
    m_next_num_before = 0;
    for (int32_t i = 0; i < m_changed_cnt; ++i) {
        m_changed[i].obj.free();
        m_changed[i].text.release();
        // The entries are gone when memory ran out.
        if (m_before[i].num < m_entry_cnt)
            m_entries[m_before[i].num] = m_before[i].entry;
    }
    m_changed_cnt = 0;
    for (const PDF_MEM_STREAM& memory : m_mem_streams)
        VXFree(memory.data);
    m_mem_streams.cut(0);
}

bool CPDFXRefTable::grow_entries(uint32_t num)
{
    if (num < m_entry_cnt)
        return true;
    if (num > LIMIT_OBJECT_NUMBER)
        return false;
    const uint32_t count = (num + ENTRY_STEP) / ENTRY_STEP * ENTRY_STEP;
    if (count > m_entry_cap) {
        const uint32_t capacity = std::max(count, m_entry_cap + m_entry_cap / 2);
        if (!vx_set_room(m_entries, capacity)) {
            VXFree(m_entries);
            m_entries = nullptr;
            m_entry_cnt = m_entry_cap = 0;
            return false;
        }
        m_entry_cap = capacity;
    }
    for (uint32_t i = m_entry_cnt; i < count; ++i)
        m_entries[i] = {PDF_XREF_FREE, 0, PDF_XREF_NO_GEN};
    m_entry_cnt = count;
    return true;
}

PDF_XREF_ENTRY* CPDFXRefTable::reserve_entry(uint32_t num)
{
    return grow_entries(num) ? &m_entries[num] : nullptr;
}

const PDF_XREF_ENTRY* CPDFXRefTable::entry_of(uint32_t num)
{
    for (;;) {
        const bool known = num < m_entry_cnt && m_entries[num].gen != PDF_XREF_NO_GEN;
        if (known)
            return &m_entries[num];
        if (m_pending.empty())
            return nullptr;
        XRefRead(m_pending.pop().pos);
    }
}

void CPDFXRefTable::get_entity(CPDFObj& out, const PDF_REF& ref, const CPDFKeySet* keys)
{
    const VXFailureCheck check;
    fetch(out, ref, keys);
    if (check.failed())
        out.free();
}

void CPDFXRefTable::fetch(CPDFObj& out, const PDF_REF& ref, const CPDFKeySet* keys)
{
    PDF_REF at = ref;
    for (int hops = 0; hops < LIMIT_REF_CHAIN; ++hops) {
        const PDF_XREF_ENTRY* entry = at.num ? entry_of(at.num) : nullptr;
        if (!entry || entry->type == PDF_XREF_FREE)
            return;
        if (entry->type == PDF_XREF_CHANGED) {
            if (entry->index < static_cast<uint32_t>(m_changed_cnt))
                read_version(out, m_changed[entry->index], keys);
        } else if (m_source) {
            const PDF_XREF_ENTRY place = *entry;  // reading may grow the entries
            m_source->read_object(*this, out, at.num, place, keys);
        }
        if (out.type != PDF_OBJ_REF)
            return;
        at = out.ref;
        out.free();
    }
}

void CPDFXRefTable::read_version(CPDFObj& out, const PDF_CHANGED_OBJ& record, const CPDFKeySet* keys) const
{
    if (record.text.buf)
        m_source->read_text(out, record.text, keys);
    else
        copy_wanted(out, record.obj, keys);
}

PDF_CHANGED_OBJ* CPDFXRefTable::get_xref2(int num, int gen)
{
    PDF_CHANGED_OBJ* record = record_of(static_cast<uint32_t>(num), static_cast<uint32_t>(gen));
    if (!record || !record->text.buf)
        return record;
    const VXFailureCheck check;
    CPDFObj obj;
    read_version(obj, *record, nullptr);
    if (check.failed() || obj.type == PDF_OBJ_NULL)
        return nullptr;
    record->obj.take(obj);
    record->text.release();
    return record;
}

PDF_CHANGED_OBJ* CPDFXRefTable::record_of(uint32_t number, uint32_t gen)
{
    entry_of(number);  // what the entry was before the change is kept, so it must be known
    PDF_XREF_ENTRY* entry = reserve_entry(number);
    if (!entry)
        return nullptr;
    if (entry->type == PDF_XREF_CHANGED && entry->gen != PDF_XREF_NO_GEN)
        return &m_changed[entry->index];
    if (m_changed_cnt >= m_changed_cap && !grow_changed())
        return nullptr;
    keep_next_num();
    m_before[m_changed_cnt] = {number, *entry};
    *entry = {PDF_XREF_CHANGED, static_cast<uint32_t>(m_changed_cnt), gen};
    m_next_num = std::max(m_next_num, number + 1);
    return &m_changed[m_changed_cnt++];
}

bool CPDFXRefTable::grow_changed()
{
    if (!vx_set_room(m_before, static_cast<size_t>(m_changed_cap) + CHANGED_STEP) ||
        !vx_add_room(m_changed, m_changed_cap, CHANGED_STEP))
        return false;
    std::memset(static_cast<void*>(m_changed + m_changed_cap - CHANGED_STEP), 0,
                CHANGED_STEP * sizeof(PDF_CHANGED_OBJ));
    return true;
}

void CPDFXRefTable::store_changed(const PDF_REF& ref, const CPDFObj& obj)
{
    const VXFailureCheck check;
    CPDFObj version;
    version.copy_from(&obj);
    if (!check.failed())
        take_changed(ref, version);
}

bool CPDFXRefTable::take_changed(const PDF_REF& ref, CPDFObj& obj)
{
    CPDFObj version;
    version.take(obj);
    PDF_CHANGED_OBJ* record = record_of(ref.num, ref.gen);
    if (!record)
        return false;
    record->text.release();
    record->obj.take(version);
    record->ref = ref;
    return true;
}

PDF_CHANGE_RESULT CPDFXRefTable::change_entries(const PDF_REF& ref, PDF_ENTRY_CHANGES changes)
{
    PDF_String text = {0, nullptr};
    if (splice(ref, changes, text)) {
        PDF_CHANGED_OBJ* record = record_of(ref.num, ref.gen);
        if (!record) {
            text.release();
            return PDF_CHANGE_RESULT::NO_MEMORY;
        }
        record->obj.free();
        record->text.release();
        record->text.take(text);
        record->ref = ref;
        return PDF_CHANGE_RESULT::STORED;
    }
    const VXFailureCheck check;
    CPDFObj own;
    fetch(own, ref, nullptr);
    CPDFDictionary* dict = own.dictionary();
    for (const PDF_ENTRY_CHANGE& change : changes) {
        if (dict)
            dict->set_item(change.key, change.value);
    }
    if (!dict && !check.failed())
        return PDF_CHANGE_RESULT::NO_DICTIONARY;
    return !check.failed() && take_changed(ref, own) ? PDF_CHANGE_RESULT::STORED : PDF_CHANGE_RESULT::NO_MEMORY;
}

// The newest version as text with the changes; false where that can't be had.
bool CPDFXRefTable::splice(const PDF_REF& ref, PDF_ENTRY_CHANGES changes, PDF_String& out)
{
    const PDF_XREF_ENTRY* entry = ref.num && m_source ? entry_of(ref.num) : nullptr;
    if (!entry || entry->type == PDF_XREF_FREE)
        return false;
    if (entry->type == PDF_XREF_CHANGED) {
        const PDF_CHANGED_OBJ& record = m_changed[entry->index];
        return record.text.buf && m_source->splice_text(record.text, changes, out);
    }
    const PDF_XREF_ENTRY place = *entry;  // reading may grow the entries
    return m_source->splice_object(*this, ref.num, place, changes, out);
}

void CPDFXRefTable::read_obj_string(CPDFXRefTable* xref, PDF_String& out, const CPDFObj* obj)
{
    out = {0, nullptr};
    const CPDFEntryView value(xref, obj);
    if (value->type == PDF_OBJ_STRING)
        out.assign(value->str.buf, value->str.len);
    else if (value->type == PDF_OBJ_NAME && value->name)
        out.assign(value->name, static_cast<int32_t>(std::strlen(value->name)));
}

uint32_t CPDFXRefTable::new_obj_num()
{
    read_all_sections();
    keep_next_num();
    return m_next_num++;
}

// Notes the first number that the file leaves free, before the first change.
void CPDFXRefTable::keep_next_num()
{
    if (m_next_num_before == 0)
        m_next_num_before = m_next_num;
}

void CPDFXRefTable::read_all_sections()
{
    while (!m_pending.empty() && XRefRead(m_pending.pop().pos)) {
    }
}

void CPDFXRefTable::raise_next_num(uint32_t num)
{
    m_next_num = std::max(m_next_num, num);
    if (m_next_num_before)
        m_next_num_before = std::max(m_next_num_before, num);
}

int CPDFXRefTable::XRefRead(uint32_t pos)
{
    return m_source ? m_source->read_section(*this, pos) : 0;
}

void CPDFXRefTable::push_pending(uint32_t pos)
{
    static_cast<void>(m_pending.push({pos}));  // without memory the older objects are missing
}

CPDFStream* CPDFXRefTable::make_stream(const CPDFStreamRec* rec)
{
    if (!rec || !m_source)
        return nullptr;
    if (!rec->in_memory)
        return m_source->open_stream(*this, *rec, nullptr, 0);
    const PDF_MEM_STREAM* memory = mem_stream(rec->handle);
    return memory ? m_source->open_stream(*this, *rec, memory->data, memory->len) : nullptr;
}

unsigned char* CPDFXRefTable::compress_data(const void* data, int len, int& out_len)
{
    out_len = 0;
    return m_source && data && len >= 0 ? m_source->compress(data, len, out_len) : nullptr;
}

// The data of stream object `num`, none yet for a new one; null when memory runs out.
PDF_MEM_STREAM* CPDFXRefTable::mem_slot(uint32_t num)
{
    for (PDF_MEM_STREAM& memory : m_mem_streams) {
        if (memory.num == num)
            return &memory;
    }
    return m_mem_streams.push({num, nullptr, 0}) ? &m_mem_streams.back() : nullptr;
}

uint64_t CPDFXRefTable::set_mem_stream(const PDF_REF& ref, unsigned char* data, int len)
{
    PDF_MEM_STREAM* memory = mem_slot(ref.num);
    if (!memory) {
        VXFree(data);
        return 0;
    }
    VXFree(memory->data);
    memory->data = data;
    memory->len = len > 0 ? static_cast<uint32_t>(len) : 0;
    return static_cast<uint64_t>(memory - m_mem_streams.data()) + 1;
}

PDF_CHANGE_RESULT CPDFXRefTable::take_stream(const PDF_REF& ref, CPDFDictionary& dict, unsigned char* data, int len)
{
    VXBlock<unsigned char> owned(data);
    const VXFailureCheck check;
    CPDFObj obj;
    if (CPDFStreamRec* rec = obj.set_stream()) {
        rec->dict.take(dict);
        rec->dict.set_item_int(CPDFDictionary::sm_tag_length, len);
        rec->data_len = static_cast<uint32_t>(len);
        rec->ref = ref;
        rec->in_memory = 1;
    }
    // The data that the object has now stay until nothing can fail any more.
    const bool ready = mem_slot(ref.num) && !check.failed();
    PDF_CHANGED_OBJ* record = ready ? record_of(ref.num, ref.gen) : nullptr;
    if (!record)
        return PDF_CHANGE_RESULT::NO_MEMORY;
    obj.stream->handle = set_mem_stream(ref, owned.release(), len);
    record->text.release();
    record->obj.take(obj);
    record->ref = ref;
    return PDF_CHANGE_RESULT::STORED;
}

const PDF_MEM_STREAM* CPDFXRefTable::mem_stream(uint64_t handle) const
{
    return handle >= 1 && handle <= m_mem_streams.size() ? &m_mem_streams[handle - 1] : nullptr;
}
