#include "local_server/model_status.h"

#include "local_server/model_download_fixture.h"

namespace quietlark {

namespace {

using ModelStatusTest = ModelDownloadFixture;
using Status = ModelStatus::Case;

}  // namespace

TEST_F(ModelStatusTest, AModelIsMissingWithoutAnyFile) {
    EXPECT_EQ(ModelStatus::read(m_files), ModelStatus{});
}

TEST_F(ModelStatusTest, WhatWasReceivedIsIncomplete) {
    leave("01234");
    EXPECT_EQ(ModelStatus::read(m_files), (ModelStatus{Status::incomplete, 5, 10}));
}

TEST_F(ModelStatusTest, WhatCannotBeContinuedIsMissing) {
    leave("01234");
    write(m_files.resume(), "garbage");
    EXPECT_EQ(ModelStatus::read(m_files), ModelStatus{});
    leave("");
    EXPECT_EQ(ModelStatus::read(m_files), ModelStatus{});
}

TEST_F(ModelStatusTest, TheModelIsInstalled) {
    write(m_files.active(), "0123456789");
    EXPECT_EQ(ModelStatus::read(m_files), (ModelStatus{Status::installed, 10, 10}));
}

TEST_F(ModelStatusTest, AnInstallThatWasBrokenOffIsIncomplete) {
    leave("0123456789");
    ASSERT_TRUE(QFile::rename(m_files.received(), m_files.partial()));
    EXPECT_EQ(ModelStatus::read(m_files), (ModelStatus{Status::incomplete, 10, 10}));
}

}  // namespace quietlark
