#include "file/filter/filters.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <utility>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "core/stream.h"
#include "file/filter/filters_internal.h"

namespace {

using DecodeFunction = bool (*)(const CPDFFilterInput& in, CPDFBytes& out);

// A filter without a function passes its data through: what is encrypted comes decrypted.
struct FilterRow {
    const char* name;
    const char* short_name;
    DecodeFunction decode;
    bool has_predictor;
};

constexpr FilterRow FILTERS[] = {
    {"FlateDecode", "Fl", decode_flate, true},           {"LZWDecode", "LZW", decode_lzw, true},
    {"ASCIIHexDecode", "AHx", decode_ascii_hex, false},  {"ASCII85Decode", "A85", decode_ascii85, false},
    {"RunLengthDecode", "RL", decode_run_length, false}, {"Crypt", "Crypt", nullptr, false},
};

struct Stage {
    const FilterRow* filter;
    CPDFFilterParms parms;
};

struct Chain {
    Stage stages[LIMIT_FILTERS];
    int count = 0;
};

const FilterRow* find_filter(const char* name)
{
    const auto same = [name](const FilterRow& row) {
        return std::strcmp(row.name, name) == 0 || std::strcmp(row.short_name, name) == 0;
    };
    const FilterRow* row = std::find_if(std::begin(FILTERS), std::end(FILTERS), same);
    return row == std::end(FILTERS) ? nullptr : row;
}

// The entry `key`, or `fallback` when it is absent, no number or below `min`.
int32_t number_of(CPDFXRefTable* xref, const CPDFDictionary& dict, const char* key, int32_t fallback, int32_t min)
{
    CPDFObj scratch;
    const CPDFObj* value = view_obj(xref, dict.get_item(key), scratch);
    if (value->type != PDF_OBJ_INT && value->type != PDF_OBJ_REAL)
        return fallback;
    const int32_t number = integer_value(*value);
    return number < min ? fallback : number;
}

void read_parms(CPDFXRefTable* xref, const CPDFDictionary& dict, CPDFFilterParms& parms)
{
    parms.predictor = number_of(xref, dict, "Predictor", parms.predictor, 1);
    parms.colors = number_of(xref, dict, "Colors", parms.colors, 1);
    parms.bits = number_of(xref, dict, "BitsPerComponent", parms.bits, 1);
    parms.columns = number_of(xref, dict, "Columns", parms.columns, 1);
    parms.early_change = number_of(xref, dict, "EarlyChange", parms.early_change, 0);
}

// False for a filter that is not known. A null entry is no filter.
bool add_stage(CPDFXRefTable* xref, const CPDFObj* filter, const CPDFObj* parms, Chain& chain)
{
    CPDFObj filter_scratch;
    CPDFObj parms_scratch;
    const CPDFObj* name = view_obj(xref, filter, filter_scratch);
    if (name->type == PDF_OBJ_NULL)
        return true;
    const FilterRow* row = name->name_text() ? find_filter(name->name_text()) : nullptr;
    const CPDFDictionary* dict = view_obj(xref, parms, parms_scratch)->any_dictionary();
    if (!row)
        return false;
    Stage& stage = chain.stages[chain.count++];
    stage.filter = row;
    if (dict)
        read_parms(xref, *dict, stage.parms);
    return true;
}

bool read_chain(CPDFXRefTable* xref, const CPDFDictionary& dict, Chain& chain)
{
    CPDFObj filter_scratch;
    CPDFObj parms_scratch;
    const CPDFObj* filter = view_obj(xref, dict.get_item(CPDFDictionary::sm_tag_filter), filter_scratch);
    const CPDFObj* parms = view_obj(xref, dict.get_item("DecodeParms"), parms_scratch);
    const CPDFArray* filters = filter->array();
    const CPDFArray* list = parms->array();
    if (!filters)
        return add_stage(xref, filter, list ? list->at(0) : parms, chain);
    if (filters->count > LIMIT_FILTERS)
        return false;
    // One dictionary beside several filters is meant for the filter that knows its entries.
    for (int i = 0; i < filters->count; ++i) {
        if (!add_stage(xref, filters->at(i), list ? list->at(i) : parms, chain))
            return false;
    }
    return true;
}

// What a byte of a stage counts: predictors read all again, some of them bit by bit.
uint64_t cost_of(const Stage& stage)
{
    constexpr uint64_t COST_PREDICTED = 2;
    constexpr uint64_t COST_BITS = 8;
    if (!stage.filter->has_predictor || stage.parms.predictor == 1)
        return 1;
    return stage.parms.predictor == 2 && stage.parms.bits < 8 ? COST_BITS : COST_PREDICTED;
}

// `budget` is what the stages may give, less what they gave.
bool run_chain(const Chain& chain, const uint8_t* data, size_t size, CPDFBytes& out, uint64_t& budget)
{
    const size_t limit = size < LIMIT_DECODED_STREAM / LIMIT_DECODE_RATIO
                             ? std::min(LIMIT_DECODED_STREAM, size * LIMIT_DECODE_RATIO + LIMIT_DECODE_SLACK)
                             : LIMIT_DECODED_STREAM;
    bool decoded = false;
    for (int i = 0; i < chain.count; ++i) {
        const Stage& stage = chain.stages[i];
        if (!stage.filter->decode)
            continue;
        const uint64_t cost = cost_of(stage);
        const size_t room = std::min<uint64_t>(limit, budget / cost);
        CPDFBytes next;
        if (!stage.filter->decode({data, size, room, stage.parms}, next))
            return false;
        next.cut(room);
        budget = next.size() < room || room == limit ? budget - next.size() * cost : 0;
        if (stage.filter->has_predictor)
            undo_predictor(stage.parms, next);
        out.swap(next);
        data = out.data();
        size = out.size();
        decoded = true;
    }
    if (!decoded) {
        const size_t room = std::min<uint64_t>({size, limit, budget});
        budget -= room;
        return out.append(data, room);
    }
    out.shrink();
    return true;
}

class CPDFDecodedStream : public CPDFStream {
public:
    explicit CPDFDecodedStream(CPDFBytes&& bytes) : m_bytes(std::move(bytes))
    {
        m_data_len = static_cast<int32_t>(std::min(m_bytes.size(), LIMIT_STREAM_ESTIMATE));
    }

    void rewind() override { m_at = 0; }
    bool at_end() override { return m_at == m_bytes.size(); }

    int read_data(void* buf, int size) override
    {
        const size_t count = std::min(static_cast<size_t>(std::max(size, 0)), m_bytes.size() - m_at);
        if (count > 0)
            std::memcpy(buf, m_bytes.data() + m_at, count);
        m_at += count;
        return static_cast<int>(count);
    }

private:
    CPDFBytes m_bytes;
    size_t m_at = 0;
};

}  // namespace

bool decode_stream(CPDFXRefTable* xref, const CPDFDictionary& dict, const uint8_t* data, size_t size, CPDFBytes& out,
                   uint64_t* budget)
{
    out.clear();
    Chain chain;
    uint64_t unbounded = UINT64_MAX;
    if (read_chain(xref, dict, chain) && run_chain(chain, data, size, out, budget ? *budget : unbounded))
        return true;
    out.clear();
    return false;
}

CPDFStream* make_decoded_stream(CPDFBytes&& bytes)
{
    return new CPDFDecodedStream(std::move(bytes));
}
