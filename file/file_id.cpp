#include "file/file_id.h"

#include <nettle/md5.h>
#include <zlib.h>

#include "core/array.h"
#include "core/dictionary.h"

void set_file_id(CPDFDictionary& trailer, const CPDFDictionary& before, const std::string& update)
{
    const CPDFObj* entry = before.get_item("ID");
    const CPDFArray* old_id = entry ? entry->array() : nullptr;
    const CPDFObj* first = old_id ? old_id->at(0) : nullptr;
    const bool has_first = first && first->type == PDF_OBJ_STRING && first->str.len > 0;

    md5_ctx context;
    md5_init(&context);
    if (has_first)
        md5_update(&context, static_cast<size_t>(first->str.len), first->str.buf);
    // The identifier tells versions of a file apart and protects nothing: checksums of a long update do, many times
    // faster.
    const auto* bytes = reinterpret_cast<const uint8_t*>(update.data());
    const uint64_t sums[] = {update.size(), crc32_z(0, bytes, update.size()), adler32_z(1, bytes, update.size())};
    md5_update(&context, sizeof sums, reinterpret_cast<const uint8_t*>(sums));
    uint8_t digest[MD5_DIGEST_SIZE];
    md5_digest(&context, sizeof digest, digest);

    CPDFArray id;
    if (has_first)
        id.append_str(first->str.buf, first->str.len);
    else
        id.append_str(digest, sizeof digest);
    id.append_str(digest, sizeof digest);
    trailer.set_item_arr("ID", &id);
}
