// The sample mainframe: its image and its definitions, each held against values worked out by hand.
#include <stdlib.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "velk32.h"

namespace
{

const std::filesystem::path sample = std::filesystem::path(VELK_EXAMPLES_DIR) / "vxi";

std::string ReadFile(const std::filesystem::path &path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// A copy of the sample, which names its accessor by a path: a plain name is not found by every build.
class VxiExample : public testing::Test
{
  protected:
    void SetUp() override
    {
        char name[] = "/tmp/vxi-XXXXXX";
        directory = mkdtemp(name);
        std::filesystem::copy(sample, directory);
        std::string catalogue = ReadFile(sample / "CfgClass.ini");
        const std::string line = "Accessor = velkimage";
        const size_t at = catalogue.find(line);
        ASSERT_NE(at, std::string::npos);
        catalogue.replace(at, line.size(), "Accessor = " VELK_TEST_MODULE_DIR "/velkimage");
        std::ofstream(directory / "CfgClass.ini") << catalogue;

        ASSERT_EQ(VelkInitializeConfigEngine(directory.c_str(), &engine), 0);
        ASSERT_EQ(VelkCreateConfig(engine, "VxiDevice", &config), 0);
    }

    void TearDown() override
    {
        if (config != nullptr)
            VelkDiscardConfig(config);
        if (engine != nullptr)
            VelkCloseConfigEngine(engine);
        std::filesystem::remove_all(directory);
    }

    void Load(uint32_t address) const
    {
        ASSERT_EQ(VelkLoadCurrentConfig(config, address, 0), 0) << address;
    }

    [[nodiscard]] uint32_t Key(const char *name) const
    {
        VelkWord value = 0xBAD;
        EXPECT_EQ(VelkGetKey(config, name, &value), 0) << name;
        return static_cast<uint32_t>(value);
    }

    // The option's name in words, if its value has one, else the value.
    [[nodiscard]] std::string Show(const char *option) const
    {
        VelkWord value;
        int32_t kind;
        if (VelkGetOptionEx(config, option, -1, &value, &kind) < 0)
            return "unreadable";
        if (kind == ValueKindString)
            return reinterpret_cast<const char *>(value);
        if (kind == ValueKindList) {
            const List *list = reinterpret_cast<const List *>(value);
            std::string text;
            for (int32_t i = 0; i < list->count; ++i)
                text += "," + std::to_string(list->items[i]);
            return text;
        }
        char words[40];
        const std::string section = std::string("VxiDevice/") + option;
        const StatusCode status =
            VelkTranslateValue(config, section.c_str(), static_cast<uint32_t>(value), words, sizeof words);
        return status == 0 ? words : std::to_string(value);
    }

    std::filesystem::path directory;
    ConfigEngine *engine = nullptr;
    Config *config = nullptr;
};

TEST(VxiImage, IsTheTableOfItsBytes)
{
    std::string image(16384, '\xFF');
    std::vector<bool> isDevice(256);
    std::ifstream table(sample / "mainframe.txt");
    for (std::string line; std::getline(table, line);) {
        std::istringstream words(line.substr(0, line.find('|')));
        size_t address, offset;
        if (line.empty() || line[0] == '#')
            continue;
        ASSERT_TRUE(words >> address >> std::hex >> offset) << line;
        if (!isDevice[address])
            image.replace(address * 64, 64, 64, '\0');
        isDevice[address] = true;
        for (unsigned byte; words >> byte; ++offset)
            image[address * 64 + offset] = static_cast<char>(byte);
        ASSERT_LE(offset, 64U) << line;
    }
    EXPECT_EQ(ReadFile(sample / "mainframe.img"), image);
}

TEST_F(VxiExample, KeysReadAsWorkedOutByHand)
{
    static const char *const names[] = {
        "DeviceClass",    "AddressSpace", "Manufacturer",   "RequiredMemory", "MemoryCode", "ModelCode",
        "ModelCodeA16",   "MemoryActive", "ModuleSelected", "Averages",       "Ready",      "Passed",
        "SysfailInhibit", "Reset",        "MemoryOffset",   "TotalMemory",
    };
    static const struct {
        uint32_t address;
        uint32_t keys[std::size(names)]; // in the order of the names
    } devices[] = {
        {0, {3, 3, 0x0A1, 0, 0, 0x0A0, 0x00A0, 0, 0, 1, 1, 1, 0, 0, 0, 0}},
        {8, {3, 0, 0x0A1, 4096, 11, 0x123, 0xB123, 1, 0, 16, 1, 1, 0, 0, 0x2000, 65536}},
        {24, {3, 1, 0x0A2, 1048576, 11, 0x345, 0xB345, 1, 0, 4, 1, 1, 0, 0, 0x2000, 4194304}},
        {96, {3, 3, 0x0A2, 0, 2, 0x260, 0x2260, 0, 1, 64, 1, 1, 0, 0, 0xABCD, 0}},
        {192, {3, 0, 0x0A3, 256, 15, 0x456, 0xF456, 0, 0, 1, 0, 0, 1, 1, 0, 256}},
    };
    for (const auto &device : devices) {
        SCOPED_TRACE(device.address);
        Load(device.address);
        for (size_t i = 0; i < std::size(names); ++i)
            EXPECT_EQ(Key(names[i]), device.keys[i]) << names[i];
    }
    EXPECT_EQ(VelkLoadCurrentConfig(config, 1, 0), -108) << "an empty bus is no device";
    EXPECT_EQ(VelkLoadCurrentConfig(config, 256, 0), -102) << "there is no such address";
}

TEST_F(VxiExample, OptionsReadAsWorkedOutByHand)
{
    static const char *const names[] = {"Model",        "AddressSpace", "Memory",
                                        "MemoryOffset", "Label",        "TriggerLines"};
    static const struct {
        uint32_t address;
        const char *options[std::size(names)];
    } devices[] = {
        {0, {"slot 0 controller", "A16 only", "none", "0", "SLOT 0", ""}},
        {8, {"digitizer", "A16 and A24", "4 KiB", "8192", "DIGITIZER", ",0,3"}},
        {24, {"waveform store", "A16 and A32", "1 MiB", "8192", "WAVEFORM STORE 1", ",0,1,2,3,4,5,6,7"}},
        {96, {"relay switch", "A16 only", "none", "0", "SWITCH", ",5"}},
        {192, {"counter", "A16 and A24", "256 bytes", "0", "COUNTER", ""}},
    };
    for (const auto &device : devices) {
        SCOPED_TRACE(device.address);
        Load(device.address);
        for (size_t i = 0; i < std::size(names); ++i)
            EXPECT_EQ(Show(names[i]), device.options[i]) << names[i];
    }
}

TEST_F(VxiExample, SetsMoveTheBitsThatTheStandardNames)
{
    static const struct {
        const char *name, *option;
        uint32_t address, value;
        uint32_t id, deviceType, statusControl, offset;
    } rows[] = {
        {"A24 to A32: at least 64 KiB, m = 15", "AddressSpace", 8, 1, 0xD0A1, 0xF123, 0xC02C, 0x2000},
        {"A24 to A16: no memory, off", "AddressSpace", 8, 3, 0xF0A1, 0x0123, 0x402C, 0x2000},
        {"A16 to A24: at least 256 bytes, m = 15", "AddressSpace", 96, 0, 0xC0A2, 0xF260, 0x003C, 0},
        {"the reserved space goes to the next one", "AddressSpace", 8, 2, 0xF0A1, 0x0123, 0x402C, 0x2000},
        {"the largest A24 memory", "Memory", 8, 0xFFFFFFFF, 0xC0A1, 0x0123, 0xC02C, 0x2000},
        {"the largest A32 memory", "Memory", 24, 0xFFFFFFFF, 0xD0A2, 0x0345, 0xC01C, 0x2000},
        {"A24 memory goes to the next size", "Memory", 8, 5000, 0xC0A1, 0xA123, 0xC02C, 0x2000},
        {"offline is two bits", "Offline", 8, 1, 0xC0A1, 0xB123, 0xC02F, 0x2000},
        {"64 readings is the fourth choice", "Averages", 8, 64, 0xC0A1, 0xB123, 0xC03C, 0x2000},
        {"the maker's settings stay", "Manufacturer", 8, 1, 0xC0A1, 0xB123, 0xC02C, 0x2000},
        {"the self test stays", "Passed", 192, 1, 0xC0A3, 0xF456, 0x4003, 0},
        {"no offset without memory", "MemoryOffset", 96, 1, 0xF0A2, 0x2260, 0x003C, 0xABCD},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        Load(row.address);
        ASSERT_EQ(VelkSetOption(config, row.option, row.value), 0);
        const uint32_t expected[] = {row.id, row.deviceType, row.statusControl, row.offset};
        for (uint32_t i = 0; i < 4; ++i) {
            VelkWord bits = 0;
            EXPECT_EQ(VelkGetBits(config, 0x00100000 + 2 * i, 1, 0xFFFFFFFF, &bits), 0);
            EXPECT_EQ(bits, expected[i]) << "register at offset " << 2 * i;
        }
    }
    Load(8);
    ASSERT_EQ(VelkSetKey(config, "RequiredMemory", 0xFFFFFFFF), 0);
    EXPECT_EQ(Key("MemoryCode"), 7U) << "2^(23-7) = 65536 bytes, all that is fitted";
}

TEST_F(VxiExample, ListsAndTextsReachTheirDeviceAndNoOther)
{
    uint32_t lines[] = {4};
    const List list = {1, lines};
    const VelkWord label = reinterpret_cast<VelkWord>("SCOPE");
    for (const uint32_t address : {8U, 192U}) {
        Load(address);
        ASSERT_EQ(VelkSetOptionEx(config, "Label", ValueKindString, label), 0);
        ASSERT_EQ(VelkSetOptionEx(config, "TriggerLines", ValueKindList, reinterpret_cast<VelkWord>(&list)),
                  0);
        ASSERT_EQ(VelkSaveCurrentConfig(config, address, 0), 0);
    }
    std::string expected = ReadFile(sample / "mainframe.img");
    expected.replace(8 * 64 + 0x10, 16, std::string("SCOPE") + std::string(11, '\0'));
    expected.replace(8 * 64 + 0x20, 3, std::string("\1\4\0", 3));
    expected.replace(192 * 64 + 0x10, 16, std::string("SCOPE") + std::string(11, '\0'));
    EXPECT_EQ(ReadFile(directory / "mainframe.img"), expected) << "a failed device drives no trigger line";
}

} // namespace
