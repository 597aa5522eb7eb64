#include "file/security/file_key.h"

#include <nettle/md5.h>
#include <nettle/sha2.h>

#include <algorithm>
#include <cstring>

#include "core/text.h"
#include "file/security/cipher.h"

namespace {

constexpr size_t PADDED = 32;    // bytes of a password up to revision 4
constexpr size_t LONGEST = 127;  // and at most from revision 5 on
constexpr size_t SALT = 8;       // bytes of each salt
constexpr size_t HASH = SHA256_DIGEST_SIZE;
constexpr size_t HASHED = HASH + 2 * SALT;  // a hash, the salt of the check, and the salt of the key

constexpr uint8_t PADDING[PADDED] = {0x28, 0xBF, 0x4E, 0x5E, 0x4E, 0x75, 0x8A, 0x41, 0x64, 0x00, 0x4E,
                                     0x56, 0xFF, 0xFA, 0x01, 0x08, 0x2E, 0x2E, 0x00, 0xB6, 0xD0, 0x68,
                                     0x3E, 0x80, 0x2F, 0x0C, 0xA9, 0xFE, 0x64, 0x53, 0x69, 0x7A};

const uint8_t* bytes_of(std::string_view text)
{
    return reinterpret_cast<const uint8_t*>(text.data());
}

void pad(std::string_view password, uint8_t* out)
{
    const size_t size = std::min(password.size(), PADDED);
    std::copy_n(password.begin(), size, out);
    std::copy_n(PADDING, PADDED - size, out + size);
}

// Revisions 2 to 4

void md5_again(int times, uint8_t* digest, size_t size)
{
    for (int i = 0; i < times; ++i) {
        md5_ctx context;
        md5_init(&context);
        md5_update(&context, size, digest);
        md5_digest(&context, MD5_DIGEST_SIZE, digest);
    }
}

// Each round of RC4 has a key of its own: the key with its bytes changed by the round's number.
void rc4_round(const uint8_t* key, size_t key_size, int round, uint8_t* data, size_t size)
{
    uint8_t changed[MD5_DIGEST_SIZE];
    for (size_t i = 0; i < key_size; ++i)
        changed[i] = static_cast<uint8_t>(key[i] ^ round);
    rc4(changed, key_size, data, size);
}

void make_key(const PDF_PASSWORD_CHECK& check, const uint8_t* padded, uint8_t* key)
{
    md5_ctx context;
    md5_init(&context);
    md5_update(&context, PADDED, padded);
    md5_update(&context, PADDED, bytes_of(check.owner));
    uint8_t permissions[4];
    for (int i = 0; i < 4; ++i)
        permissions[i] = static_cast<uint8_t>(check.permissions >> (8 * i));
    md5_update(&context, sizeof permissions, permissions);
    md5_update(&context, check.file_id.size(), bytes_of(check.file_id));
    if (check.revision >= 4 && !check.encrypts_metadata)
        md5_update(&context, 4, bytes_of("\xFF\xFF\xFF\xFF"));
    uint8_t digest[MD5_DIGEST_SIZE];
    md5_digest(&context, sizeof digest, digest);
    if (check.revision >= 3)
        md5_again(50, digest, check.key_size);
    std::memcpy(key, digest, check.key_size);
}

bool is_user_password(const PDF_PASSWORD_CHECK& check, const uint8_t* padded, uint8_t* key)
{
    make_key(check, padded, key);
    if (check.revision == 2) {
        uint8_t proof[PADDED];
        std::memcpy(proof, PADDING, PADDED);
        rc4(key, check.key_size, proof, PADDED);
        return std::memcmp(proof, check.user.data(), PADDED) == 0;
    }
    uint8_t proof[MD5_DIGEST_SIZE];
    md5_ctx context;
    md5_init(&context);
    md5_update(&context, PADDED, PADDING);
    md5_update(&context, check.file_id.size(), bytes_of(check.file_id));
    md5_digest(&context, sizeof proof, proof);
    for (int round = 0; round < 20; ++round)
        rc4_round(key, check.key_size, round, proof, sizeof proof);
    return std::memcmp(proof, check.user.data(), sizeof proof) == 0;
}

// "O" is the user's password, encrypted with the owner's.
bool is_owner_password(const PDF_PASSWORD_CHECK& check, const uint8_t* padded, uint8_t* key)
{
    uint8_t digest[MD5_DIGEST_SIZE];
    md5_ctx context;
    md5_init(&context);
    md5_update(&context, PADDED, padded);
    md5_digest(&context, sizeof digest, digest);
    if (check.revision >= 3)
        md5_again(50, digest, sizeof digest);
    uint8_t user[PADDED];
    std::memcpy(user, check.owner.data(), PADDED);
    for (int round = check.revision >= 3 ? 19 : 0; round >= 0; --round)
        rc4_round(digest, check.key_size, round, user, PADDED);
    return is_user_password(check, user, key);
}

PDF_PASSWORD find_short_key(const PDF_PASSWORD_CHECK& check, std::string_view password, uint8_t* key)
{
    uint8_t padded[PADDED];
    pad(password, padded);
    if (is_user_password(check, padded, key))
        return PDF_PASSWORD::USER;
    return is_owner_password(check, padded, key) ? PDF_PASSWORD::OWNER : PDF_PASSWORD::WRONG;
}

// The password in PDFDocEncoding; a character that it lacks makes it empty.
std::string pdf_doc_encoded(std::string_view password)
{
    wchar_t characters[256];
    for (int code = 0; code < 256; ++code) {
        unsigned char byte[2] = {static_cast<unsigned char>(code), 0};
        const PDF_String text = {1, byte};
        wchar_t one[2] = {};
        characters[code] = cvt_text_to_ucs(&text, one, 1) > 0 ? one[0] : 0;
    }
    std::string out;
    const uint8_t* at = bytes_of(password);
    for (const uint8_t* end = at + password.size(); at < end;) {
        const uint32_t character = ucs_from_utf8(at, end);
        const wchar_t* found = std::find(characters, characters + 256, static_cast<wchar_t>(character));
        if (found == characters + 256)
            return {};
        out += static_cast<char>(found - characters);
    }
    return out;
}

// Revisions 5 and 6

// What the longer hash does to its input, round by round.
struct LongHash {
    uint8_t digest[SHA512_DIGEST_SIZE];
    size_t size = HASH;

    void update(int bits, const uint8_t* data, size_t data_size)
    {
        size = static_cast<size_t>(bits) / 8;
        if (bits == 256) {
            sha256_ctx context;
            sha256_init(&context);
            sha256_update(&context, data_size, data);
            sha256_digest(&context, size, digest);
            return;
        }
        sha512_ctx context;
        bits == 384 ? sha384_init(&context) : sha512_init(&context);
        sha512_update(&context, data_size, data);
        bits == 384 ? sha384_digest(&context, size, digest) : sha512_digest(&context, size, digest);
    }
};

// ISO 32000-2, algorithm 2.B: at least 64 rounds, each over 64 copies of password, hash and `user`.
void hash_again(std::string_view password, std::string_view user, LongHash& hash)
{
    constexpr size_t COPIES = 64;
    std::string input;
    uint8_t last = 0;
    for (unsigned round = 0; round < 64 || last > round - 32; ++round) {
        std::string once(password);
        once.append(reinterpret_cast<const char*>(hash.digest), hash.size);
        once += user;
        input.clear();
        for (size_t i = 0; i < COPIES; ++i)
            input += once;
        auto* bytes = reinterpret_cast<uint8_t*>(input.data());
        uint8_t iv[PDF_CIPHER_BLOCK];
        std::memcpy(iv, hash.digest + PDF_CIPHER_BLOCK, sizeof iv);
        aes_encrypt_blocks(hash.digest, PDF_CIPHER_BLOCK, iv, bytes, input.size(), bytes);
        // The first block as a number modulo 3, which is that of the sum of its bytes.
        unsigned sum = 0;
        for (size_t i = 0; i < PDF_CIPHER_BLOCK; ++i)
            sum += bytes[i];
        last = bytes[input.size() - 1];
        hash.update(256 + 128 * static_cast<int>(sum % 3), bytes, input.size());
    }
}

// The hash of a password with a salt and, for the owner's, with "U".
void hash_password(const PDF_PASSWORD_CHECK& check, std::string_view password, std::string_view salt,
                   std::string_view user, uint8_t* out)
{
    std::string input(password);
    input += salt;
    input += user;
    LongHash hash;
    hash.update(256, bytes_of(input), input.size());
    if (check.revision >= 6)
        hash_again(password, user, hash);
    std::memcpy(out, hash.digest, HASH);
}

// `proof` is "O" or "U": the hash of the right password, and the salts.
bool unwraps_key(const PDF_PASSWORD_CHECK& check, std::string_view password, std::string_view proof,
                 std::string_view wrapped, std::string_view user, uint8_t* key)
{
    uint8_t hash[HASH];
    hash_password(check, password, proof.substr(HASH, SALT), user, hash);
    if (std::memcmp(hash, proof.data(), HASH) != 0)
        return false;
    hash_password(check, password, proof.substr(HASH + SALT, SALT), user, hash);
    uint8_t iv[PDF_CIPHER_BLOCK] = {};
    aes_decrypt_blocks(hash, HASH, iv, bytes_of(wrapped), PDF_CIPHER_LONGEST_KEY, key);
    return true;
}

PDF_PASSWORD find_long_key(const PDF_PASSWORD_CHECK& check, std::string_view password, uint8_t* key)
{
    password = password.substr(0, LONGEST);
    if (unwraps_key(check, password, check.user, check.user_key, {}, key))
        return PDF_PASSWORD::USER;
    const std::string_view user = std::string_view(check.user).substr(0, HASHED);
    return unwraps_key(check, password, check.owner, check.owner_key, user, key) ? PDF_PASSWORD::OWNER
                                                                                 : PDF_PASSWORD::WRONG;
}

}  // namespace

PDF_PASSWORD find_file_key(const PDF_PASSWORD_CHECK& check, std::string_view password, uint8_t* key)
{
    if (check.revision >= 5) {
        const bool whole = check.owner.size() >= HASHED && check.user.size() >= HASHED &&
                           check.owner_key.size() >= PDF_CIPHER_LONGEST_KEY &&
                           check.user_key.size() >= PDF_CIPHER_LONGEST_KEY;
        return whole ? find_long_key(check, password, key) : PDF_PASSWORD::WRONG;
    }
    if (check.owner.size() < PADDED || check.user.size() < PADDED)
        return PDF_PASSWORD::WRONG;
    const PDF_PASSWORD found = find_short_key(check, password, key);
    const std::string encoded = found == PDF_PASSWORD::WRONG ? pdf_doc_encoded(password) : std::string();
    return encoded.empty() || encoded == password ? found : find_short_key(check, encoded, key);
}
