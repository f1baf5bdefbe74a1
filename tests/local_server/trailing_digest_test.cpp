#include "local_server/trailing_digest.h"

#include <QCryptographicHash>
#include <QTemporaryFile>
#include <gtest/gtest.h>

namespace quietlark {

namespace {

class TrailingDigestTest : public testing::Test {
protected:
    TrailingDigestTest() { EXPECT_TRUE(m_file.open()); }

    void write(const QByteArray& bytes) {
        m_file.write(bytes);
        m_file.flush();
        m_content += bytes;
    }
    [[nodiscard]] QByteArray expected() const {
        return QCryptographicHash::hash(m_content, QCryptographicHash::Sha256).toHex();
    }

    QTemporaryFile m_file;
    QByteArray m_content;
    Sha256 m_digest;
};

}  // namespace

TEST_F(TrailingDigestTest, FollowsAFileThatGrows) {
    TrailingDigest trailing(m_file.handle(), 0, m_digest);
    for (int length = 1; length < 400'000; length *= 3) {
        write(QByteArray(length, static_cast<char>(length)));
        trailing.reach(m_content.size());
    }
    EXPECT_TRUE(trailing.finish());
    EXPECT_EQ(m_digest.takeHex(), expected());
}

TEST_F(TrailingDigestTest, GoesOnFromWhatWasDigestedBefore) {
    write("01234");
    m_digest.add("01234");
    TrailingDigest trailing(m_file.handle(), 5, m_digest);
    write("56789");
    trailing.reach(10);
    EXPECT_TRUE(trailing.finish());
    EXPECT_EQ(m_digest.takeHex(), expected());
}

TEST_F(TrailingDigestTest, AFileThatCannotBeReadIsAFailure) {
    TrailingDigest trailing(m_file.handle(), 0, m_digest);
    trailing.reach(10);
    EXPECT_EQ(trailing.finish().error(), QStringLiteral("Input/output error"));
}

TEST_F(TrailingDigestTest, CanBeGivenUp) {
    write(QByteArray(3'000'000, 'x'));
    TrailingDigest trailing(m_file.handle(), 0, m_digest);
    trailing.reach(3'000'000);
}

}  // namespace quietlark
