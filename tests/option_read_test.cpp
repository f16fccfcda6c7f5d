// Reading options, and asking for their valid values.
#include "tests/support/board.h"

namespace
{

const char *const registers = "10=ffffffff 11=2 12=3 0B000001=abc 0F000001=1,2";

// What may be told of the valid values of O: "!" and a status, or their three words, references followed.
std::string ValidText(const Board &board)
{
    uint32_t kind = 99;
    VelkValidRef ref = nullptr;
    const StatusCode status = VelkQueryOptionValidValues(board.config, "O", &kind, &ref);
    EXPECT_NE(kind, 99U);
    EXPECT_EQ(ref == nullptr, status != 0);
    if (status != 0)
        return "!" + std::to_string(status);

    VelkWord words[3] = {9, 9, 9};
    EXPECT_EQ(VelkDataFromValidValueRef(board.config, ref, words), 0);
    if (kind == ValidKindRange)
        return std::to_string(words[0]) + ":" + std::to_string(words[1]) + ":" + std::to_string(words[2]);
    EXPECT_EQ(words[2], 0U);
    if (kind == ValidKindString)
        return words[0] == 0 ? "any" : "'" + std::string(reinterpret_cast<const char *>(words[0]));
    const auto count = static_cast<int32_t>(words[0]);
    std::string text = std::to_string(count) + ":";
    uint32_t numbers[8] = {};
    if (kind == ValidKindList)
        VelkDataFromValueListRef(nullptr, reinterpret_cast<const uint32_t *>(words[1]), numbers, count);
    const List *lists = reinterpret_cast<const List *>(words[1]);
    for (int32_t n = 0; n < count; ++n)
        text += " " + (kind == ValidKindList ? std::to_string(numbers[n]) : std::to_string(lists[n].count));
    return text;
}

} // namespace

TEST(OptionReading, FollowsTheGetMethod)
{
    static const char *const rows[][3] = {{"B(>5),A", "B:1?7", "2"}, // the binding's condition plays no part
                                          {"B", "B:2?A", "ffffffff"},
                                          {"B", "B!2?A", "2"},
                                          {"B", "B>1?12abc", "c"},
                                          {"B", "B>2?7", "2"},
                                          {"B", "B<2?7", "2"},
                                          {"B", "A<1?7", "2"}, // unsigned
                                          {"Gone", "B&3?-1", "ffffffff"},
                                          {"Gone", "B&0?7", "!-3"},
                                          {"A", "Gone:0?7", "!-3"},
                                          {"A", "B:2?Two", "!-99"},
                                          {"A", "T:1?7", "!-18"},
                                          {"A", "B:2?T", "!-18"},
                                          {"B", "B:1?T", "2"}, // never comes to it
                                          {"T", "B:2?A", "!-18"},
                                          {"L", "B:2?7", "!-18"},
                                          {"L", "B:2?0", "-"},
                                          {"L", "B:2?L", "1,2"},
                                          {"T", "B:1?0", "abc"}};
    for (const auto &[keys, getMethod, value] : rows) {
        const char *type = *keys == 'T' ? "String" : *keys == 'L' ? "ListSet" : "Range";
        Board_Expect(sampleKeys,
                     Option("O", keys, type, "GetMethod=" + std::string(getMethod) + "\ndefault="), registers,
                     "O", value);
    }
}

TEST(OptionReading, TellsKindsApart)
{
    const Board board(sampleKeys,
                      Option("O", "A", "Range", "default=0:1:9") + Option("S", "T", "String", "default=*") +
                          Option("Lost", "Gone", "Range", "default=0:1:9"),
                      registers);
    const auto read = [&](const char *name, int32_t kind) {
        VelkWord value = 99;
        int32_t actualKind = 55;
        const StatusCode status = VelkGetOptionEx(board.config, name, kind, &value, &actualKind);
        EXPECT_EQ(value == 99, status != 0);
        return std::to_string(status) + " " + std::to_string(actualKind);
    };
    for (const int32_t kind : {1, 7})
        EXPECT_EQ(read("O", kind), "-18 55");
    EXPECT_EQ(read("O", 0) + " " + read("O", -1) + " " + read("S", 2) + " " + read("S", -1),
              "0 0 0 0 0 2 0 2");
    EXPECT_EQ(read("S", 0) + " " + read("s", -1), "-18 55 -9 55");
    uint32_t number = 99;
    EXPECT_EQ(VelkGetOption(board.config, "O", &number), 0);
    EXPECT_EQ(std::exchange(number, 99), ~0U);
    EXPECT_EQ(VelkGetOption(board.config, "S", &number), -17);
    EXPECT_EQ(VelkGetOption(board.config, "Lost", &number), -3);
    EXPECT_EQ(number, 99U);
}

TEST(OptionReading, GivesTheValidValuesInForce)
{
    const std::string others = Option("X", "B", "Range", "default=0:1:9") +
                               Option("Lost", "Gone", "Range", "default=0:1:9") +
                               Option("S", "T", "String", "default=*");
    static const char *const rows[][4] = {
        {"A", "Range", "X:2=1:2:3\ndefault=4:5:6", "1:2:3"},
        {"A", "Range", "X:1=1:2:3\ndefault=4:5:6\nX:2=7:8:9", "4:5:6"},
        {"A", "Range", "X:1,Lost:1=1:2:3\nX>1,X<3=7:8:9", "7:8:9"}, // the lost one is not read
        {"A", "Range", "X:2,Lost:1=1:2:3\ndefault=7:8:9", "!-3"},
        {"A", "Range", "X:1=1:2:3", "!-99"},
        {"A", "Range", "S:0=1:2:3\ndefault=7:8:9", "!-18"},
        {"A", "Range", "default=", "0:0:0"},
        {"A", "List", "default=(1, :8:2:12)", "4: 1 8 10 12"},
        {"A", "List", "default=", "0:"},
        {"L", "ListSet", "default=[*, (1)]", "-1:"},
        {"L", "ListSet", "default=[]", "0:"},
        {"L", "ListSet", "default=[(1,2),(:3:1:5) *,(7]", "3: 2 3 1"},
        {"L", "ListSet", "default=[() (0x10)]", "2: 0 1"},
        {"L", "ListSet", "default=[(1)2,(3)]", "2: 2 1"},
        {"L", "ListSet", "default=[\t]", "0:"},
        {"T", "String", "default=a, b ", "'a, b"},
        {"T", "String", "default=", "'"},
        {"T", "String", "default=*x", "any"}};
    for (const auto &[key, type, rules, valid] : rows) {
        SCOPED_TRACE(rules);
        EXPECT_EQ(ValidText({sampleKeys, Option("O", key, type, rules) + others, registers}), valid);
    }
    const Board board("", "", nullptr);
    uint32_t untouched = 5;
    EXPECT_EQ(VelkQueryOptionValidValues(board.config, "O", &untouched, nullptr), -9);
    EXPECT_EQ(VelkDataFromValueListRef(nullptr, nullptr, &untouched, -1), 0);
    EXPECT_EQ(untouched, 5U);
}
