#include "server/host_description.h"

#include <fstream>

#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace quietlark {

TEST(HostDescriptionTest, ClientsOnThisComputerUseAnAddressThatTheyCanReach) {
    EXPECT_EQ(localAddress("127.0.0.1", 80), "127.0.0.1:80");
    EXPECT_EQ(localAddress("0.0.0.0", 80), "127.0.0.1:80");
    EXPECT_EQ(localAddress("::", 80), "127.0.0.1:80");
    EXPECT_EQ(localAddress("::1", 80), "[::1]:80");
}

TEST(HostDescriptionTest, TheComputerHasANameWithoutADomain) {
    EXPECT_FALSE(computerName().empty());
    EXPECT_EQ(computerName().find('.'), std::string::npos);
}

TEST(HostDescriptionTest, TheProcessorSaysWhatItIs) {
    const QTemporaryDir folder;
    const std::string file = folder.filePath(QStringLiteral("cpuinfo")).toStdString();
    EXPECT_EQ(processorName(file), "");
    std::ofstream(file) << "processor\t: 0\nmodel\t\t: 7\nmodel name\t: Fast CPU @ 3.00GHz\n";
    EXPECT_EQ(processorName(file), "Fast CPU @ 3.00GHz");
}

}  // namespace quietlark
