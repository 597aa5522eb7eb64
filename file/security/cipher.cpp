#include "file/security/cipher.h"

#include <nettle/aes.h>
#include <nettle/arcfour.h>
#include <nettle/cbc.h>
#include <nettle/sha2.h>

#include <cstring>

static_assert(PDF_CIPHER_BLOCK == AES_BLOCK_SIZE && PDF_CIPHER_LONGEST_KEY == AES256_KEY_SIZE);

void rc4(const uint8_t* key, size_t key_size, uint8_t* data, size_t size)
{
    arcfour_ctx context;
    arcfour_set_key(&context, key_size, key);
    arcfour_crypt(&context, size, data, data);
}

void aes_encrypt_blocks(const uint8_t* key, size_t key_size, uint8_t* iv, const uint8_t* data, size_t size,
                        uint8_t* out)
{
    if (key_size == AES256_KEY_SIZE) {
        aes256_ctx context;
        aes256_set_encrypt_key(&context, key);
        cbc_encrypt(&context, reinterpret_cast<nettle_cipher_func*>(aes256_encrypt), AES_BLOCK_SIZE, iv, size, out,
                    data);
    } else {
        aes128_ctx context;
        aes128_set_encrypt_key(&context, key);
        cbc_encrypt(&context, reinterpret_cast<nettle_cipher_func*>(aes128_encrypt), AES_BLOCK_SIZE, iv, size, out,
                    data);
    }
}

void aes_decrypt_blocks(const uint8_t* key, size_t key_size, uint8_t* iv, const uint8_t* data, size_t size,
                        uint8_t* out)
{
    if (key_size == AES256_KEY_SIZE) {
        aes256_ctx context;
        aes256_set_decrypt_key(&context, key);
        cbc_decrypt(&context, reinterpret_cast<nettle_cipher_func*>(aes256_decrypt), AES_BLOCK_SIZE, iv, size, out,
                    data);
    } else {
        aes128_ctx context;
        aes128_set_decrypt_key(&context, key);
        cbc_decrypt(&context, reinterpret_cast<nettle_cipher_func*>(aes128_decrypt), AES_BLOCK_SIZE, iv, size, out,
                    data);
    }
}

namespace {

size_t decrypt_aes(const PDF_CIPHER_KEY& key, uint8_t* data, size_t size)
{
    if (size < 2 * AES_BLOCK_SIZE)
        return 0;
    uint8_t* blocks = data + AES_BLOCK_SIZE;
    size_t left = (size - AES_BLOCK_SIZE) / AES_BLOCK_SIZE * AES_BLOCK_SIZE;
    aes_decrypt_blocks(key.bytes, key.size, data, blocks, left, blocks);
    const uint8_t filled = blocks[left - 1];
    if (filled >= 1 && filled <= AES_BLOCK_SIZE)
        left -= filled;
    std::memmove(data, blocks, left);
    return left;
}

void encrypt_aes(const PDF_CIPHER_KEY& key, const uint8_t* data, size_t size, uint8_t* out)
{
    sha256_ctx context;
    sha256_init(&context);
    sha256_update(&context, key.size, key.bytes);
    sha256_update(&context, size, data);
    sha256_digest(&context, AES_BLOCK_SIZE, out);
    uint8_t iv[AES_BLOCK_SIZE];
    std::memcpy(iv, out, sizeof iv);
    out += sizeof iv;

    const size_t whole = size / AES_BLOCK_SIZE * AES_BLOCK_SIZE;
    uint8_t last[AES_BLOCK_SIZE];
    std::memset(last, static_cast<int>(AES_BLOCK_SIZE - (size - whole)), sizeof last);
    if (size > whole)
        std::memcpy(last, data + whole, size - whole);
    aes_encrypt_blocks(key.bytes, key.size, iv, data, whole, out);
    aes_encrypt_blocks(key.bytes, key.size, iv, last, sizeof last, out + whole);
}

}  // namespace

size_t decrypt_in_place(const PDF_CIPHER_KEY& key, uint8_t* data, size_t size)
{
    if (key.cipher == PDF_CIPHER::AES)
        return decrypt_aes(key, data, size);
    if (key.cipher == PDF_CIPHER::RC4 && size)
        rc4(key.bytes, key.size, data, size);
    return size;
}

size_t encrypted_size(PDF_CIPHER cipher, size_t size)
{
    return cipher == PDF_CIPHER::AES ? (size / AES_BLOCK_SIZE + 2) * AES_BLOCK_SIZE : size;
}

void encrypt(const PDF_CIPHER_KEY& key, const uint8_t* data, size_t size, uint8_t* out)
{
    if (key.cipher == PDF_CIPHER::AES) {
        encrypt_aes(key, data, size, out);
        return;
    }
    if (size)
        std::memcpy(out, data, size);
    if (key.cipher == PDF_CIPHER::RC4 && size)
        rc4(key.bytes, key.size, out, size);
}
