// Setting options: coercion, the cascade, the roll-back, change lists.
#include <string>

#include <gtest/gtest.h>

#include "tests/support/board.h"

namespace
{

const char *const keys =
    "[A]\n0x10 (0xFFFFFFFF)=Value\n[B]\n0x11 (0xFF)=Value\n[Two]\n0x12 (3)=Index\nArray=1,2\n"
    "[Gone]\n0x99 (1)=Value\n[T]\n0x0B000001 (0)=String\n[L]\n0x0F000001 (0)=List\n";
const char *const registers = "10=63 11=2 12=0 0B000001=abc 0F000001=1,2";

std::string Option(const std::string &name, const std::string &optionKeys, const std::string &type,
                   const std::string &rules)
{
    return "[" + name + "]\nKeys=" + optionKeys + "\nValidValuesType=" + type + "\n" + rules + "\n";
}

// The option that most tests set.
const std::string o = Option("O", "B", "Range", "default=0:1:9");

// A mode, and a speed whose values follow it.
const char *const modeKeys =
    "[ModeBits]\n0x20 (0xF)=Value\n[SpeedBits]\n0x21 (0xFF)=Value\n[FastFlag]\n0x22 (1)=Value\n";
const std::string modeOptions = Option("Mode", "ModeBits", "Range", "default=0:1:3") +
                                Option("Speed", "SpeedBits,FastFlag(>100)", "List",
                                       "Mode:1=^16:128\nMode:2=(10,20,200)\ndefault=(10, 20, 200)");

ChangeEntry Entry(const char *name)
{
    return {name, nullptr, 77, 88, 99, nullptr};
}

} // namespace

TEST(OptionSetting, MovesNumbersOntoValidOnes)
{
    static const struct {
        const char *type, *rule;
        uint32_t value, stored; // 99: kept, as no value is valid
    } rows[] = {{"Range", "10:4:20", 3, 10},   {"Range", "10:4:20", 13, 10},
                {"Range", "10:4:20", 14, 14},  {"Range", "10:4:20", 19, 18},
                {"Range", "10:4:20", 20, 18},  {"Range", "10:4:20", 21, 20},
                {"Range", "0:0:20", 5, 99},    {"Range", "9:1:4", 3, 9},
                {"Range", "9:1:4", 10, 4},     {"Range", "0:1:-1", ~0U, ~0U},
                {"List", "5,1,9", 9, 9},       {"List", "5,1,9", 0, 1},
                {"List", "5,1,9", 6, 9},       {"List", "5,1,9", 10, 9},
                {"List", "9,5,9,-1", 10, ~0U}, {"List", "", 3, 99}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.rule + std::string(" ") + std::to_string(row.value));
        const Board board(keys, Option("O", "A", row.type, "default=" + std::string(row.rule)), registers);
        EXPECT_EQ(VelkSetOption(board.config, "O", row.value), 0);
        uint32_t value = 0;
        EXPECT_EQ(VelkGetOption(board.config, "O", &value), 0);
        EXPECT_EQ(value, row.stored);
        EXPECT_EQ(VelkIsConfigModified(board.config), row.stored != 99);
    }
}

TEST(OptionSetting, MovesListsAndTextsOntoValidOnes)
{
    static const struct {
        const char *key, *type, *rule, *commands, *results;
    } rows[] = {{"L", "ListSet", "*", "O=(3,4 O O=null O", "0 3,4 -1 3,4"},
                {"L", "ListSet", "[(7)]", "O=(3,4 O O=null O=5 O='x o=5", "0 7 0 -17 -17 -9"},
                {"L", "ListSet", "[]", "O=(3,4 .", "0 10=63 11=2 12=0 b000001=abc f000001=1,2"},
                {"L", "ListSet", "[(3,4),(1)]", "O=(3,4 O", "-16 1,2"},
                {"L(:1)", "ListSet", "*", "O=(3,4 O", "-18 1,2"},
                {"L(:1)", "ListSet", "[]", "O=(3,4 O", "0 1,2"},
                {"L(:1)", "ListSet", "(1),(2)", "O=(3,4 O", "-16 1,2"},
                {"T", "String", "*", "O='new O O=null O", "0 new -1 new"},
                {"T", "String", "fixed", "O=null O O=(1 O=1", "0 fixed -17 -17"},
                {"T", "String", "", "O='x O", "0 "},
                {"T,T(:1)", "String", "*", "O='x .", "-18 10=63 11=2 12=0 b000001=abc f000001=1,2"},
                {"A", "Range", "0:1:9", "O='x O=(1 O=0xFFFFFFFF00000005 O", "-17 -17 0 5"}};
    for (const auto &row : rows)
        Board_Expect(keys, Option("O", row.key, row.type, "default=" + std::string(row.rule)), registers,
                     row.commands, row.results);
    const Board board(keys, Option("O", "T", "String", "default=*"), registers);
    EXPECT_EQ(VelkSetOption(board.config, "O", 5), -17);
    EXPECT_EQ(VelkSetOptionEx(board.config, "O", -1, Word("x")), -17); // no wildcard here
}

TEST(OptionSetting, CarriesDependantsAlong)
{
    Board_Expect(modeKeys, modeOptions, "20=0 21=14 22=0",
                 "Mode=1 Mode Speed #FastFlag Mode=0 Mode Speed #FastFlag Mode=7 Mode Speed #FastFlag",
                 "0 1 20 0 0 0 c8 1 0 3 c8 1");
}

TEST(OptionSetting, IsAllOrNothing)
{
    const std::string text = Option("P", "T", "String", "O:5=new\ndefault=*");
    const struct {
        std::string options;
        const char *status;
    } rows[] = {
        {Option("O", "B,Gone,A", "Range", "default=0:1:9"), "-3"},  // its second key
        {Option("O", "B,Two", "Range", "default=0:1:9"), "-99"},    // not a value of the key
        {o + Option("D", "Gone", "Range", "O:5=0:1:9"), "-3"},      // a dependant that cannot be read ahead
        {o + text + Option("D", "A", "Range", "O:2=0:1:9"), "-99"}, // one that no rule is left for
        {o + text + Option("E", "L", "ListSet", "O:5=[(1),(2)]\ndefault=*"), "-16"},
        {o + text + Option("Q", "A", "Range", "O:5=1:1:2\ndefault=0:1:999") + // and one of a dependant's
             Option("R", "Two", "Range", "Q:2=9:1:9\ndefault=1:1:1"),
         "-99"}};
    for (const auto &row : rows)
        Board_Expect(keys, row.options, registers, "O=5 .",
                     std::string(row.status) + " 10=63 11=2 12=0 b000001=abc f000001=1,2");
}

TEST(OptionSetting, KeepsSavedValuesReadable)
{
    // P and Q replace the text and the list that D and E are to have again.
    const Board board(keys,
                      o + Option("P", "T", "String", "O:5=other\ndefault=*") +
                          Option("Q", "L", "ListSet", "O:5=[(9)]\ndefault=*") +
                          Option("D", "T", "String", "O<9=*") + Option("E", "L", "ListSet", "O<9=*"),
                      registers);
    const VelkWord text = TableOf(board.config)->regs[3].value;
    ChangeEntry entries[] = {Entry("D"), Entry("E"), Entry("O")};
    EXPECT_EQ(VelkSetOptionWithChangeList(board.config, "O", 5, entries, 3), 0);
    EXPECT_EQ(board.Run("."), "10=63 11*=5 12=0 b000001*=abc f000001*=1,2");
    // Equal contents, but at new addresses, which the old ones were still in use not to be.
    EXPECT_TRUE(entries[0].flags == 1 && entries[1].flags == 1 && entries[2].flags == 1);
    EXPECT_EQ(entries[0].newValue, TableOf(board.config)->regs[3].value);
    EXPECT_NE(entries[0].newValue, text);
}

TEST(OptionSetting, EndsOnGraphsThatRulesDoNotShow)
{
    // O is a dependant of P by its first definition, P one of O by its second.
    const Board board(keys,
                      Option("O", "B", "Range", "P:1=0:1:9") + Option("P", "A", "Range", "default=0:1:99"),
                      registers, o + Option("P", "A", "Range", "O>0=0:1:99"));
    EXPECT_EQ(board.Run("O=5 P=5 ."), "-99 -99 10=63 11=2 12=0 b000001=abc f000001=1,2");
    // Layers of four options, each of which tests all four of the layer above: 4 to the power of 11 paths.
    std::string options = o;
    for (int n = 0; n < 44; ++n) {
        std::string rule = n < 4 ? "O<1" : "";
        for (int above = n / 4 * 4 - 4; above >= 0 && above < n / 4 * 4; ++above)
            rule += (rule.empty() ? "" : ",") + std::to_string(above) + "<1";
        options += Option(std::to_string(n), "A", "Range", rule + "=0:1:99\ndefault=0:1:99");
    }
    Board_Expect(keys, options, registers, "12=5 O=5 .", "0 -99 10*=63 11=2 12=0 b000001=abc f000001=1,2");
}

TEST(ChangeLists, TellWhatASetHasMoved)
{
    static const struct {
        const char *before;
        uint32_t set, modeFlags, speedFlags, newSpeed;
    } rows[] = {
        {"20=0 21=14 22=0", 1, 1, 3, 32}, {"20=1 21=20 22=0", 1, 0, 0, 88},
        {"20=0 21=14 22=0", 2, 1, 2, 88},                                 // the same list in another rule
        {"20=3 21=14 22=0", 9, 0, 0, 88},                                 // moved onto the value that it had
        {"20=0 21=14 22=0", 3, 1, 0, 88}, {"20=0 21=b 22=0", 3, 1, 1, 20} // was left off its values
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.before + std::string(" to ") + std::to_string(row.set));
        const Board board(modeKeys, modeOptions, row.before);
        ChangeEntry entries[] = {Entry("Mode"), Entry("Speed"), Entry("nothing")};
        EXPECT_EQ(VelkRefFromOptionName(board.config, "Speed", &entries[2].optionRef), 0);
        EXPECT_EQ(VelkSetOptionExWithChangeList(board.config, "Mode", 0, row.set, entries, 3), 0);
        EXPECT_EQ(entries[0].flags, row.modeFlags);
        EXPECT_EQ(entries[0].newValue, row.modeFlags != 0 ? row.set : 88);
        uint32_t kind = 0;
        VelkValidRef ref = nullptr;
        VelkQueryOptionValidValues(board.config, "Speed", &kind, &ref);
        const bool moved = (row.speedFlags & ChangeValidChanged) != 0;
        for (const ChangeEntry &entry : {entries[1], entries[2]}) {
            EXPECT_EQ(entry.flags, row.speedFlags);
            EXPECT_EQ(entry.newValue, row.newSpeed);
            EXPECT_EQ(entry.newValidKind, moved ? kind : 99);
            EXPECT_EQ(entry.newValidRef, moved ? ref : nullptr);
        }
    }
}

TEST(ChangeLists, SayHowFarTheyCame)
{
    const std::string options =
        o + Option("Bad", "A", "Range", "O:7=0:1:9") + Option("Lost", "Gone", "Range", "default=0:1:9");
    const std::string good = o + Option("Off", "A", "Range", "GetMethod=B:5?Gone\ndefault=0:1:9");
    const struct {
        std::string options;
        const char *set, *listed[3];
        StatusCode status;
        uint32_t flags[3];
        const char *after;
    } rows[] = {
        {options, "o", {"O", "O", "O"}, -9, {77, 77, 77}, "2"},
        {options, "O", {"O", "no", "O"}, -9, {0, 0, 77}, "2"},
        {options, "O", {"O", "Bad", "O"}, -99, {0, 0, 77}, "2"},
        {options, "O", {"Lost", "O", "O"}, -3, {0, 77, 77}, "2"},
        {options, "O", {"O", "O", "O"}, -99, {0, 0, 0}, "2"}, // its dependant "Bad" fails
        {good, "O", {"O", "Off", "O"}, -3, {1, 0, 0}, "5"}    // behind the set, which stands
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.set + std::string(row.listed[0]) + row.listed[1]);
        const Board board(keys, row.options, registers);
        ChangeEntry entries[] = {Entry(row.listed[0]), Entry(row.listed[1]), Entry(row.listed[2])};
        EXPECT_EQ(VelkSetOptionWithChangeList(board.config, row.set, 5, entries, 3), row.status);
        for (int n = 0; n < 3; ++n)
            EXPECT_EQ(entries[n].flags, row.flags[n]) << n;
        EXPECT_EQ(board.Run("O"), row.after);
    }
    const Board board(keys, o, registers);
    EXPECT_EQ(VelkSetOptionWithChangeList(board.config, "O", 6, nullptr, -1), 0); // as none
}
