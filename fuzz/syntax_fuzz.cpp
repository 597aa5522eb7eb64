// Any bytes as an object: what is written reads back as the same, and entries that are changed in the text are those that are
// changed in the object.
#include <cmath>
#include <cstring>

#include "core/array.h"
#include "core/dictionary.h"
#include "core/key_set.h"
#include "file/syntax/parser.h"
#include "file/syntax/serialize.h"
#include "file/syntax/splice.h"
#include "fuzz/fuzz_bytes.h"

namespace {

bool same(const CPDFObj& a, const CPDFObj& b);

bool same_arrays(const CPDFArray& a, const CPDFArray& b)
{
    return std::equal(a.items, a.items + a.count, b.items, b.items + b.count, same);
}

bool same_entries(const CPDFDictionary& a, const CPDFDictionary& b)
{
    return std::equal(a.items, a.items + a.count, b.items, b.items + b.count, [](const auto* one, const auto* other) {
        return std::strcmp(one->key(), other->key()) == 0 && same(one->value, other->value);
    });
}

bool is_number(const CPDFObj& obj)
{
    return obj.type == PDF_OBJ_INT || obj.type == PDF_OBJ_REAL;
}

VXFIX number_of(const CPDFObj& obj)
{
    return obj.type == PDF_OBJ_INT ? static_cast<VXFIX>(obj.ival) * VXFIX_ONE : obj.fval;
}

// A real without decimals is written as an integer.
bool same(const CPDFObj& a, const CPDFObj& b)
{
    if (is_number(a) && is_number(b))
        return number_of(a) == number_of(b);
    if (a.type != b.type)
        return false;
    switch (a.type) {
    case PDF_OBJ_BOOL:
        return a.ival == b.ival;
    case PDF_OBJ_STRING:
        return a.str.equals(b.str);
    case PDF_OBJ_NAME:
        return std::strcmp(a.name, b.name) == 0;
    case PDF_OBJ_ARRAY:
        return same_arrays(*a.arr, *b.arr);
    case PDF_OBJ_DICT:
        return same_entries(*a.dict, *b.dict);
    case PDF_OBJ_REF:
        return a.ref.num == b.ref.num && a.ref.gen == b.ref.gen;
    default:
        return true;
    }
}

// Parses a block of exactly this size, so that reading behind it is noticed.
bool parse(std::string_view text, CPDFObj& out, const CPDFKeySet* keys = nullptr)
{
    const VXBlock<uint8_t> bytes(static_cast<uint8_t*>(VXAlloc(text.size() + 1)));
    uint8_t* begin = bytes.get() + 1;  // the splicer looks at the byte before
    std::copy(text.begin(), text.end(), begin);
    return CPDFParser(begin, begin + text.size(), nullptr).parse(out, keys);
}

void check_written(const CPDFObj& obj)
{
    std::string text;
    write_object(text, obj);
    CPDFObj again;
    if (!parse(text, again))
        check(obj.type == PDF_OBJ_NULL, "what is written can't be read");
    if (!same(obj, again)) {
        std::fprintf(stderr, "%s\n", text.c_str());
        fault("what is written reads back as something else");
    }
}

void check_keys(std::string_view text, const CPDFObj& whole)
{
    constexpr CPDFKeySet KEYS("V", "T", "Kids", "FT");
    CPDFObj part;
    if (!whole.dictionary())
        return;
    check(parse(text, part, &KEYS) && part.dictionary(), "a dictionary is read as a whole only");
    for (const char* key : {"V", "T", "Kids", "FT"}) {
        const CPDFObj* a = whole.dict->get_item(key);
        const CPDFObj* b = part.dict->get_item(key);
        check(!a == !b && (!a || same(*a, *b)), "an entry read alone is another one");
    }
}

void check_spliced(std::string_view text, CPDFObj& whole)
{
    CPDFObj value;
    value.set_string("new)", 4);
    const PDF_ENTRY_CHANGE changes[] = {{"V", &value}, {"RV", nullptr}};
    const auto* begin = reinterpret_cast<const uint8_t*>(text.data());
    CPDFLexer lexer(begin, begin + text.size());
    PDF_String out = {0, nullptr};
    if (!CPDFSplicer().splice(lexer, changes, out) || !whole.dictionary()) {
        out.release();
        return;
    }
    const std::string spliced(reinterpret_cast<const char*>(out.buf), static_cast<size_t>(out.len));
    out.release();
    whole.dict->set_item("V", &value);
    whole.dict->remove_item("RV");
    CPDFObj again;
    if (!parse(spliced, again) || !same(whole, again)) {
        std::fprintf(stderr, "%s\n", spliced.c_str());
        fault("the changed text is not the changed dictionary");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    CPDFObj whole;
    if (!parse(text, whole))
        return 0;
    check_written(whole);
    check_keys(text, whole);
    check_spliced(text, whole);
    return 0;
}
