// SPDX-License-Identifier: BSL-1.0
// The unit under test is compiled here, over a tree of devices that the test creates.
#define AskDiskSerial AskDiskSerialHere
#include "platform/posix/disk.cpp"
#undef AskDiskSerial

#include <cerrno>
#include <filesystem>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "support/platform/posix/fault.h"
#include "support/temp_folder.h"

namespace {

namespace fs = std::filesystem;
using namespace std::string_literals;

// Devices as the system shows them: a disk contains its partitions, and layers name the devices below them.
class Disk : public testing::Test {
protected:
    void MakeLayer(std::string_view layer, std::string_view lower) const {
        fs::create_directories(Device(layer) / "slaves");
        fs::create_directory_symlink(Device(lower), Device(layer) / "slaves" / fs::path(lower).filename());
    }
    fs::path Device(std::string_view name) const { return temp.Path() / name; }

    std::string SerialOf(std::string_view device) const {
        std::string serial;
        const unsigned int failure = IO::Platform::SerialShown(IO::Platform::DiskBelow(temp.Name(device)), &serial);
        return failure == 0 ? serial : "failure " + std::to_string(failure);
    }

    eTempFolder temp;
};

} // namespace

TEST_F(Disk, ShowsItsSerialNumberInOneOfThreePlaces) {
    temp.Write("vda/serial", "virtual\n");
    temp.Write("nvme0n1/device/serial", "  first\n");
    temp.Write("sda/device/vpd_pg80", "\0\x80\0\5S1234rest"s);
    EXPECT_EQ("virtual", SerialOf("vda"));
    EXPECT_EQ("  first", SerialOf("nvme0n1"));
    EXPECT_EQ("S1234", SerialOf("sda"));
    temp.Write("sda/device/serial", "plain");
    EXPECT_EQ("plain", SerialOf("sda"));
    temp.Write("sda/serial", "plainer");
    EXPECT_EQ("plainer", SerialOf("sda"));
    temp.Write("sda/serial", "\n\n");
    EXPECT_EQ("", SerialOf("sda"));
}

TEST_F(Disk, ThatShowsNoneGivesTheSystemsReason) {
    temp.Write("sda/size", "4096\n");
    EXPECT_EQ("failure " + std::to_string(ENOENT), SerialOf("sda"));
    EXPECT_EQ("failure " + std::to_string(ENOENT), SerialOf("missing"));
}

TEST_F(Disk, IsFoundFromItsPartition) {
    temp.Write("sda/device/serial", "whole\n");
    temp.Write("sda/sda2/partition", "2\n");
    EXPECT_EQ("whole", SerialOf("sda/sda2"));
}

TEST_F(Disk, IsFoundBelowTheLayersThatStandOnIt) {
    temp.Write("sda/device/serial", "lowest\n");
    temp.Write("sda/sda2/partition", "2\n");
    MakeLayer("dm-0", "sda/sda2");
    MakeLayer("dm-1", "dm-0");
    EXPECT_EQ("lowest", SerialOf("dm-0"));
    EXPECT_EQ("lowest", SerialOf("dm-1"));
    temp.Write("vda/serial", "no partition\n");
    MakeLayer("dm-2", "vda");
    EXPECT_EQ("no partition", SerialOf("dm-2"));
}

TEST_F(Disk, IsNotSoughtThroughLayersWithoutEnd) {
    MakeLayer("dm-0", "dm-0");
    EXPECT_EQ("failure " + std::to_string(ENOENT), SerialOf("dm-0"));
}

TEST_F(Disk, OfTheRootIsUnknownWithTheSystemsErrorWhereTheRootCannotBeAskedAbout) {
    if (!eFault::ReachesLibraries())
        GTEST_SKIP() << "calls do not pass through the test program";
    const eFault fault("stat", EACCES);
    std::string serial;
    EXPECT_EQ(static_cast<unsigned int>(EACCES), IO::Platform::AskDiskSerialHere(&serial));
    EXPECT_EQ("", serial);
}
