// The sample mainframe: its image and its definitions, each held against values worked out by hand.
#include <filesystem>
#include <sstream>

#include "tests/support/board.h"

namespace
{

const std::filesystem::path sample = std::filesystem::path(VELK_EXAMPLES_DIR) / "vxi";

// A copy of the sample, which names its accessor by a path: a plain name is not found by every build.
struct Sample : Desk {
    Sample()
    {
        std::filesystem::copy(sample, directory.path);
        EXPECT_EQ(Start(Edited(ReadFile((sample / "CfgClass.ini").string()), "velkimage\n",
                               VELK_TEST_MODULE_DIR "/velkimage\n")),
                  0);
        EXPECT_EQ(Open("VxiDevice"), 0);
    }
};

} // namespace

TEST(VxiExample, ReadsAsWorkedOutByHand)
{
    const std::string names =
        "#DeviceClass #AddressSpace #Manufacturer #ModelCode #ModelCodeA16 #MemoryActive "
        "#ModuleSelected #Averages #Ready #Passed #SysfailInhibit #Reset #MemoryCode "
        "#RequiredMemory #TotalMemory #MemoryOffset MemoryOffset Label TriggerLines";
    static const std::pair<uint32_t, const char *> devices[] = {
        {0, "3 3 a1 a0 a0 0 0 1 1 1 0 0 0 0 0 0 0 SLOT 0 "},
        {8, "3 0 a1 123 b123 1 0 10 1 1 0 0 b 1000 10000 2000 2000 DIGITIZER 0,3"},
        {24, "3 1 a2 345 b345 1 0 4 1 1 0 0 b 100000 400000 2000 2000 WAVEFORM STORE 1 0,1,2,3,4,5,6,7"},
        {96, "3 3 a2 260 2260 0 1 40 1 1 0 0 2 0 0 abcd 0 SWITCH 5"},
        {192, "3 0 a3 456 f456 0 0 1 0 0 1 1 f 100 100 0 0 COUNTER "},
    };
    const Sample vxi;
    for (const auto &[address, values] : devices) {
        ASSERT_EQ(vxi.Load(address), 0);
        EXPECT_EQ(vxi.Run(names), values);
    }
}

TEST(VxiExample, SetsMoveTheBitsThatTheStandardNames)
{
    // Address, command, and the registers Id, DeviceType, StatusControl and Offset then.
    static const std::tuple<uint32_t, const char *, const char *> rows[] = {
        {8, "AddressSpace=1", "d0a1 f123 c02c 2000"}, // from A24 to A32: at least 64 KiB, m = 15
        {8, "AddressSpace=3", "f0a1 123 402c 2000"},  // to A16: no memory, off
        {96, "AddressSpace=0", "c0a2 f260 3c 0"},     // from A16 to A24: at least 256 bytes, m = 15
        {8, "AddressSpace=2", "f0a1 123 402c 2000"},  // the reserved space goes to the next one
        {8, "Memory=-1", "c0a1 123 c02c 2000"},       // the largest of A24
        {24, "Memory=-1", "d0a2 345 c01c 2000"},      // the largest of A32
        {8, "Memory=5000", "c0a1 a123 c02c 2000"},    // the next size
        {8, "Offline=1", "c0a1 b123 c02f 2000"},      // two bits
        {8, "Averages=64", "c0a1 b123 c03c 2000"},    // the fourth choice
        {8, "Manufacturer=1", "c0a1 b123 c02c 2000"}, // the maker's settings stay
        {192, "Passed=1", "c0a3 f456 4003 0"},        // so does the self test
        {96, "MemoryOffset=1", "f0a2 2260 3c abcd"},  // no offset without memory
        // A size of 2^(23-7) = 65536 bytes, all that is fitted. The reserved space has none to offer.
        {8, "#RequiredMemory=-1", "c0a1 7123 c02c 2000"},
        {8, "#AddressSpace=2 Memory=5000", "e0a1 b123 c02c 2000"},
    };
    const Sample vxi;
    for (const auto &[address, command, registers] : rows) {
        SCOPED_TRACE(command);
        ASSERT_EQ(vxi.Load(address), 0);
        EXPECT_EQ(vxi.Run(command).find_first_not_of("0 "), std::string::npos);
        std::ostringstream words;
        for (uint32_t n = 0; n < 4; ++n)
            words << std::hex << (n == 0 ? "" : " ") << TableOf(vxi.config)->regs[n].value;
        EXPECT_EQ(words.str(), registers);
    }
}

TEST(VxiExample, AFailedDeviceDrivesNoTriggerLine)
{
    const Sample vxi;
    for (const auto &[address, lines] : {std::pair{8U, "0 4"}, {192U, "0 "}}) {
        ASSERT_EQ(vxi.Load(address), 0);
        EXPECT_EQ(vxi.Run("TriggerLines=(4 TriggerLines"), lines);
    }
}
