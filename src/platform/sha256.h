#pragma once

#include <memory>

#include <QByteArray>
#include <QByteArrayView>

struct evp_md_ctx_st;

namespace quietlark {

/// The SHA-256 digest (FIPS 180-4) of bytes that come in pieces, with the processor's own
/// instructions where it has them. One thread at a time.
class Sha256 {
public:
    Sha256();

    void add(QByteArrayView bytes);

    /// The digest of all that was added, as 64 hexadecimal digits. Afterwards it starts anew.
    [[nodiscard]] QByteArray takeHex();

private:
    struct Free {
        void operator()(evp_md_ctx_st* context) const;
    };

    void start();

    std::unique_ptr<evp_md_ctx_st, Free> m_context;
};

}  // namespace quietlark
