// Key files, and reading and writing keys.
#include "tests/support/board.h"

TEST(KeyFiles, NameTheirRegister)
{
    // Numbers come ahead of symbols; instances are decimal; a VReg specification has 67 characters.
    const std::string room(53, ' ');
    const std::pair<const char *, std::vector<std::string>> rows[] = {
        {"1",
         {"Control (0x0F)", "Control:1a (0x0F)", "(Control) (0x0F)", "Control(0x0F)",
          "Control (0x0F) trailing words", "Control\t(0x0F)", "Control (0x0F" + room + ")"}},
        {"2", {"0x1000:2 (0x0F)", "Control:02 15"}},
        {"4", {"0x10_Control 15", "020 (017x)", "Small 15"}},
        {"!-3", {"Control:010 (0x0F)", "Control:19 (0x0F)", "Control:0 (0x0F)", "0x11 (0x0F)"}},
        {"-205",
         {"Control:x (0x0F)", "Control :3 (0x0F)", "Control", "(0x0F) Control", "Missing (0x0F)", "()",
          "Void (0x0F)", "Control\t0x0F", "Control (0)", "Control (0x0F " + room + ")"}}};
    for (const auto &[result, specs] : rows)
        for (const std::string &spec : specs)
            Board_Expect("[vregs]\nControl=0x1000\nSmall=16\nVoid=none\n[K]\n" + spec + "=Value\n", "",
                         "1000=1 1000=2 1000=3 10=4", "#K", result);
}

TEST(KeyFiles, AreCheckedWhenRead)
{
    const std::pair<const char *, std::vector<std::string>> rows[] = {
        {"",
         {"0x10 (1)=BOOL\nTRUE=3\nFALSE=3\n", "0x10 (1)=index\nArray=\n", "0x10 (1)=vxirequiredmemory\n",
          "0x10 (1)=Index\nArray=" + std::string(1022, ',') + "1\n", "0x0B000001 (0)=String\n",
          "0xFF000001 (0)=List\n"}},
        {"-205",
         {"0x10 (1)=Bool\nTRUE=1\n", "0x10 (1)=Bool\nFALSE=0\nTRUE=x\n", "0x10 (1)=Index\n",
          "0x10 (1)=Index\nArray=1,x\n", "0x10 (1)=Index\nArray=" + std::string(1023, ',') + "1\n",
          "0x10 (1)=Other\n", "0x10 (1)=Value.x\n", "0x0B000001 (x)=String\n", "0x0F000001 (1)=String\n",
          "0x07000001 (1)=List\n", "0x0B000001 (1)=Value\n", "0x0A000001 (1)=Value\n",
          "0x08000001 (1)=Value\n", ""}}};
    for (const auto &[result, sections] : rows)
        for (const std::string &section : sections)
            Board_Expect("[VREGS]\nA=x\n[K]\n" + section, "", nullptr, "", result);
}

TEST(KeyFiles, ShareKeysButNotSymbols)
{
    Desk desk;
    const std::string head = "Accessor=" + desk.directory.Module("m") + "\nOptions=o\n";
    desk.directory.Write("a", "[VREGS]\nR=0x10\n[K]\nR (0xF)=Value\n");
    desk.directory.Write("b", "[K]\n0x11 (0xF)=Value\n[k]\n0x10 (0xF0)=Value\n");
    desk.directory.Write("c", "[K]\nR (0xF)=Value\n");
    desk.directory.Write("o", "");
    ASSERT_EQ(desk.Start("[C]\n" + head + "Keys=a,b\n[D]\n" + head + "Keys=a,c\n"), 0);
    desk.answers.registers = "10=0 11=0";
    EXPECT_EQ(desk.Open("D"), -205);
    ASSERT_EQ(desk.Open("C") + desk.Load(), 0);
    EXPECT_EQ(desk.Run("#K=1 #k=2 ."), "0 0 10*=20 11*=1"); // the later K
}

TEST(Keys, TranslateNumbers)
{
    static const char *const rows[][4] = {
        {"0x10 (0x0F00)=Value", "10=1001", "#K=5 . #K", "0 10*=1501 5"},
        {"0x10 (0x0F00)=Value", "10=1501", "#K=0x15 .", "0 10=1501"}, // cut to the field: no change
        {"0x10 (0x80000000)=Value", "10=0", "#K=1 . #K", "0 10*=80000000 1"},
        {"0x10 (0x0A)=Value", "10=0", "#K=2 . #K=5 . #K", "0 10=0 0 10*=a 5"}, // a mask with a hole
        {"0x10 (-1)=Value", "10=0", "#K=-1 . #K", "0 10*=ffffffff ffffffff"},
        {"0x10:2 (1)=Value", "10=7", "#K=1 #K .", "-3 !-3 10=7"},
        {"0x10 (3)=Bool\nFALSE=1\nTRUE=0", "10=4", "#K #K=0 #K . #K=7 .", "1 0 0 10*=5 0 10*=4"},
        {"0x10 (6)=Bool\nFALSE=2\nTRUE=2", "10=0", "#K #K=1 #K .", "!-99 0 0 10*=4"},
        {"0x10 (6)=Bool\nFALSE=2\nTRUE=3", "10=0", "#K=0xF00000000 .", "0 10*=4"}, // the low half
        {"0x10 (0x30)=Index\nArray=10,20,20", "10=0", "#K=20 . #K #K=30 .", "0 10*=10 14 -99 10*=10"},
        {"0x10 (0x30)=Index\nArray=10,20,20", "10=20", "#K #K=20 .", "14 0 10*=10"},
        {"0x10 (0x30)=Index\nArray=10,20,20", "10=30", "#K #k #K=10", "!-99 !-13 0"},
        {"0x10 (0x30)=Index\nArray=", "10=0", "#K #K=0", "!-99 -99"}};
    for (const auto &[key, registers, commands, results] : rows)
        Board_Expect("[K]\n" + std::string(key) + "\n", "", registers, commands, results);
}

TEST(Keys, ComputeTheRequiredMemory)
{
    const std::string space = "[AddressSpace]\n0x10 (0x3)=Value\n",
                      total = "[TotalMemory]\n0x11 (-1)=Value\n";
    // The amount that is written gives a status, the field of four bits, and the amount that is read back.
    const std::tuple<std::string, const char *, const char *, const char *> rows[] = {
        {space, "10=90", "1", "0 7 10000"},
        {space, "10=90", "0x10000", "0 7 10000"},
        {space, "10=90", "100000", "0 6 20000"},
        {space, "10=90", "0x80000001", "0 7 10000"}, // 23 - 32, cut
        {space, "10=91", "0x10000", "0 f 10000"},
        {space, "10=91", "0x80000000", "0 0 80000000"},
        {space, "10=92", "0x1000000", "0 f 1000000"},
        {space, "10=93", "12345", "0 0 0"},
        {space, "10=90", "0", "0 7 10000"},
        {space, "10=92", "0x40", "0 1 40"},
        {space + total, "10=90 11=7fff", "-1", "0 8 8000"},
        {space, "10=90", "-1", "-99 9 4000"},
        {"", "10=90", "1", "-99 9 !-99"},
        {"[AddressSpace]\n0x12 (3)=Value\n", "10=90", "1", "-3 9 !-3"},
        {"[AddressSpace]\n0x12 (3)=VxiRequiredMemory\n", "10=90", "1", "-3 9 !-3"},
        {"[AddressSpace]\n0x0B000001 (3)=String\n", "10=90 0B000001=x", "1", "-99 9 !-99"},
        {"[AddressSpace]\n0x10 (3)=VxiRequiredMemory\n", "10=90", "1", "-99 9 !-99"}};
    for (const auto &[keys, registers, written, results] : rows)
        Board_Expect("[Memory]\n0x10 (0xF0)=VxiRequiredMemory\n[Raw]\n0x10 (0xF0)=Value\n" + keys, "",
                     registers, std::string("#Memory=") + written + " #Raw #Memory", results);
}

TEST(Keys, CopyTextsAndLists)
{
    Board_Expect(sampleKeys, "", "10=1", "#T='x #L=(1", "-3 -3");
    const Board board(sampleKeys, "", "0B000001=- 0F000001=1,2");
    EXPECT_EQ(board.Run("#L=(1,2 #T='- #L=(- ."), "0 -1 -1 b000001=- f000001=1,2");
    EXPECT_EQ(board.Run("#L=(1,2,3 #T='abc ."), "0 0 b000001*=abc f000001*=1,2,3");
    const VelkWord text = TableOf(board.config)->regs[0].value;
    const int64_t calls = AllocationCalls();
    EXPECT_EQ(VelkSetKey(board.config, "T", Word("abc")), 0); // an equal text: the stored one stays
    EXPECT_EQ(AllocationCalls(), calls);
    EXPECT_EQ(VelkSetKey(board.config, "T", text + 1), 0); // into the present payload
    EXPECT_EQ(board.Run("#L=( ."), "0 b000001*=bc f000001*=");
}
