// The accessor for boards in a file, driven as a client drives it.
#include <dlfcn.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "tests/support/allocations.h"
#include "velk32.h"

namespace
{

const std::string modulePath = VELK_TEST_MODULE_DIR "/velkimage";

// Registers of every form: two of them of one id, one internal.
const std::string goodSettings =
    "Image = board.img\n"
    "Stride = 32\n"
    "Registers = 0x10, 0x11,0x10 ,0x12, 0xB000001, 0xF000001, 0xF000002, 0xF0000001\n"
    "0x10 = 0 u8\n"
    "0x11 = 1 u16 big\n"
    "0x10:2 = 3 u32 little\n"
    "0x12 = 7 u16 little\n"
    "0xB000001 = 9 text 4\n"
    "0xF000001 = 13 list 3 u16 big\n"
    "0xF000002 = 21 array 2 u8\n"
    "0xF0000001 = 23 u8\n";

// Board 1 of two. The byte behind the text's end, those behind the list and those from 24 on hold no value.
const std::string imageBytes = std::string(32, '\x55') + std::string("\x7F\x12\x34\x78\x56\x34\x12\xCD\xAB"
                                                                     "AB\0Z"
                                                                     "\0\2\x01\x02\xFF\xFE\xEE\xEE"
                                                                     "\5\6"
                                                                     "!unmapped",
                                                                     32);

// The same values as a save file has them.
const std::string savedValues = "0x10=7F\n0x11=1234\n0x10=12345678\n0x12=ABCD\n0xB000001=AB\n"
                                "0xF000001=0x102,0xFFFE\n0xF000002=5,6\n";

// `text` with `what` replaced; it has to be there.
std::string Edited(std::string text, const std::string &what, const std::string &by)
{
    const size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

// A definition directory with an image, an engine on it, and a configuration once a class is opened.
struct Rig {
    explicit Rig(const std::string &settings = goodSettings, const std::string &second = "")
    {
        char name[] = "/tmp/velkimage-XXXXXX";
        directory = mkdtemp(name);
        chmod(name, 0755);
        const std::string head = "Accessor = " + modulePath + "\nKeys = keys.ini\nOptions = options.ini\n";
        Write("CfgClass.ini", "[A]\n" + head + settings + "[B]\n" + head + second);
        Write("keys.ini", "[Small]\n0x10 (0xFF) = Value\n");
        Write("options.ini", "");
        Write("board.img", imageBytes);
        EXPECT_EQ(VelkInitializeConfigEngine(name, &engine), 0);
    }
    ~Rig()
    {
        if (config != nullptr)
            VelkDiscardConfig(config);
        VelkCloseConfigEngine(engine);
        std::filesystem::remove_all(directory);
    }
    Rig(const Rig &) = delete;
    Rig &operator=(const Rig &) = delete;

    void Write(const std::string &name, const std::string &bytes) const
    {
        std::ofstream(directory + "/" + name, std::ios::binary) << bytes;
    }
    [[nodiscard]] std::string Image() const
    {
        std::ostringstream bytes;
        bytes << std::ifstream(directory + "/board.img", std::ios::binary).rdbuf();
        return bytes.str();
    }
    // Loads a class; the configuration is of the class opened last.
    StatusCode Open(const char *name = "A")
    {
        if (config != nullptr)
            VelkDiscardConfig(config);
        return VelkCreateConfig(engine, name, &config);
    }
    [[nodiscard]] StatusCode Load(uint32_t board = 1, uint32_t unit = 0) const
    {
        return VelkLoadCurrentConfig(config, board, unit);
    }
    [[nodiscard]] StatusCode Save(uint32_t board = 1, uint32_t unit = 0) const
    {
        return VelkSaveCurrentConfig(config, board, unit);
    }
    [[nodiscard]] StatusCode Restore(const std::string &values) const
    {
        Write("saved.cfg", "[Information]\nKey = k\n[Data]\n" + values);
        return VelkLoadFromFile(config, (directory + "/saved.cfg").c_str(), "k");
    }
    [[nodiscard]] VelkWord Get(uint32_t id, int32_t instance = 1) const
    {
        VelkWord value = 0;
        EXPECT_EQ(VelkGetBits(config, id, instance, 0xFFFFFFFF, &value), 0) << id;
        return value;
    }
    void SetSmall(VelkWord value) const
    {
        EXPECT_EQ(VelkSetKey(config, "Small", value), 0);
    }
    [[nodiscard]] std::string Numbers(uint32_t id) const
    {
        const List *list = reinterpret_cast<const List *>(Get(id));
        std::string text;
        for (int32_t i = 0; i < list->count; ++i)
            text += " " + std::to_string(list->items[i]);
        return text;
    }

    std::string directory;
    ConfigEngine *engine = nullptr;
    Config *config = nullptr;
};

bool IsModuleLoaded()
{
    void *module = dlopen((modulePath + ".so").c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (module != nullptr)
        dlclose(module);
    return module != nullptr;
}

TEST(ImageAccessor, ReadsRegistersOfEveryForm)
{
    Rig rig;
    ASSERT_EQ(rig.Open(), 0);
    ASSERT_EQ(rig.Load(), 0);
    EXPECT_EQ(rig.Get(0x10), 0x7FU);
    EXPECT_EQ(rig.Get(0x11), 0x1234U);
    EXPECT_EQ(rig.Get(0x10, 2), 0x12345678U);
    EXPECT_EQ(rig.Get(0x12), 0xABCDU);
    EXPECT_STREQ(reinterpret_cast<const char *>(rig.Get(0x0B000001)), "AB");
    EXPECT_EQ(rig.Numbers(0x0F000001), " 258 65534");
    EXPECT_EQ(rig.Numbers(0x0F000002), " 5 6");
    EXPECT_EQ(rig.Get(0xF0000001), 0x21U);

    rig.Write("board.img", Edited(imageBytes, {"AB\0Z", 4}, "FULL"));
    ASSERT_EQ(rig.Load(), 0);
    EXPECT_STREQ(reinterpret_cast<const char *>(rig.Get(0x0B000001)), "FULL");

    EXPECT_EQ(rig.Load(0), -108) << "0x5555 numbers in a list with room for 3";
    EXPECT_EQ(VelkIsConfigLoaded(rig.config), 0);
}

TEST(ImageAccessor, WritesTheBytesThatDifferOrNone)
{
    static const struct {
        const char *name, *what, *by; // changes to the values on the board
        StatusCode status;
        size_t offset; // of the bytes that follow
        std::string bytes;
    } rows[] = {
        {"nothing", "", "", 0, 0, ""},
        {"the high byte last", "12345678", "DEADC0DE", 0, 3, "\xDE\xC0\xAD\xDE"},
        {"the high byte first", "1234\n", "BEEF\n", 0, 1, "\xBE\xEF"},
        {"the largest of a byte", "7F", "FF", 0, 0, "\xFF"},
        {"too large for a byte", "7F", "100", -104, 0, ""},
        {"too large for two", "ABCD", "1ABCD", -104, 0, ""},
        {"text with room behind it", "=AB\n", "=C\n", 0, 9, {"C\0\0\0", 4}},
        {"text that fills its room", "=AB\n", "=WXYZ\n", 0, 9, "WXYZ"},
        {"text too long", "=AB\n", "=VWXYZ\n", -104, 0, ""},
        {"shorter list", ",0xFFFE", "", 0, 13, {"\0\1\1\2\0\0\0\0", 8}},
        {"list that fills its room", ",0xFFFE", ",2,3", 0, 13, {"\0\3\1\2\0\2\0\3", 8}},
        {"list too long", ",0xFFFE", ",2,3,4", -104, 0, ""},
        {"too large in a list", ",0xFFFE", ",0x10000", -104, 0, ""},
        {"array", "5,6", "5,0xFF", 0, 22, "\xFF"},
        {"array too short", "5,6", "5", -104, 0, ""},
        {"array too long", "5,6", "5,6,7", -104, 0, ""},
        {"a register is missing", "0x10=12345678\n", "", -104, 0, ""},
        {"one of an id too many", "0x10=12345678\n", "0x10=1\n0x10=1\n", -104, 0, ""},
        {"a register not in the map", "0x12=", "0x13=", -104, 0, ""},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        Rig rig;
        ASSERT_EQ(rig.Open(), 0);
        ASSERT_EQ(rig.Restore(Edited(savedValues, row.what, row.by)), 0);
        EXPECT_EQ(rig.Save(), row.status);
        std::string expected = imageBytes;
        expected.replace(32 + row.offset, row.bytes.size(), row.bytes);
        EXPECT_EQ(rig.Image(), expected);
    }
}

TEST(ImageAccessor, RefusesBadSettings)
{
    static const char *const rows[][2] = {
        {"Image = board.img\n", ""},
        {"Stride = 32", "Stride = 0"},
        {"Stride = 32", "Stride = 0x100000000"},
        {"Stride = 32", "Stride = 032"},
        {"Stride = 32", "Stride = 23"}, // the last place ends at 24
        {"Stride = 32", "Stride = 32\nUnit = -1"},
        {"Registers = 0x10", "Registers = 0x10,"},
        {"Registers = 0x10", "Registers = 0"}, // no id of a save file
        {"Registers = 0x10,", "Registers = 0x10"},
        {"0xF0000001\n", "0xF0000001,\n"},
        {"0x10 = 0 u8\n", ""},
        {"0x10:2 = 3 u32 little\n", ""},
        {"0 u8", "0 u8 big"},
        {"0 u8", "0 u24"},
        {"0 u8", "24 text 4"},      // a number register
        {"1 u16 big", "1 u16"},     // in which order?
        {"1 u16 big", "2 u16 big"}, // on a byte of the next one
        {"9 text 4", "9 u32 big"},  // a text register
        {"9 text 4", "9 text 0xFFFFFFFF"},
        {"13 list 3 u16 big", "13 text 8"},                               // a list register
        {"23 u8\n", "23 u8\nStride = 999\n0xF000001 = 99 list 256 u8\n"}, // more than a byte counts
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(std::string(row[0]) + " -> " + row[1]);
        EXPECT_EQ(Rig(Edited(goodSettings, row[0], row[1])).Open(), -111);
    }
    EXPECT_FALSE(IsModuleLoaded());
}

TEST(ImageAccessor, TouchesNothingWhenThereIsNoBoard)
{
    static const struct {
        const char *name;
        void (*spoil)(const std::filesystem::path &image);
        uint32_t board, unit;
        StatusCode load, save;
    } rows[] = {
        {"no such unit", [](const auto &) {}, 1, 1, -103, -103},
        {"no such board", [](const auto &) {}, 2, 0, -102, -102},
        {"a board beyond any file", [](const auto &) {}, 0xFFFFFFFF, 0, -102, -102},
        {"no image", [](const auto &image) { remove(image); }, 1, 0, -102, -102},
        {"one byte short", [](const auto &image) { resize_file(image, 63); }, 1, 0, -108, -108},
        {"may not be read", [](const auto &image) { permissions(image, {}); }, 1, 0, -105, -105},
        {"may not be written", [](const auto &image) { permissions(image, std::filesystem::perms(0444)); }, 1,
         0, 0, -105},
        {"a directory", [](const auto &image) { remove(image) && create_directory(image); }, 1, 0, -107,
         -107},
    };
    const uid_t me = geteuid();
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name);
        Rig rig;
        ASSERT_EQ(rig.Open(), 0);
        ASSERT_EQ(rig.Load(), 0);
        rig.SetSmall(1);
        row.spoil(rig.directory + "/board.img");
        const std::string spoilt = rig.Image();

        // Permission bits do not stop root.
        ASSERT_EQ(seteuid(me == 0 ? 65534 : me), 0);
        EXPECT_EQ(rig.Save(row.board, row.unit), row.save);
        EXPECT_EQ(rig.Get(0x10), 1U);
        EXPECT_EQ(rig.Load(row.board, row.unit), row.load);
        ASSERT_EQ(seteuid(me), 0);

        EXPECT_EQ(rig.Get(0x10), row.load == 0 ? 0x7FU : 1U);
        EXPECT_EQ(rig.Image(), spoilt);
    }
}

TEST(ImageAccessor, ReportsAWriteThatDoesNotStay)
{
    static const struct {
        const char *image; // both read as zeros
        uint32_t value;
        StatusCode status;
    } rows[] = {
        {"/dev/full", 1, -106}, // takes no byte
        {"/dev/zero", 1, -106}, // keeps no byte
        {"/dev/full", 0, 0},    // nothing differs, so nothing is written
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.image);
        Rig rig("Image = " + std::string(row.image) + "\nStride = 1\nRegisters = 16\n16 = 0 u8\n");
        ASSERT_EQ(rig.Open(), 0);
        ASSERT_EQ(rig.Load(0), 0);
        rig.SetSmall(row.value);
        EXPECT_EQ(rig.Save(0), row.status);
    }
}

TEST(ImageAccessor, ServesClassesAndEnginesByTheirUnits)
{
    const int64_t blocks = LiveAllocations();
    {
        const std::string second = "Image = board.img\nStride = 1\nRegisters = 0x10\n0x10 = 0 u8\nUnit = 2\n";
        Rig one(goodSettings, second);
        Rig other(goodSettings + "Unit = 3\n", second);
        other.Write("board.img", Edited(imageBytes, "\x7F", "\x70"));
        ASSERT_EQ(one.Open("A"), 0);
        ASSERT_EQ(other.Open("A"), 0);
        EXPECT_EQ(one.Load(1, 0), 0);
        EXPECT_EQ(one.Get(0x10), 0x7FU);
        EXPECT_EQ(other.Load(1, 3), 0);
        EXPECT_EQ(other.Get(0x10), 0x70U);

        ASSERT_EQ(one.Open("B"), 0);
        EXPECT_EQ(one.Load(33, 2), 0);
        EXPECT_EQ(one.Get(0x10), 0x12U);
        one.SetSmall(0x13);
        EXPECT_EQ(one.Save(33, 2), 0);
        EXPECT_EQ(one.Image(), Edited(imageBytes, "\x12", "\x13"));

        EXPECT_EQ(other.Open("B"), -112) << "unit 2 has its image in another directory";
        ConfigEngine *again;
        Config *config;
        ASSERT_EQ(VelkInitializeConfigEngine(one.directory.c_str(), &again), 0);
        EXPECT_EQ(VelkCreateConfig(again, "A", &config), 0) << "the same settings once more";
        VelkDiscardConfig(config);
        VelkCloseConfigEngine(again);
        EXPECT_TRUE(IsModuleLoaded());
    }
    EXPECT_FALSE(IsModuleLoaded());
    EXPECT_EQ(LiveAllocations(), blocks);
}

TEST(ImageAccessor, OutlivesAClassLoadThatFailsLate)
{
    const int64_t blocks = LiveAllocations();
    {
        Rig rig(goodSettings, goodSettings + "Unit = 1\n");
        rig.Write("options.ini", "[Keyless]\n");
        EXPECT_EQ(rig.Open("A"), -206);
        EXPECT_FALSE(IsModuleLoaded()) << "nobody else holds it";
        rig.Write("options.ini", "");
        EXPECT_EQ(rig.Open("A"), 0);
        rig.Write("options.ini", "[Keyless]\n");
        EXPECT_EQ(rig.Open("B"), -206);
        rig.Write("options.ini", "");
        EXPECT_EQ(rig.Open("B"), 0) << "the settings left behind are the same";
        EXPECT_EQ(rig.Load(1, 0), 0);
        EXPECT_EQ(rig.Load(1, 1), 0);
    }
    EXPECT_FALSE(IsModuleLoaded());
    EXPECT_EQ(LiveAllocations(), blocks);
}

// Fails each allocation of a call in turn, until the call gets through.
void FailEachAllocation(const std::function<StatusCode()> &call,
                        const std::function<void(StatusCode)> &checkFailure)
{
    for (int64_t nth = 1;; ++nth) {
        SCOPED_TRACE(nth);
        const FailNthAllocation fail(nth);
        const StatusCode status = call();
        if (!fail.Fired()) {
            EXPECT_EQ(status, 0);
            return;
        }
        checkFailure(status);
    }
}

TEST(ImageAccessor, IsUndoneWhicheverAllocationFails)
{
    const int64_t blocks = LiveAllocations();
    {
        Rig rig;
        const int64_t blocksOfEngine = LiveAllocations();
        FailEachAllocation([&] { return rig.Open(); },
                           [&](StatusCode status) {
                               EXPECT_LT(status, 0);
                               EXPECT_EQ(LiveAllocations(), blocksOfEngine);
                           });
        ASSERT_EQ(rig.Restore(Edited(savedValues, "=AB\n", "=CD\n")), 0);
        FailEachAllocation([&] { return rig.Save(); },
                           [&](StatusCode status) {
                               EXPECT_EQ(status, -1);
                               EXPECT_EQ(rig.Image(), imageBytes);
                           });
        EXPECT_EQ(rig.Image(), Edited(imageBytes, {"AB\0Z", 4}, {"CD\0\0", 4}));
        FailEachAllocation([&] { return rig.Load(); }, [](StatusCode status) { EXPECT_EQ(status, -1); });
    }
    EXPECT_EQ(LiveAllocations(), blocks);
}

} // namespace
