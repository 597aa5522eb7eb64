#include "file/security/security_handler.h"

#include <nettle/md5.h>

#include <algorithm>
#include <cstring>

#include "core/alloc.h"
#include "core/array.h"
#include "core/dictionary.h"

namespace {

constexpr uint32_t MODIFY = 1u << 3;
constexpr uint32_t ANNOTATE = 1u << 5;
constexpr uint32_t FILL = 1u << 8;

std::string string_of(CPDFXRefTable& xref, const CPDFDictionary& dict, const char* key)
{
    const CPDFEntryView entry(&xref, dict.get_item(key));
    if (entry->type != PDF_OBJ_STRING || !entry->str.buf)
        return {};
    return {reinterpret_cast<const char*>(entry->str.buf), static_cast<size_t>(entry->str.len)};
}

std::string name_of(CPDFXRefTable& xref, const CPDFDictionary& dict, const char* key)
{
    const CPDFEntryView entry(&xref, dict.get_item(key));
    return entry->name_text() ? entry->name_text() : "";
}

// "P" has 32 bits, and some writers write them as a number without a sign.
uint32_t permissions_of(CPDFXRefTable& xref, const CPDFDictionary& dict)
{
    const CPDFEntryView entry(&xref, dict.get_item("P"));
    if (entry->type == PDF_OBJ_REAL)
        return static_cast<uint32_t>(entry->fval >> 26);
    return entry->type == PDF_OBJ_INT ? static_cast<uint32_t>(entry->ival) : 0;
}

PDF_PERMISSIONS form_permissions(uint32_t bits, int revision)
{
    PDF_PERMISSIONS may;
    may.fill = (bits & ANNOTATE) || (revision >= 3 && (bits & FILL));
    may.modify = (bits & ANNOTATE) && (bits & MODIFY);
    return may;
}

size_t key_size_of(CPDFXRefTable& xref, const CPDFDictionary& encrypt, int version)
{
    constexpr size_t SHORT = 5;
    constexpr size_t LONG = 16;
    if (version >= 4)
        return version == 4 ? LONG : PDF_CIPHER_LONGEST_KEY;
    const int32_t bits = version == 1 ? 0 : resolve_integer(&xref, encrypt.get_item("Length"));
    return std::clamp(static_cast<size_t>(std::max(bits, 0)) / 8, SHORT, LONG);
}

// The bytes that a signature is in are told by "ByteRange" not to be covered by it, and not encrypted either.
bool is_signature(const CPDFDictionary& dict)
{
    return dict.get_item("ByteRange") != nullptr;
}

PDF_PASSWORD_CHECK password_check(CPDFXRefTable& xref, const CPDFDictionary& encrypt, int version,
                                  std::string_view file_id)
{
    PDF_PASSWORD_CHECK check;
    check.revision = resolve_integer(&xref, encrypt.get_item("R"));
    check.key_size = key_size_of(xref, encrypt, version);
    check.owner = string_of(xref, encrypt, "O");
    check.user = string_of(xref, encrypt, "U");
    check.owner_key = string_of(xref, encrypt, "OE");
    check.user_key = string_of(xref, encrypt, "UE");
    check.permissions = permissions_of(xref, encrypt);
    check.file_id = file_id;
    const CPDFEntryView metadata(&xref, encrypt.get_item("EncryptMetadata"));
    check.encrypts_metadata = metadata->type != PDF_OBJ_BOOL || metadata->ival;
    return check;
}

}  // namespace

PDF_UNLOCK CPDFSecurityHandler::unlock(CPDFXRefTable& xref, const CPDFDictionary& encrypt, std::string_view file_id,
                                       std::string_view password, std::unique_ptr<CPDFSecurityHandler>& out)
{
    const std::string filter = name_of(xref, encrypt, "Filter");
    const int version = resolve_integer(&xref, encrypt.get_item("V"));
    if (filter != "Standard")
        return encrypt.get_item("Recipients") || filter == "Adobe.PubSec" ? PDF_UNLOCK::PUBLIC_KEY
                                                                          : PDF_UNLOCK::UNKNOWN;
    const PDF_PASSWORD_CHECK check = password_check(xref, encrypt, version, file_id);
    if (version < 1 || version == 3 || version > 5 || check.revision < 2 || check.revision > 6 ||
        (check.revision >= 5) != (version == 5))
        return PDF_UNLOCK::UNKNOWN;
    if (check.owner.empty() || check.user.empty())
        return PDF_UNLOCK::DAMAGED;

    auto handler = std::make_unique<CPDFSecurityHandler>();
    if (!handler->read_ciphers(xref, encrypt, version))
        return PDF_UNLOCK::UNKNOWN;
    PDF_PASSWORD found = find_file_key(check, {}, handler->m_key);
    if (found == PDF_PASSWORD::WRONG || !password.empty()) {
        // The owner's password gives more than the empty one does.
        uint8_t key[PDF_CIPHER_LONGEST_KEY] = {};
        const PDF_PASSWORD better = find_file_key(check, password, key);
        if (better != PDF_PASSWORD::WRONG) {
            found = better;
            std::copy_n(key, sizeof key, handler->m_key);
        }
    }
    if (found == PDF_PASSWORD::WRONG)
        return PDF_UNLOCK::WRONG_PASSWORD;
    handler->m_key_size = check.key_size;
    handler->m_one_key = version == 5;
    handler->m_encrypts_metadata = check.encrypts_metadata;
    if (found == PDF_PASSWORD::USER)
        handler->m_permissions = form_permissions(check.permissions, check.revision);
    out = std::move(handler);
    return PDF_UNLOCK::OPEN;
}

// Up to version 2 everything is RC4; then "CF" gives ciphers names, of which "StmF" and "StrF" choose. False for one that is
// not known.
bool CPDFSecurityHandler::read_ciphers(CPDFXRefTable& xref, const CPDFDictionary& encrypt, int version)
{
    m_strings = m_streams = PDF_CIPHER::RC4;
    if (version < 4)
        return true;
    const CPDFEntryView entry(&xref, encrypt.get_item("CF"));
    const CPDFDictionary* filters = entry->dictionary();
    for (int32_t i = 0; filters && i < filters->count; ++i) {
        const CPDFEntryView filter(&xref, &filters->items[i]->value);
        const std::string method = filter->dictionary() ? name_of(xref, *filter->dictionary(), "CFM") : "";
        const char* aes = version == 5 ? "AESV3" : "AESV2";
        if (method == aes || (method == "V2" && version == 4))
            m_named.push_back({filters->items[i]->key(), method == aes ? PDF_CIPHER::AES : PDF_CIPHER::RC4});
        else if (method.empty() || method == "None")
            m_named.push_back({filters->items[i]->key(), PDF_CIPHER::NONE});
    }
    const std::string streams = name_of(xref, encrypt, "StmF");
    const std::string strings = name_of(xref, encrypt, "StrF");
    m_streams = cipher_of(streams);
    m_strings = cipher_of(strings);
    const auto known = [this](const std::string& name) {
        return name.empty() || name == "Identity" ||
               std::any_of(m_named.begin(), m_named.end(), [&](const NamedCipher& one) { return one.name == name; });
    };
    return known(streams) && known(strings);
}

PDF_CIPHER CPDFSecurityHandler::cipher_of(std::string_view name) const
{
    for (const NamedCipher& named : m_named) {
        if (named.name == name)
            return named.cipher;
    }
    return PDF_CIPHER::NONE;  // Identity
}

// ISO 32000-2, algorithms 1 and 1.A.
PDF_CIPHER_KEY CPDFSecurityHandler::key_of(PDF_CIPHER cipher, const PDF_REF& ref) const
{
    PDF_CIPHER_KEY key;
    key.cipher = cipher;
    key.size = m_key_size;
    if (m_one_key || cipher == PDF_CIPHER::NONE) {
        std::memcpy(key.bytes, m_key, sizeof key.bytes);
        return key;
    }
    const uint32_t parts[] = {ref.num, ref.num >> 8, ref.num >> 16, ref.gen, ref.gen >> 8};
    uint8_t salt[5 + 4];
    std::transform(std::begin(parts), std::end(parts), salt, [](uint32_t part) { return static_cast<uint8_t>(part); });
    std::memcpy(salt + 5, "sAlT", 4);
    md5_ctx context;
    md5_init(&context);
    md5_update(&context, m_key_size, m_key);
    md5_update(&context, cipher == PDF_CIPHER::AES ? 9 : 5, salt);
    md5_digest(&context, MD5_DIGEST_SIZE, key.bytes);
    key.size = std::min<size_t>(m_key_size + 5, MD5_DIGEST_SIZE);
    return key;
}

template <typename Change>
void CPDFSecurityHandler::for_each_string(CPDFObj& obj, const Change& change)
{
    if (obj.type == PDF_OBJ_STRING && obj.str.len > 0)
        change(obj.str);
    CPDFArray* array = obj.array();
    for (int32_t i = 0; array && i < array->count; ++i)
        for_each_string(array->items[i], change);
    CPDFDictionary* dict = obj.any_dictionary();
    const bool signature = dict && is_signature(*dict);
    for (int32_t i = 0; dict && i < dict->count; ++i) {
        if (!signature || std::strcmp(dict->items[i]->key(), "Contents") != 0)
            for_each_string(dict->items[i]->value, change);
    }
}

void CPDFSecurityHandler::decrypt_strings(CPDFObj& obj, const PDF_REF& ref) const
{
    const PDF_CIPHER_KEY key = key_of(m_strings, ref);
    const CPDFDictionary* dict = obj.any_dictionary();
    const CPDFObj* type = dict ? dict->get_item("Type") : nullptr;
    if (key.cipher == PDF_CIPHER::NONE || (type && type->is_name("XRef")))
        return;
    for_each_string(obj, [&key](PDF_String& str) {
        str.len = static_cast<int32_t>(decrypt_in_place(key, str.buf, static_cast<size_t>(str.len)));
        str.buf[str.len] = 0;
    });
}

void CPDFSecurityHandler::encrypt_strings(CPDFObj& obj, const PDF_REF& ref) const
{
    const PDF_CIPHER_KEY key = key_of(m_strings, ref);
    if (key.cipher == PDF_CIPHER::NONE)
        return;
    for_each_string(obj, [&key](PDF_String& str) {
        const size_t size = encrypted_size(key.cipher, static_cast<size_t>(str.len));
        PDF_String plain = str;
        str = {0, size < INT32_MAX ? vx_alloc_array<unsigned char>(size + 1) : nullptr};
        if (str.buf) {
            encrypt(key, plain.buf, static_cast<size_t>(plain.len), str.buf);
            str.len = static_cast<int32_t>(size);
            str.buf[size] = 0;
        }
        plain.release();
    });
}

PDF_CIPHER_KEY CPDFSecurityHandler::stream_key(CPDFXRefTable* xref, const CPDFDictionary& dict,
                                               const PDF_REF& ref) const
{
    const CPDFEntryView type(xref, dict.get_item("Type"));
    if (type->is_name("XRef"))
        return {};
    const CPDFEntryView filter(xref, dict.get_item(CPDFDictionary::sm_tag_filter));
    const CPDFObj* first = filter->array() ? filter->array()->at(0) : &*filter;
    const CPDFEntryView name(xref, first);
    if (name->is_name("Crypt")) {
        const CPDFEntryView parms(xref, dict.get_item("DecodeParms"));
        const CPDFEntryView own(xref, parms->array() ? parms->array()->at(0) : &*parms);
        const CPDFDictionary* chosen = own->any_dictionary();
        const CPDFEntryView cipher(xref, chosen ? chosen->get_item("Name") : nullptr);
        return key_of(cipher->name_text() ? cipher_of(cipher->name_text()) : PDF_CIPHER::NONE, ref);
    }
    if (!m_encrypts_metadata && type->is_name("Metadata"))
        return {};
    return key_of(m_streams, ref);
}
