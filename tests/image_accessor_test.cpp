// The accessor for boards in a file, driven as a client drives it.
#include <filesystem>

#include "tests/support/board.h"

namespace
{

const std::string module = VELK_TEST_MODULE_DIR "/velkimage";

// Registers of every form: two of them of one id, one internal.
const std::string goodSettings =
    "Image = board.img\nStride = 32\n"
    "Registers = 0x10, 0x11,0x10 ,0x12, 0xB000001, 0xf000001, 0xF000002, 0xF0000001\n"
    "0x10 = 0 u8\n0x11 = 1 u16 big\n0x10:2 = 3 u32 little\n0x12 = 7\tu16 little\n0xB000001 = 9 text 4\n"
    "0xF000001 = 13 list 3 u16 big\n0xF000002 = 0X15 array 2 u8\n0xf0000001 = 23 u8\n";

// Board 1 of two. The byte behind the text's end, those behind the list and those from 24 on hold no value.
const std::string boardBytes("\x7F\x12\x34\x78\x56\x34\x12\xCD\xAB"
                             "AB\0Z"
                             "\0\2\x01\x02\xFF\xFE\xEE\xEE"
                             "\5\6"
                             "!unmapped",
                             32);
const std::string imageBytes = std::string(32, '\x55') + boardBytes;

// The same values; a table may lack the internal register.
const std::string values = "10=7f 11=1234 10=12345678 12=abcd b000001=AB f000001=102,fffe f000002=5,6";
const std::string allValues = values + " f0000001=21";

// A second class, whose boards are the bytes of the image.
const std::string byteSettings = "Image = board.img\nStride = 1\nRegisters = 16\n16 = 0 u8\nUnit = 2\n";

// Two classes, A and B. The accessor is gone when the last rig is.
struct Rig : Desk {
    explicit Rig(const std::string &first = goodSettings, const std::string &second = byteSettings)
    {
        const std::string head = "Accessor=" + module + "\nKeys=keys.ini\nOptions=options.ini\n";
        directory.Write("keys.ini", "[Small]\n0x10 (0xFF) = Value\n");
        directory.Write("options.ini", "");
        directory.Write("board.img", imageBytes);
        EXPECT_EQ(Start("[A]\n" + head + first + "[B]\n" + head + second), 0);
    }
    ~Rig()
    {
        Clear();
        EXPECT_EQ(Module_IsLoaded(module), previous != nullptr);
    }
    // Puts a table of these registers in the place of the one that was loaded.
    void Put(const std::string &registers) const
    {
        FreeVRegTable(std::exchange(TableOf(config), Table_FromText(registers)));
    }
};

} // namespace

TEST(ImageAccessor, ReadsRegistersOfEveryFormWhereverTheProcessGoes)
{
    Rig rig;
    const auto start = std::filesystem::current_path();
    VelkCloseConfigEngine(std::exchange(rig.engine, nullptr));
    const std::filesystem::path path = rig.directory.path;
    std::filesystem::current_path(path.parent_path());
    EXPECT_EQ(VelkInitializeConfigEngine(path.filename().string().c_str(), &rig.engine), 0);
    EXPECT_EQ(rig.Open("A"), 0);
    std::filesystem::current_path(start);
    EXPECT_EQ(rig.Load(1), 0);
    EXPECT_EQ(rig.Run("."), allValues);
    rig.directory.Write("board.img", Edited(imageBytes, {"AB\0Z", 4}, "FULL"));
    EXPECT_EQ(rig.Load(1), 0);
    EXPECT_EQ(rig.Run("."), Edited(allValues, "AB", "FULL"));
    EXPECT_EQ(rig.Load(0), -108) << "0x5555 numbers in a list with room for 3";
    EXPECT_EQ(VelkIsConfigLoaded(rig.config), 0);
}

TEST(ImageAccessor, WritesTheBytesThatDifferOrNone)
{
    // What changes of the values on the board, and the bytes that change by it, with their offset.
    static const std::tuple<const char *, const char *, size_t, std::string> rows[] = {
        {"12345678", "deadc0de", 3, "\xDE\xC0\xAD\xDE"},
        {"1234", "beef", 1, "\xBE\xEF"},
        {"7f", "ff", 0, "\xFF"},
        {"AB", "C", 9, {"C\0\0\0", 4}},
        {"AB", "WXYZ", 9, "WXYZ"},
        {"AB", "-", 9, {"\0\0\0\0", 4}}, // null is empty
        {"102,fffe", "-", 13, {"\0\0\0\0\0\0\0\0", 8}},
        {",fffe", "", 13, {"\0\1\1\2\0\0\0\0", 8}}, // a shorter list
        {",fffe", ",2,3", 13, {"\0\3\1\2\0\2\0\3", 8}},
        {"5,6", "4,ff", 21, "\4\xFF"},
    };
    Rig rig;
    ASSERT_EQ(rig.Open("A") + rig.Load(1), 0);
    const auto save = [&](const char *what, const char *by) {
        rig.directory.Write("board.img", imageBytes);
        rig.Put(Edited(values, what, by));
        return rig.Save(1);
    };
    for (const auto &[what, by, offset, bytes] : rows) {
        SCOPED_TRACE(what + std::string(" -> ") + by);
        EXPECT_EQ(save(what, by), 0);
        std::string expected = imageBytes;
        expected.replace(32 + offset, bytes.size(), bytes);
        EXPECT_EQ(rig.directory.Read("board.img"), expected);
    }
    // Too large, too long, and a register that is missing, there once too often, or not in the map.
    const std::pair<const char *, std::vector<const char *>> refused[] = {
        {"7f", {"100"}},         {"abcd", {"1abcd"}},
        {"AB", {"VWXYZ"}},       {",fffe", {",2,3,4", ",10000"}},
        {"5,6", {"5", "5,6,7"}}, {" 10=12345678", {"", " 10=1 10=1"}},
        {"12=", {"13="}}};
    for (const auto &[what, edits] : refused)
        for (const char *by : edits) {
            EXPECT_EQ(save(what, by), -104) << what << " -> " << by;
            EXPECT_EQ(rig.directory.Read("board.img"), imageBytes) << what << " -> " << by;
        }
    FreeVRegTable(std::exchange(TableOf(rig.config), nullptr));
    EXPECT_EQ(rig.Save(1), -104) << "no table at all";
}

TEST(ImageAccessor, WritesInTheWayOfItsSettings)
{
    const std::string written = std::string(imageBytes).replace(32, 1, "\1");
    // Another name of the old file tells whether it was replaced.
    const std::tuple<const char *, StatusCode, std::string, std::string> rows[] = {
        {"", 0, written, imageBytes},
        {"Write = replace\n", 0, written, imageBytes},
        {"Write = inplace\n", 0, written, written},
        {"Write = never\n", -105, imageBytes, imageBytes}};
    for (const auto &[settings, status, image, link] : rows) {
        SCOPED_TRACE(settings);
        Rig rig(settings + goodSettings);
        std::filesystem::create_hard_link(rig.directory.Path("board.img"), rig.directory.Path("link.img"));
        ASSERT_EQ(rig.Open("A") + rig.Load(1), 0);
        EXPECT_EQ(rig.Save(1), 0) << "nothing differs";
        rig.Put(Edited(values, "7f", "1"));
        EXPECT_EQ(rig.Save(1), status);
        EXPECT_EQ(rig.directory.Read("board.img"), image);
        EXPECT_EQ(rig.directory.Read("link.img"), link);
    }
}

TEST(ImageAccessor, RefusesBadSettings)
{
    const std::pair<const char *, std::vector<const char *>> rows[] = {
        {"Image = board.img\n", {"", "Image =\n"}},
        {"Stride = 32",
         {"Stride = 0", "Stride = 0x100000000", "Stride = 4294967296", "Stride = 032", "Stride = 32 x", "",
          "Stride = 32\nUnit = -1", "Stride = 32\nWrite = no", "Stride = 32\nWrite = never ever"}},
        {"Stride = 32", {"Stride = 23"}}, // the last place ends at 24
        {"Registers = 0x10,", {"Registers = 0x10,,", "Registers = 0,", "Registers = 0x10"}},
        {"Registers = ", {"Register = "}},
        {"0x12 = 7\tu16 little", {"0x12 = 7 list 1 u8"}},
        {"0xF0000001\n", {"0xF0000001,\n"}},
        {"0x10 = 0 u8\n", {"", "0x10 = 0 u8 big\n", "0x10 = 0 u24\n", "0x10 = 24 text 4\n"}},
        {"0x10:2 = 3 u32 little\n", {""}},
        {"1 u16 big", {"1 u16", "2 u16 big"}}, // in which order? and on a byte of the next one
        {"9 text 4", {"9 u32 big", "9 text 0xFFFFFFFF", "9 text 0", "9 text x", "x text 4"}},
        {"13 list 3 u16 big", {"13 text 8", "13 list x u16 big", "13 list 3 u24"}},
        {"0x10, 0x11", {"0x1G, 0x11", "0x1`, 0x11", "0x1g, 0x11"}},
        {"23 u8\n", {"23 u8\nStride = 999\n0xF000001 = 99 list 256 u8\n"}}, // more than a byte counts
    };
    for (const auto &[what, edits] : rows)
        for (const char *by : edits) {
            SCOPED_TRACE(std::string(what) + " -> " + by);
            EXPECT_EQ(Rig(Edited(goodSettings, what, by)).Open("A"), -111);
        }
}

TEST(ImageAccessor, TouchesNothingWhenThereIsNoBoard)
{
    // Board, unit, bytes of the image, or -1 for none and -2 for a directory in its place; the status.
    static const std::tuple<uint32_t, uint32_t, int, StatusCode> rows[] = {
        {1, 1, 64, -103}, {2, 0, 64, -102}, {0xFFFFFFFF, 0, 64, -102},
        {1, 0, 63, -108}, {1, 0, -1, -102}, {1, 0, -2, -107}};
    for (const auto &[board, unit, size, status] : rows) {
        SCOPED_TRACE(testing::Message() << board << "," << unit << " of " << size << " bytes");
        Rig rig;
        ASSERT_EQ(rig.Open("A") + rig.Load(1), 0);
        EXPECT_EQ(rig.Run("#Small=1"), "0");
        const std::filesystem::path image = rig.directory.Path("board.img");
        remove(image);
        if (size == -2)
            create_directory(image);
        const std::string bytes = size < 0 ? "" : imageBytes.substr(0, static_cast<size_t>(size));
        if (size >= 0)
            rig.directory.Write("board.img", bytes);

        EXPECT_EQ(rig.Save(board, unit), status);
        EXPECT_EQ(rig.Load(board, unit), status);
        EXPECT_EQ(rig.Run("#Small"), "1");
        EXPECT_EQ(rig.directory.Read("board.img"), bytes);
    }
    Rig rig(Edited(goodSettings, "Stride = 32", "Stride = 0xFFFFFFFF"));
    ASSERT_EQ(rig.Open("A"), 0);
    EXPECT_EQ(rig.Load(0xFFFFFFFF), -102) << "a board beyond any offset";
}

TEST(ImageAccessor, ReportsAWriteThatDoesNotStay)
{
    // Both read as zeros. One keeps no byte, one takes none; where nothing differs nothing is written.
    // Neither can be replaced.
    for (const auto &[image, settings, results] : {std::tuple{"/dev/zero", "Write = inplace\n", -106},
                                                   {"/dev/full", "Write = inplace\n", 0},
                                                   {"/dev/zero", "", -106}}) {
        SCOPED_TRACE(image);
        Rig rig(settings + Edited(byteSettings, "board.img", image));
        ASSERT_EQ(rig.Open("A") + rig.Load(0, 2), 0);
        EXPECT_EQ(rig.Run(results == 0 ? "#Small=0" : "#Small=1"), "0");
        EXPECT_EQ(rig.Save(0, 2), results);
    }
}

TEST(ImageAccessor, ServesClassesAndEnginesByTheirUnits)
{
    for (const auto &[what, by] : {std::pair{"Stride = 32", "Stride = 33"},
                                   {"Stride = 32", "Stride = 32\nWrite = never"},
                                   {", 0xF0000001\n", "\n"},
                                   {"0 u8", "24 u8"}}) {
        Rig rig(goodSettings, Edited(goodSettings, what, by));
        EXPECT_EQ(rig.Open("A"), 0);
        EXPECT_EQ(rig.Open("B"), -112) << by;
    }

    Rig one;
    Rig other(goodSettings + "Unit = 3\n");
    other.directory.Write("board.img", Edited(imageBytes, "\x7F", "\x70"));
    ASSERT_EQ(one.Open("A") + other.Open("A"), 0);
    EXPECT_EQ(one.Load(1, 0) + other.Load(1, 3), 0);
    EXPECT_EQ(one.Run("#Small") + other.Run("#Small"), "7f70");

    ASSERT_EQ(one.Open("B") + one.Load(33, 2), 0);
    EXPECT_EQ(one.Run("#Small #Small=0x13"), "12 0");
    EXPECT_EQ(one.Save(33, 2), 0);
    EXPECT_EQ(one.directory.Read("board.img"), Edited(imageBytes, "\x12", "\x13"));

    EXPECT_EQ(other.Open("B"), -112) << "unit 2 has its image in another directory";
    VelkCloseConfigEngine(std::exchange(other.engine, nullptr));
    ASSERT_EQ(VelkInitializeConfigEngine(one.directory.path.c_str(), &other.engine), 0);
    EXPECT_EQ(other.Open("B"), 0) << "the same settings once more";
}
