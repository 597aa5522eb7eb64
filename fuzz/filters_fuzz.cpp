// The first byte has the number of filters and whether they have parameters, each filter and its parameters take a few more;
// the rest is the stream.
#include "core/array.h"
#include "core/dictionary.h"
#include "core/limits.h"
#include "file/filter/compress.h"
#include "file/filter/filters.h"
#include "fuzz/fuzz_bytes.h"

namespace {

constexpr const char* NAMES[] = {
    "FlateDecode", "LZWDecode", "ASCIIHexDecode", "ASCII85Decode", "RunLengthDecode", "Crypt",
    "Fl",          "LZW",       "DCTDecode"};

void add_parms(FuzzBytes& bytes, CPDFArray& list)
{
    constexpr int32_t PREDICTORS[] = {1, 2, 10, 11, 12, 13, 14, 15, 3, -1};
    constexpr int32_t SIZES[] = {1, 2, 3, 4, 8, 16, 5, 0, -1, 1 << 20, INT32_MAX};
    CPDFObj* entry = list.append();
    CPDFDictionary* dict = entry->set_dict();
    dict->set_item_int("Predictor", PREDICTORS[bytes.below(std::size(PREDICTORS))]);
    dict->set_item_int("Colors", SIZES[bytes.below(std::size(SIZES))]);
    dict->set_item_int("BitsPerComponent", SIZES[bytes.below(std::size(SIZES))]);
    const uint8_t columns = bytes.byte();
    dict->set_item_int("Columns", columns < 128 ? columns : SIZES[columns % std::size(SIZES)]);
    dict->set_item_int("EarlyChange", static_cast<int>(bytes.below(3)));
}

void check_bounds(const CPDFBytes& out, size_t size, uint64_t work, size_t stages)
{
    // A stage may give a few bytes more than its bound before the last is cut.
    const uint64_t bound = std::min<uint64_t>(LIMIT_DECODED_STREAM, size * LIMIT_DECODE_RATIO + LIMIT_DECODE_SLACK);
    check(out.size() <= bound, "a stream gives more than its size allows");
    check(work <= stages * (bound + LIMIT_DECODE_SLACK), "the stages give more than the size allows");
}

void check_flate(std::string_view data)
{
    size_t size = 0;
    const VXBlock<unsigned char> packed(flate_compress(data.data(), data.size(), size));
    CPDFDictionary dict;
    dict.set_item_name("Filter", "FlateDecode");
    CPDFBytes out;
    check(decode_stream(nullptr, dict, packed.get(), size, out) && out.size() == data.size() &&
              std::equal(out.begin(), out.end(), data.begin(),
                         [](uint8_t a, char b) { return a == static_cast<uint8_t>(b); }),
          "what is compressed reads back as something else");
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    FuzzBytes bytes(data, size);
    const uint8_t first = bytes.byte();
    const size_t stages = first % 6;
    CPDFObj filters;
    CPDFObj parms;
    filters.set_array();
    parms.set_array();
    for (size_t i = 0; i < stages; ++i) {
        filters.arr->append()->set_name(NAMES[bytes.below(std::size(NAMES))]);
        if (first & 64)
            add_parms(bytes, *parms.arr);
    }
    CPDFDictionary dict;
    dict.set_item("Filter", stages == 1 ? filters.arr->at(0) : &filters);
    dict.set_item("DecodeParms", stages == 1 ? parms.arr->at(0) : &parms);
    const std::string_view rest = bytes.rest();
    CPDFBytes out;
    uint64_t work = 0;
    if (decode_stream(nullptr, dict, reinterpret_cast<const uint8_t*>(rest.data()), rest.size(), out, &work))
        check_bounds(out, rest.size(), work, stages);
    else
        check(out.empty(), "a refused stream leaves bytes");
    if (first & 128)
        check_flate(rest);
    return 0;
}
