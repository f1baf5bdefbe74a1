#include "platform/linux/processor/linux_processor.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

#include "fakes/fake_processor.h"

namespace quietlark {
namespace {

/// A kernel whose files the test writes.
class LinuxProcessorTest : public testing::Test {
protected:
    void cpuinfo(const QByteArray& content) { write(QStringLiteral("cpuinfo"), content); }
    void deviceTree(const QByteArray& compatible) {
        ASSERT_TRUE(QDir(proc.path()).mkpath(QStringLiteral("device-tree")));
        write(QStringLiteral("device-tree/compatible"), compatible);
    }
    [[nodiscard]] QString brand() const { return LinuxProcessor(proc.path()).brandString(); }

    QTemporaryDir proc;

private:
    void write(const QString& name, const QByteArray& content) {
        QFile file(proc.filePath(name));
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(content);
    }
};

TEST_F(LinuxProcessorTest, TheBrandIsTheModelNameOfTheFirstProcessor) {
    cpuinfo(
        "processor\t: 0\nvendor_id\t: GenuineIntel\nmodel\t\t: 142\n"
        "model name\t: Intel(R) Core(TM) i7-8557U CPU @ 1.70GHz\nstepping\t: 10\n\n"
        "processor\t: 1\nmodel name\t: Another\n");
    EXPECT_EQ(brand().trimmed(), QStringLiteral("Intel(R) Core(TM) i7-8557U CPU @ 1.70GHz"));
}

TEST_F(LinuxProcessorTest, AColonInTheNameIsPartOfIt) {
    cpuinfo("model name\t: Maker: Model 7\n");
    EXPECT_EQ(brand().trimmed(), QStringLiteral("Maker: Model 7"));
}

TEST_F(LinuxProcessorTest, TheBrandEndsAtANul) {
    cpuinfo(QByteArray("model name\t: Model 7\0rest\n", 26));
    EXPECT_EQ(brand().trimmed(), QStringLiteral("Model 7"));
}

TEST_F(LinuxProcessorTest, AppleHardwareIsKnownByItsDeviceTree) {
    cpuinfo("processor\t: 0\nBogoMIPS\t: 48.00\nCPU implementer\t: 0x61\nCPU part\t: 0x032\n");
    deviceTree(QByteArray("apple,j414s\0apple,t6020\0apple,arm-platform\0", 42));
    EXPECT_EQ(brand(), QStringLiteral("Apple M2 Pro"));
}

TEST_F(LinuxProcessorTest, AnotherBoardsDeviceTreeLeavesTheModelName) {
    cpuinfo("model name\t: ARMv7 Processor rev 3 (v7l)\n");
    deviceTree(QByteArray("raspberrypi,4-model-b\0brcm,bcm2711\0", 35));
    EXPECT_EQ(brand().trimmed(), QStringLiteral("ARMv7 Processor rev 3 (v7l)"));
}

TEST_F(LinuxProcessorTest, AKernelThatNamesNoModelGivesNothing) {
    cpuinfo("processor\t: 0\nBogoMIPS\t: 50.00\nFeatures\t: fp asimd\n");
    EXPECT_EQ(brand(), QString());
}

TEST_F(LinuxProcessorTest, WithoutTheKernelsFilesThereIsNoBrand) {
    EXPECT_EQ(brand(), QString());
}

TEST(LinuxProcessorHereTest, ThisComputersBrandIsAmongTheKernelsModelNames) {
    QFile file(QStringLiteral("/proc/cpuinfo"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray cpuinfo = file.readAll();
    const QString brand = LinuxProcessor().brandString();
    const bool isNamed = cpuinfo.contains("model name");
    EXPECT_TRUE(!isNamed || !brand.isEmpty());
    EXPECT_TRUE(!isNamed || cpuinfo.contains("model name\t:" + brand.toUtf8() + '\n'));
}

/// What every processor keeps to, the fake's included.
void keepsItsPromises(const Processor& processor) {
    const QString brand = processor.brandString();
    EXPECT_FALSE(brand.contains(u'\n'));
    EXPECT_FALSE(brand.contains(QChar(u'\0')));
    EXPECT_EQ(processor.brandString(), brand);
}

TEST(ProcessorContractTest, TheBrandIsOneLineAndStaysTheSame) {
    keepsItsPromises(LinuxProcessor());
    keepsItsPromises(FakeProcessor("Apple M2 Pro"));
    keepsItsPromises(FakeProcessor());
}

}  // namespace
}  // namespace quietlark
