#include "local_server/trailing_digest.h"

#include <algorithm>
#include <cerrno>
#include <system_error>

#include <unistd.h>

namespace quietlark {

namespace {

// Fits into a processor's cache, and is worth waking a thread for.
constexpr qint64 pieceBytes = 256 * 1024;

}  // namespace

TrailingDigest::TrailingDigest(int descriptor, qint64 bytes, Sha256& digest)
    : m_descriptor(descriptor),
      m_digest(digest),
      m_digestedBytes(bytes),
      m_piece(pieceBytes, Qt::Uninitialized),
      m_writtenBytes(bytes),
      m_thread([this] { run(); }) {}

TrailingDigest::~TrailingDigest() {
    end(true);
}

void TrailingDigest::reach(qint64 bytes) {
    bool isPiece = false;
    {
        const std::lock_guard lock(m_mutex);
        isPiece = m_writtenBytes / pieceBytes != bytes / pieceBytes;
        m_writtenBytes = bytes;
    }
    if (isPiece) m_changed.notify_one();
}

FileOutcome TrailingDigest::finish() {
    end(false);
    return m_outcome;
}

void TrailingDigest::end(bool isAbandoned) {
    {
        const std::lock_guard lock(m_mutex);
        m_isComplete = true;
        m_isAbandoned = isAbandoned;
    }
    m_changed.notify_one();
    if (m_thread.joinable()) m_thread.join();
}

void TrailingDigest::run() {
    std::unique_lock lock(m_mutex);
    while (m_outcome) {
        m_changed.wait(lock, [this] {
            return m_isComplete || m_writtenBytes - m_digestedBytes >= pieceBytes;
        });
        const qint64 bytes = std::min(pieceBytes, m_writtenBytes - m_digestedBytes);
        if (m_isAbandoned || bytes == 0) return;
        lock.unlock();
        FileOutcome outcome = add(bytes);
        lock.lock();
        m_outcome = std::move(outcome);
    }
}

FileOutcome TrailingDigest::add(qint64 bytes) {
    for (qint64 done = 0; done < bytes;) {
        const auto wanted = static_cast<size_t>(bytes - done);
        const ssize_t count = ::pread(m_descriptor, m_piece.data(), wanted, m_digestedBytes);
        if (count <= 0) {
            const int reason = count == 0 ? EIO : errno;
            return tl::unexpected(QString::fromStdString(std::generic_category().message(reason)));
        }
        m_digest.add(QByteArrayView(m_piece.constData(), count));
        m_digestedBytes += count;
        done += count;
    }
    return {};
}

}  // namespace quietlark
