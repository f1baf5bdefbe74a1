#include "platform/qt/upload_body.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace quietlark {

UploadBody::UploadBody(QByteArray body, std::function<void()> onConnected)
    : m_body(std::move(body)), m_onConnected(std::move(onConnected)) {
    // Unbuffered, so that pos() is the position in the body.
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

bool UploadBody::reset() {
    return std::exchange(m_restartIsAllowed, false) && seek(0);
}

qint64 UploadBody::readData(char* data, qint64 maxBytes) {
    if (pos() == 0) m_onConnected();
    const qint64 count = std::min(maxBytes, m_body.size() - pos());
    if (count <= 0) return 0;
    std::memcpy(data, m_body.constData() + pos(), static_cast<std::size_t>(count));
    return count;
}

qint64 UploadBody::writeData(const char*, qint64) {
    return -1;
}

}  // namespace quietlark
