#include "local_server/model_status.h"

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
    const qint64 bytes = data->reliableBytes(QFileInfo(files.received()).size(), bootSession());
    if (bytes == 0) return {};
    return {Case::incomplete, bytes, data->totalBytes};
}

}  // namespace quietlark
