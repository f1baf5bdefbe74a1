#pragma once

#include <condition_variable>
#include <mutex>
#include <thread>

#include <QByteArray>
#include <tl/expected.hpp>

#include "platform/durable_file.h"
#include "platform/sha256.h"

namespace quietlark {

/// Computes the SHA-256 digest of a file, on a thread of its own, while another thread writes it.
class TrailingDigest {
public:
    /// Goes on from `digest`, which has the first `bytes` of the file. The descriptor stays open,
    /// and the digest is nobody else's, until this ends.
    TrailingDigest(int descriptor, qint64 bytes, Sha256& digest);
    /// Gives up.
    ~TrailingDigest();
    TrailingDigest(const TrailingDigest&) = delete;
    TrailingDigest& operator=(const TrailingDigest&) = delete;

    /// Says how much has been written by now.
    void reach(qint64 bytes);

    /// Waits until the digest has all that was written; afterwards it is the caller's. The error is
    /// why the file could not be read.
    [[nodiscard]] FileOutcome finish();

private:
    void run();
    [[nodiscard]] FileOutcome add(qint64 bytes);
    void end(bool isAbandoned);

    const int m_descriptor;
    Sha256& m_digest;  ///< of the thread, as are the next two
    qint64 m_digestedBytes;
    QByteArray m_piece;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    qint64 m_writtenBytes;  ///< guarded by m_mutex, as are the next three
    bool m_isComplete = false;
    bool m_isAbandoned = false;
    FileOutcome m_outcome;
    std::thread m_thread;
};

}  // namespace quietlark
