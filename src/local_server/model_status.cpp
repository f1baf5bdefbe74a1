#include "local_server/model_status.h"

#include <algorithm>

#include <QFileInfo>

#include "local_server/resume_data.h"
#include "platform/boot_session.h"

namespace quietlark {

ModelStatus ModelStatus::read(const ModelFiles& files) {
    if (files.isInstalled()) {
        const qint64 bytes = QFileInfo(files.active()).size();
        return {Case::installed, bytes, bytes};
    }
    const auto data = ResumeData::read(files.resume());
    if (!data) return {};
    // An install that was broken off has moved it on.
    const qint64 fileBytes =
        std::max(QFileInfo(files.received()).size(), QFileInfo(files.partial()).size());
    const qint64 bytes = data->reliableBytes(fileBytes, bootSession());
    if (bytes == 0) return {};
    return {Case::incomplete, bytes, data->totalBytes};
}

}  // namespace quietlark
