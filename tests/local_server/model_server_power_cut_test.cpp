#include <atomic>
#include <thread>

#include <QPointer>
#include <sys/syscall.h>
#include <unistd.h>

#include "local_server/checkpoints.h"
#include "local_server/model_server_fixture.h"
#include "local_server/resume_data.h"

namespace {

std::atomic<std::chrono::milliseconds> g_syncTime{std::chrono::milliseconds(0)};

}  // namespace

/// In the place of the system's, so that a disk can be as slow as a test wants.
extern "C" int fdatasync(int descriptor) {
    std::this_thread::sleep_for(g_syncTime.load());
    return static_cast<int>(::syscall(SYS_fdatasync, descriptor));
}

namespace quietlark {

namespace {

using namespace std::chrono_literals;

/// What would have to be fetched again if the power were cut now.
class ModelServerPowerCutTest : public ModelServerFixture {
protected:
    ModelServerPowerCutTest() {
        m_model = someBytes(6 * mebibyte + 17);
        m_source.sha256 = sha256(m_model);
        serverDoes([this](QTcpSocket& socket) {
            m_socket = &socket;
            send(socket, m_model.size());
        });
    }
    ~ModelServerPowerCutTest() override { g_syncTime = 0ms; }

    /// Of the model, as far as it has reached this computer and is not surely on its disk.
    [[nodiscard]] qint64 unsavedBytes() const {
        const qint64 arrived = m_model.size() - m_socket->bytesToWrite() - bytesOnTheWay(*m_socket);
        const auto record = ResumeData::read(m_files.resume());
        return record ? arrived - record->syncedBytes : 0;
    }

    QPointer<QTcpSocket> m_socket;
};

}  // namespace

TEST_F(ModelServerPowerCutTest, HoweverSlowTheDiskAPowerCutCostsAtMostAMebibyte) {
    for (const auto syncTime : {1ms, 20ms}) {
        g_syncTime = syncTime;
        QFile::remove(m_files.active());
        qint64 worst = 0;
        start();
        ASSERT_TRUE(waitUntil([&] {
            if (m_socket) worst = std::max(worst, unsavedBytes());
            return m_downloader->state().kind == State::Case::ready;
        }));
        EXPECT_LE(worst, mebibyte) << syncTime.count();
        RecordProperty("worst" + std::to_string(syncTime.count()), static_cast<int>(worst));
        EXPECT_GT(worst, Checkpoints::strideBytes) << syncTime.count();
    }
    EXPECT_TRUE(isInstalled());
}

}  // namespace quietlark
