// Setting options: coercion, the cascade, the roll-back, change lists.
#include "tests/support/board.h"

namespace
{

const std::string untouched = sampleRegisters;

// The option that most tests set.
const std::string o = Option("O", "B", "Range", "default=0:1:9");

// A mode, and a speed whose values follow it.
const char *const modeKeys = "[Mode]\n0x20 (0xF)=Value\n[Speed]\n0x21 (0xFF)=Value\n[Fast]\n0x22 (1)=Value\n";
const std::string modeOptions =
    Option("Mode", "Mode", "Range", "default=0:1:3") +
    Option("Speed", "Speed,Fast(>100)", "List", "Mode:1=^16:128\nMode:2=(10,20,200)\ndefault=(10, 20, 200)");

// Conditions on the four options of a layer; on O above the first.
std::string LayerConditions(int layer)
{
    std::string conditions = layer < 0 ? "O<1" : "";
    for (int n = 4 * layer; layer >= 0 && n < 4 * layer + 4; ++n)
        conditions += (conditions.empty() ? "" : ",") + std::to_string(n) + "<1";
    return conditions;
}

// Layers of four options, each of which tests all four of the layer above: each makes four times the paths.
std::string Layers(int count)
{
    std::string options = o;
    for (int n = 0; n < 4 * count; ++n)
        options +=
            Option(std::to_string(n), "A", "Range", LayerConditions(n / 4 - 1) + "=0:1:99\ndefault=0:1:99");
    return options;
}

ChangeEntry Entry(const char *name)
{
    return {name, nullptr, 77, 88, 99, nullptr};
}

} // namespace

TEST(OptionSetting, MovesValuesOntoValidOnes)
{
    static const char *const rows[][5] = {
        {"A", "Range", "10:4:20", "O=3 O O=13 O O=14 O O=19 O O=20 O O=21 O", "0 a 0 a 0 e 0 12 0 12 0 14"},
        {"A", "Range", "9:1:4", "O=3 O O=10 O", "0 9 0 4"},
        {"A", "Range", "0:1:-1", "O=-1 O", "0 ffffffff"},
        {"A", "Range", "0:1:9", "O='x O=(1 O=0xFFFFFFFF00000005 O", "-17 -17 0 5"},
        {"A", "Range", "0:0:20", "O=5 O .", "0 63 10=63 11=2 12=0 b000001=abc f000001=1,2"}, // none is valid
        {"A", "List", "", "O=3 O", "0 63"},
        {"A", "List", "5,1,9", "O=9 O O=0 O O=6 O O=10 O", "0 9 0 1 0 9 0 9"},
        {"A", "List", "9,5,9,-1", "O=10 O", "0 ffffffff"},
        {"L", "ListSet", "*", "O=(3,4 O O=(- O", "0 3,4 -1 3,4"},
        {"L", "ListSet", "[(7)]", "O=(3,4 O O=(- O=5 O='x o=5", "0 7 0 -17 -17 -9"},
        {"L", "ListSet", "[]", "O=(3,4 O", "0 1,2"},
        {"L", "ListSet", "[(3,4),(1)]", "O=(3,4 O", "-16 1,2"},
        {"L(:1)", "ListSet", "*", "O=(3,4 O", "-18 1,2"},
        {"L(:1)", "ListSet", "[]", "O=(3,4 O", "0 1,2"},
        {"L(:1)", "ListSet", "(1),(2)", "O=(3,4 O", "-16 1,2"},
        {"T", "String", "*", "O='new O O='- O", "0 new -1 new"},
        {"T", "String", "fixed", "O='- O O=(1 O=1", "0 fixed -17 -17"},
        {"T", "String", "", "O='x O", "0 "},
        {"T,T(:1)", "String", "*", "O='x O", "-18 abc"}};
    for (const auto &[keys, type, rule, commands, results] : rows)
        Board_Expect(sampleKeys, Option("O", keys, type, std::string("default=") + rule), sampleRegisters,
                     commands, results);
    const std::string text = Option("O", "T", "String", "default=*");
    Board_Expect(sampleKeys, text, "b000001=-", "O='x O O='y O", "0 x 0 y");
    const Board board(sampleKeys, text, sampleRegisters);
    EXPECT_EQ(VelkSetOption(board.config, "O", 5), -17);
    EXPECT_EQ(VelkSetOptionEx(board.config, "O", -1, Word("x")), -17); // no wildcard here
}

TEST(OptionSetting, CarriesDependantsAlong)
{
    Board_Expect(modeKeys, modeOptions, "20=0 21=14 22=0", "Mode=1 Mode Speed #Fast Mode=0 . Mode=7 .",
                 "0 1 20 0 0 20*=0 21*=c8 22*=1 0 20*=3 21*=c8 22*=1");
    // Paths that part and meet again are no circle.
    Board_Expect(sampleKeys, Layers(2), sampleRegisters, "O=5 .", "0 " + Edited(untouched, "11=2", "11*=5"));
    Board_Expect(sampleKeys,
                 o + Option("P", "A", "Range", "O<9=0:1:99") + Option("Q", "A", "Range", "O<9=0:1:99") +
                     Option("R", "A", "Range", "P>0,Q>0=0:1:99"),
                 sampleRegisters, "O=5 O", "0 5");
}

TEST(OptionSetting, IsAllOrNothing)
{
    const std::string text = o + Option("P", "T", "String", "O:5=new\ndefault=*");
    const std::tuple<std::string, const char *> rows[] = {
        {Option("O", "B,Gone,A", "Range", "default=0:1:9"), "-3"}, // its second key
        {Option("O", "B,Two", "Range", "default=0:1:9"), "-99"},   // not a value of the key
        {o + Option("D", "Gone", "Range", "O:5=0:1:9"), "-3"},     // a dependant that cannot be read ahead
        {text + Option("D", "A", "Range", "O:2=0:1:9"), "-99"},    // one that no rule is left for
        {text + Option("E", "L", "ListSet", "O:5=[(1),(2)]\ndefault=*"), "-16"},
        {text + Option("Q", "A", "Range", "O:5=1:1:2\ndefault=0:1:999") + // one of a dependant's
             Option("R", "Two", "Range", "Q:2=9:1:9\ndefault=1:1:1"),
         "-99"}};
    for (const auto &[options, status] : rows)
        Board_Expect(sampleKeys, options, sampleRegisters, "O=5 .", status + (" " + untouched));
}

TEST(OptionSetting, KeepsSavedValuesReadable)
{
    // P and Q replace the text and the list that D and E are to have again.
    const Board board(sampleKeys,
                      o + Option("P", "T", "String", "O:5=other\ndefault=*") +
                          Option("Q", "L", "ListSet", "O:5=[(9)]\ndefault=*") +
                          Option("D", "T", "String", "O<9=*") + Option("E", "L", "ListSet", "O<9=*"),
                      sampleRegisters);
    ChangeEntry entries[] = {Entry("D"), Entry("E"), Entry("O")};
    EXPECT_EQ(VelkSetOptionWithChangeList(board.config, "O", 5, entries, 3), 0);
    EXPECT_EQ(board.Run("."), "10=63 11*=5 12=0 b000001*=abc f000001*=1,2");
    // Equal contents, but at new addresses, which the old ones were still in use not to be.
    EXPECT_TRUE(entries[0].flags == 1 && entries[1].flags == 1 && entries[2].flags == 1);
    EXPECT_EQ(entries[0].newValue, TableOf(board.config)->regs[3].value);
}

TEST(OptionSetting, EndsOnGraphsThatRulesDoNotShow)
{
    // O is a dependant of P by its first definition, P one of O by its second.
    const std::string p = Option("P", "A", "Range", "default=0:1:99");
    const Board board(sampleKeys, Option("O", "B", "Range", "P:1=0:1:9") + p, sampleRegisters,
                      o + Option("P", "A", "Range", "O>0=0:1:99"));
    EXPECT_EQ(board.Run("O=5 P=5 ."), "-99 -99 " + untouched);
    // Option 8 loses its rule on 9, but stays a dependant: 17 in a row, which come in 16 and 1.
    std::string chain = Option("17", "B", "Range", "default=0:1:9");
    for (int n = 16; n > 0; --n)
        chain += Option(std::to_string(n), "B", "Range", std::to_string(n + 1) + ":10=\ndefault=0:1:9");
    const Board deep(sampleKeys, chain, sampleRegisters, Option("8", "B", "Range", "default=0:1:9"));
    EXPECT_EQ(deep.Run("17=5 . 16=5"), "-99 " + untouched + " 0");
    // 4 to the power of 11 paths.
    Board_Expect(sampleKeys, Layers(11), sampleRegisters, "12=5 O=5 .",
                 "0 -99 " + Edited(untouched, "10", "10*"));
}

TEST(OptionSetting, EndsWhereItWouldKeepTooMuch)
{
    // Two options take turns with one text, 65,536 times: 128 MiB of replaced ones.
    const auto text = [](char letter) { return std::string(1000, letter) + "\n"; };
    const auto taker = [&](const char *name, char letter) {
        return Option(name, "T", "String",
                      LayerConditions(7) + "=" + text(letter) + "default=" + text(letter));
    };
    Board_Expect(sampleKeys, Layers(8) + taker("X", 'x') + taker("Y", 'y'), sampleRegisters, "O=5 .",
                 "-1 " + untouched);
}

TEST(ChangeLists, TellWhatASetHasMoved)
{
    // Registers, the mode to set, and of mode and speed the flags with the new value; 88 is none.
    static const std::tuple<const char *, uint32_t, const char *, const char *> rows[] = {
        {"20=0 21=14 22=0", 1, "1:1", "3:32"},
        {"20=1 21=20 22=0", 1, "0:88", "0:88"},
        {"20=0 21=14 22=0", 2, "1:2", "2:88"},  // the same list in another rule
        {"20=3 21=14 22=0", 9, "0:88", "0:88"}, // moved onto the value that it had
        {"20=0 21=14 22=0", 3, "1:3", "0:88"},
        {"20=0 21=b 22=0", 3, "1:3", "1:20"} // was left off its values
    };
    for (const auto &[before, set, mode, speed] : rows) {
        SCOPED_TRACE(before + std::string(" to ") + std::to_string(set));
        const Board board(modeKeys, modeOptions, before);
        ChangeEntry entries[] = {Entry("Mode"), Entry("Speed"), Entry("nothing")};
        EXPECT_EQ(VelkRefFromOptionName(board.config, "speed", &entries[2].optionRef), -9);
        EXPECT_EQ(VelkRefFromOptionName(board.config, "Speed", &entries[2].optionRef), 0);
        EXPECT_EQ(VelkSetOptionExWithChangeList(board.config, "Mode", 0, set, entries, 3), 0);
        uint32_t kind = 0;
        VelkValidRef ref = nullptr;
        VelkQueryOptionValidValues(board.config, "Speed", &kind, &ref);
        for (const ChangeEntry &entry : entries) {
            EXPECT_EQ(std::to_string(entry.flags) + ":" + std::to_string(entry.newValue),
                      &entry == entries ? mode : speed);
            const bool moved = (entry.flags & ChangeValidChanged) != 0;
            EXPECT_EQ(entry.newValidKind, moved ? kind : 99);
            EXPECT_EQ(entry.newValidRef, moved ? ref : nullptr);
        }
    }
}

TEST(ChangeLists, SayHowFarTheyCame)
{
    const std::string options =
        o + Option("Bad", "A", "Range", "O:7=0:1:9") + Option("Lost", "Gone", "Range", "default=0:1:9");
    const std::string good = o + Option("Off", "A", "Range", "GetMethod=B:5?Gone\ndefault=0:1:9") +
                             Option("Behind", "A", "Range", "Off:1=0:1:9\ndefault=0:1:9");
    const struct {
        std::string options;
        const char *set, *listed[2];
        StatusCode status;
        uint32_t flags[2];
        const char *after;
    } rows[] = {
        {options, "o", {"O", "O"}, -9, {77, 77}, "2"},   {options, "O", {"no", "O"}, -9, {0, 77}, "2"},
        {options, "O", {"Bad", "O"}, -99, {0, 77}, "2"}, {options, "O", {"Lost", "O"}, -3, {0, 77}, "2"},
        {options, "O", {"O", "O"}, -99, {0, 0}, "2"}, // its dependant "Bad" fails
        {good, "O", {"O", "Off"}, -3, {1, 0}, "5"},   // behind the set, which stands
        {good, "O", {"O", "Behind"}, -3, {1, 0}, "5"}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.set + std::string(row.listed[0]) + row.listed[1]);
        const Board board(sampleKeys, row.options, sampleRegisters);
        ChangeEntry entries[] = {Entry(row.listed[0]), Entry(row.listed[1])};
        EXPECT_EQ(VelkSetOptionWithChangeList(board.config, row.set, 5, entries, 2), row.status);
        EXPECT_TRUE(entries[0].flags == row.flags[0] && entries[1].flags == row.flags[1]);
        EXPECT_EQ(board.Run("O"), row.after);
    }
    const Board board(sampleKeys, o, sampleRegisters);
    EXPECT_EQ(VelkSetOptionWithChangeList(board.config, "O", 6, nullptr, -1), 0); // as none
    ChangeEntry only = Entry("O");
    EXPECT_EQ(VelkSetOptionWithChangeList(board.config, "O", 7, &only, 1), 0);
    EXPECT_EQ(only.newValue, 7U);
}
