#pragma once

#include <memory>
#include <optional>

#include <QByteArray>
#include <QByteArrayView>
#include <QFile>

#include "local_server/checkpoints.h"
#include "local_server/model_files.h"
#include "local_server/model_source.h"
#include "local_server/resume_data.h"
#include "local_server/trailing_digest.h"
#include "platform/durable_file.h"
#include "platform/sha256.h"

namespace quietlark {

/// The part of the model that is here: its bytes, their digest, and what is needed to continue. Not
/// the main thread: it waits for the disk. Nobody else uses these files meanwhile.
class ReceivedModel {
public:
    /// Of a download from `source`. Touches nothing yet.
    ReceivedModel(ModelFiles files, const ModelSource& source);
    /// Keeps what can be continued, as far as it has been saved.
    ~ReceivedModel();
    ReceivedModel(const ReceivedModel&) = delete;
    ReceivedModel& operator=(const ReceivedModel&) = delete;

    /// Finds what an earlier attempt has left, drops what is of no use. Where no digest tells in
    /// the end whether all of it is right, a byte at least is left for a server to confirm the
    /// length.
    void restore();
    /// Puts the next piece of what was restored into the digest; false when there is none left.
    /// Anything that cannot be read is as if it had not been received.
    [[nodiscard]] bool hashNextPiece();

    [[nodiscard]] qint64 bytes() const { return m_bytes; }
    /// Length of the whole model, as far as a server has said.
    [[nodiscard]] std::optional<qint64> totalBytes() const { return m_data.totalBytes; }
    [[nodiscard]] const QByteArray& validator() const { return m_data.validator; }

    /// Forgets everything and gets ready for a model from its first byte on. Without a validator
    /// it cannot be continued later.
    [[nodiscard]] FileOutcome beginAnew(const QByteArray& validator,
                                        std::optional<qint64> totalBytes);
    /// Gets ready for the rest of what was restored.
    [[nodiscard]] FileOutcome beginRest(qint64 totalBytes);
    [[nodiscard]] FileOutcome append(QByteArrayView bytes);

    /// Makes all of it survive a power cut; answers its SHA-256 digest in hexadecimal digits.
    [[nodiscard]] tl::expected<QByteArray, QString> seal();
    /// Saves everything for a later attempt.
    void keep();
    /// Removes everything.
    void discard();

private:
    [[nodiscard]] bool findResumeData();
    void forget();
    [[nodiscard]] FileOutcome openAt(qint64 bytes);
    void startWork();
    [[nodiscard]] FileOutcome saveAll();
    /// Answers why a save failed.
    [[nodiscard]] FileOutcome stopWork();
    /// After a failed save: what the system may have lost is fetched again, though it can still be
    /// read as long as there is memory for it.
    void dropUnsaved();

    const ModelFiles m_files;
    const std::optional<qint64> m_knownBytes;  ///< length of the whole model
    const bool m_hasKnownDigest;
    ResumeData m_data;
    QFile m_file;
    qint64 m_bytes = 0;
    qint64 m_hashedBytes = 0;
    qint64 m_savedBytes = 0;  ///< survive a power cut
    Sha256 m_digest;
    // While bytes are appended:
    std::unique_ptr<TrailingDigest> m_trailing;
    std::unique_ptr<Checkpoints> m_checkpoints;  ///< of what can be continued
};

}  // namespace quietlark
