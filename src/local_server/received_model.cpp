#include "local_server/received_model.h"

#include <algorithm>
#include <utility>

#include "platform/boot_session.h"

namespace quietlark {

namespace {

constexpr qint64 hashPieceBytes = 4 * 1024 * 1024;

FileOutcome save(int descriptor, const QString& path, ResumeData data, qint64 bytes) {
    // In this order, so that the record never promises more than the disk has.
    return syncFile(descriptor).and_then([&] {
        data.syncedBytes = bytes;
        return rewriteFileDurably(path, data.toJson());
    });
}

}  // namespace

ReceivedModel::ReceivedModel(ModelFiles files, const ModelSource& source)
    : m_files(std::move(files)),
      m_knownBytes(source.lengthBytes),
      m_hasKnownDigest(source.sha256.has_value()),
      m_file(m_files.received()) {
    m_data.url = source.address();
}

ReceivedModel::~ReceivedModel() {
    static_cast<void>(stopWork());
    if (m_file.isOpen() && m_data.validator.isEmpty()) m_file.remove();
}

void ReceivedModel::restore() {
    removeLeftover(m_files.resume());
    if (!findResumeData() || !m_file.open(QIODevice::ReadOnly | QIODevice::Unbuffered)) {
        return discard();
    }
    m_bytes = m_data.reliableBytes(m_file.size(), bootSession());
    m_savedBytes = std::min(m_data.syncedBytes, m_bytes);
    if (!m_data.totalBytes) return;
    if (m_bytes > *m_data.totalBytes) return discard();
    if (!m_hasKnownDigest) m_bytes = std::clamp<qint64>(*m_data.totalBytes - 1, 0, m_bytes);
}

bool ReceivedModel::findResumeData() {
    const auto data = ResumeData::read(m_files.resume());
    if (!data || data->url != m_data.url) return false;
    if (m_knownBytes && data->totalBytes.value_or(*m_knownBytes) != *m_knownBytes) return false;
    m_data = *data;
    // An install that was broken off has moved it on. It is verified again before it is used.
    if (!m_file.exists()) return replaceFile(m_files.partial(), m_files.received()).has_value();
    return true;
}

bool ReceivedModel::hashNextPiece() {
    if (m_hashedBytes == m_bytes) return false;
    const QByteArray piece = m_file.read(std::min(hashPieceBytes, m_bytes - m_hashedBytes));
    if (piece.isEmpty()) {
        discard();
        return false;
    }
    m_digest.add(piece);
    m_hashedBytes += piece.size();
    return true;
}

FileOutcome ReceivedModel::beginAnew(const QByteArray& validator,
                                     std::optional<qint64> totalBytes) {
    static_cast<void>(stopWork());
    // First, so that it never describes a file that it does not belong to.
    forget();
    m_data = {m_data.url, validator, totalBytes, 0, bootSession()};
    return openAt(0).and_then([this] {
        startWork();
        if (m_data.validator.isEmpty()) return FileOutcome();
        return writeFileDurably(m_files.resume(), m_data.toJson());
    });
}

FileOutcome ReceivedModel::beginRest(qint64 totalBytes) {
    m_data.totalBytes = totalBytes;
    m_data.bootSession = bootSession();
    return openAt(m_bytes).and_then([this] { return saveAll(); }).map([this] { startWork(); });
}

FileOutcome ReceivedModel::openAt(qint64 bytes) {
    m_file.close();
    if (!m_file.open(QIODevice::ReadWrite | QIODevice::Unbuffered) || !m_file.resize(bytes) ||
        !m_file.seek(bytes)) {
        return tl::unexpected(m_file.errorString());
    }
    m_bytes = bytes;
    m_hashedBytes = bytes;
    return {};
}

void ReceivedModel::startWork() {
    m_trailing = std::make_unique<TrailingDigest>(m_file.handle(), m_bytes, m_digest);
    if (m_data.validator.isEmpty()) return;
    m_checkpoints = std::make_unique<Checkpoints>(
        m_bytes, [descriptor = m_file.handle(), path = m_files.resume(),
                  data = m_data](qint64 bytes) { return save(descriptor, path, data, bytes); });
}

FileOutcome ReceivedModel::saveAll() {
    const FileOutcome saved = save(m_file.handle(), m_files.resume(), m_data, m_bytes);
    if (saved) {
        m_savedBytes = m_bytes;
    } else {
        dropUnsaved();
    }
    return saved;
}

FileOutcome ReceivedModel::stopWork() {
    m_trailing.reset();
    if (!m_checkpoints) return {};
    const FileOutcome saved = m_checkpoints->stop();
    m_savedBytes = m_checkpoints->savedBytes();
    m_checkpoints.reset();
    if (!saved) dropUnsaved();
    return saved;
}

void ReceivedModel::dropUnsaved() {
    if (!m_file.resize(m_savedBytes)) QFile::remove(m_files.resume());
    m_bytes = std::min(m_bytes, m_savedBytes);
}

FileOutcome ReceivedModel::append(QByteArrayView bytes) {
    for (qint64 written = 0; written < bytes.size();) {
        // A disk that is getting full takes a part first.
        const qint64 count = m_file.write(bytes.data() + written, bytes.size() - written);
        if (count <= 0) return tl::unexpected(m_file.errorString());
        written += count;
    }
    m_bytes += bytes.size();
    m_hashedBytes = m_bytes;
    m_trailing->reach(m_bytes);
    return m_checkpoints ? m_checkpoints->reach(m_bytes) : FileOutcome();
}

tl::expected<QByteArray, QString> ReceivedModel::seal() {
    const FileOutcome digested = m_trailing ? m_trailing->finish() : FileOutcome();
    return stopWork()
        .and_then([&] { return digested; })
        .and_then([this] { return syncFile(m_file.handle()); })
        .map_error([this](const QString& reason) {
            dropUnsaved();
            return reason;
        })
        .map([this] { return m_digest.takeHex(); });
}

void ReceivedModel::keep() {
    if (!stopWork() || !m_file.isOpen() || m_data.validator.isEmpty()) return;
    // What cannot be saved is fetched again.
    static_cast<void>(saveAll());
}

void ReceivedModel::discard() {
    static_cast<void>(stopWork());
    forget();
    m_file.remove();
}

void ReceivedModel::forget() {
    QFile::remove(m_files.resume());
    removeLeftover(m_files.resume());
    m_data = {m_data.url, {}, {}, 0, {}};
    m_bytes = 0;
    m_hashedBytes = 0;
    m_savedBytes = 0;
    static_cast<void>(m_digest.takeHex());
}

}  // namespace quietlark
