#include "platform/sha256.h"

#include <array>

#include <openssl/evp.h>

namespace quietlark {

Sha256::Sha256() : m_context(EVP_MD_CTX_new()) {
    start();
}

void Sha256::add(QByteArrayView bytes) {
    EVP_DigestUpdate(m_context.get(), bytes.data(), static_cast<std::size_t>(bytes.size()));
}

QByteArray Sha256::takeHex() {
    std::array<unsigned char, EVP_MAX_MD_SIZE> digest{};
    unsigned int length = 0;
    EVP_DigestFinal_ex(m_context.get(), digest.data(), &length);
    start();
    return QByteArray(reinterpret_cast<const char*>(digest.data()), length).toHex();
}

void Sha256::Free::operator()(evp_md_ctx_st* context) const {
    EVP_MD_CTX_free(context);
}

void Sha256::start() {
    EVP_DigestInit_ex(m_context.get(), EVP_sha256(), nullptr);
}

}  // namespace quietlark
