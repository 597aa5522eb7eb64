#include "tools/batch/sha256.h"

std::string Sha256::hex() const
{
    sha256_ctx context = m_context;
    uint8_t digest[SHA256_DIGEST_SIZE];
    sha256_digest(&context, sizeof digest, digest);
    std::string out;
    for (const uint8_t byte : digest) {
        out += "0123456789abcdef"[byte >> 4];
        out += "0123456789abcdef"[byte & 15];
    }
    return out;
}
