#pragma once

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "transcription/endpoint_file.h"

namespace quietlark {

/// An endpoint file of the test's own.
class EndpointFileFixture : public testing::Test {
protected:
    void write(const QByteArray& content) const {
        QFile file(m_path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
        file.setPermissions(QFile::ReadOwner | QFile::WriteOwner);
    }

    QTemporaryDir m_directory;
    QString m_path = m_directory.filePath(QStringLiteral("endpoint"));
    EndpointFile m_endpointFile{m_path};
};

}  // namespace quietlark
