// The definitions of the sample mainframe: what sets do to its registers, against values worked out by hand.
// What it reads as is in the sessions of velk.
#include <filesystem>
#include <sstream>

#include "tests/support/board.h"

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
    Desk vxi;
    std::filesystem::copy(VELK_EXAMPLES_DIR "/vxi", vxi.directory.path);
    // A plain name of the accessor is not found by every build.
    const std::string path = VELK_TEST_MODULE_DIR "/velkimage\n";
    EXPECT_EQ(vxi.Start(Edited(vxi.directory.Read("CfgClass.ini"), "velkimage\n", path)), 0);
    ASSERT_EQ(vxi.Open("VxiDevice"), 0);
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
