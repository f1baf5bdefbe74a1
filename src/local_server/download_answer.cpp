#include "local_server/download_answer.h"

#include <algorithm>
#include <limits>

#include <QCoreApplication>
#include <QRegularExpression>

namespace quietlark {

namespace {

struct Sentences {
    Q_DECLARE_TR_FUNCTIONS(DownloadAnswer)

public:
    static QString status(int status, const QString& address) {
        return QStringLiteral("HTTP %1 from ").arg(status) + address;
    }
    static QString encoded(const QString& coding) {
        return tr("The server sent the model in a coding that was not asked for (%1).").arg(coding);
    }
    static QString otherLength(qint64 offered, qint64 expected) {
        return tr("The server offers %1 bytes, but the model has %2.").arg(offered).arg(expected);
    }
    static QString endUnknown() {
        return tr(
            "The server does not say how long the model is, so that nobody could tell "
            "whether it arrived whole.");
    }
};

struct ContentRange {
    qint64 first = 0;
    qint64 last = 0;
    std::optional<qint64> total;
};

std::optional<ContentRange> contentRange(const HttpHead& head) {
    static const QRegularExpression form(QStringLiteral("^bytes +(\\d+)-(\\d+)/(\\d+|\\*)$"));
    const auto match = form.match(QString::fromLatin1(head.header("Content-Range").value_or("")));
    if (!match.hasMatch()) return std::nullopt;
    bool areNumbers[3] = {true, true, true};
    ContentRange range{match.captured(1).toLongLong(&areNumbers[0]),
                       match.captured(2).toLongLong(&areNumbers[1]), std::nullopt};
    if (match.captured(3) != u'*') range.total = match.captured(3).toLongLong(&areNumbers[2]);
    if (!areNumbers[0] || !areNumbers[1] || !areNumbers[2]) return std::nullopt;
    if (range.last < range.first || range.last == std::numeric_limits<qint64>::max()) {
        return std::nullopt;
    }
    return range;
}

std::optional<qint64> contentLength(const HttpHead& head) {
    bool isNumber = false;
    const qint64 length = head.header("Content-Length").value_or("").toLongLong(&isNumber);
    if (!isNumber || length < 0) return std::nullopt;
    return length;
}

bool isText(const QByteArray& value) {
    return std::all_of(value.begin(), value.end(),
                       [](char character) { return character >= ' ' && character <= '~'; });
}

QByteArray strongEntityTag(const HttpHead& head) {
    const QByteArray tag = head.header("ETag").value_or("");
    // A weak tag stands for the same meaning, not for the same bytes.
    return tag.startsWith('"') && isText(tag) ? tag : QByteArray();
}

QByteArray validator(const HttpHead& head) {
    const QByteArray tag = strongEntityTag(head);
    if (!tag.isEmpty()) return tag;
    const QByteArray date = head.header("Last-Modified").value_or("");
    return isText(date) ? date : QByteArray();
}

/// Also of a server that answers ranges without looking at If-Range. A tag must be said again (RFC
/// 9110, 15.3.7), unless the digest will tell; a date need not be.
bool isSameEntity(const HttpHead& head, const ModelSource& source, const RangeAsked& asked) {
    const bool isTag = asked.validator.startsWith('"');
    const auto said = head.header(isTag ? "ETag" : "Last-Modified");
    return said ? *said == asked.validator : !isTag || source.sha256;
}

DownloadAnswer readRest(const HttpHead& head, const ModelSource& source, const RangeAsked& asked) {
    const auto range = contentRange(head);
    if (!range || range->first != asked.firstByte || !isSameEntity(head, source, asked)) {
        return OtherModel{};
    }
    const qint64 total = range->last + 1;
    const bool isToTheEnd = range->total.value_or(total) == total;
    const bool isSameTotal = asked.totalBytes.value_or(total) == total;
    const bool isWholeRange =
        contentLength(head).value_or(total - range->first) == total - range->first;
    const bool isEndKnown = range->total || asked.totalBytes;
    if (!isToTheEnd || !isSameTotal || !isWholeRange || !isEndKnown) return OtherModel{};
    return RestOfModel{total};
}

DownloadAnswer readWhole(const HttpHead& head, const ModelSource& source) {
    const auto length = contentLength(head);
    if (length && source.lengthBytes && *length != *source.lengthBytes) {
        return RefusedModel{Sentences::otherLength(*length, *source.lengthBytes)};
    }
    // Without a length a broken connection looks like the end, but for chunks, which have one.
    const bool isEndMarked = length || head.header("Transfer-Encoding") || source.sha256;
    if (!isEndMarked) return RefusedModel{Sentences::endUnknown()};
    return WholeModel{length, validator(head)};
}

}  // namespace

DownloadAnswer readAnswer(const HttpHead& head, const ModelSource& source,
                          const std::optional<RangeAsked>& asked) {
    if (asked && head.status == 416) return OtherModel{};
    const bool isRest = asked && head.status == 206;
    if (!isRest && head.status != 200) {
        return RefusedModel{Sentences::status(head.status, source.address())};
    }
    const QByteArray coding = head.header("Content-Encoding").value_or("identity");
    if (coding.compare("identity", Qt::CaseInsensitive) != 0) {
        return RefusedModel{Sentences::encoded(QString::fromLatin1(coding.left(20)))};
    }
    return isRest ? readRest(head, source, *asked) : readWhole(head, source);
}

}  // namespace quietlark
