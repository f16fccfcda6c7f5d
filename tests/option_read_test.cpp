// Reading options, and asking for their valid values.
#include <string>

#include <gtest/gtest.h>

#include "tests/support/board.h"

namespace
{

const char *const keys = "[A]\n0x10 (0xFF)=Value\n[B]\n0x11 (0xFF)=Value\n[C]\n0x12 (0xFFFFFFFF)=Value\n"
                         "[Gone]\n0x99 (1)=Value\n[Bit]\n0x10 (1)=Bool\nFALSE=5\nTRUE=6\n"
                         "[T]\n0x0B000001 (0)=String\n[L]\n0x0F000001 (0)=List\n";
const char *const registers = "10=1 11=2 12=ffffffff 0B000001=abc 0F000001=1,2";

std::string Option(const std::string &key, const std::string &type, const std::string &items)
{
    return "[O]\nKeys=" + key + "\nValidValuesType=" + type + "\n" + items + "\n";
}

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
    VelkDataFromValidValueRef(board.config, ref, words);
    const auto count = static_cast<int32_t>(words[0]);
    if (kind == ValidKindRange)
        return std::to_string(words[0]) + ":" + std::to_string(words[1]) + ":" + std::to_string(words[2]);
    EXPECT_EQ(words[2], 0U);
    if (kind == ValidKindString)
        return words[0] == 0 ? "any" : "'" + std::string(reinterpret_cast<const char *>(words[0]));
    std::string text = std::to_string(count) + ":";
    uint32_t numbers[8] = {};
    if (kind == ValidKindList)
        VelkDataFromValueListRef(nullptr, reinterpret_cast<const uint32_t *>(words[1]), numbers, count);
    for (int32_t n = 0; n < count; ++n)
        text +=
            " " + std::to_string(kind == ValidKindList ? static_cast<int64_t>(numbers[n])
                                                       : reinterpret_cast<const List *>(words[1])[n].count);
    return text;
}

} // namespace

TEST(OptionReading, FollowsTheGetMethod)
{
    static const struct {
        const char *key, *type, *getMethod, *value;
    } rows[] = {{"A(>5),B", "Range", "B:1?7", "1"}, // the binding's condition plays no part
                {"A", "Range", "B:2?C", "ffffffff"},
                {"A", "Range", "B!2?C", "1"},
                {"A", "Range", "B>1?12abc", "c"},
                {"A", "Range", "B<2?7", "1"},
                {"A", "Range", "C<1?7", "1"}, // unsigned
                {"Gone", "Range", "B&3?-1", "ffffffff"},
                {"Gone", "Range", "B&0?7", "!-3"},
                {"A", "Range", "Gone:0?7", "!-3"},
                {"A", "Range", "B:2?Bit", "!-99"},
                {"A", "Range", "T:1?7", "!-18"},
                {"A", "Range", "B:2?T", "!-18"},
                {"A", "Range", "B:1?T", "1"}, // never comes to it
                {"T", "String", "B:2?A", "!-18"},
                {"L", "ListSet", "B:2?7", "!-18"},
                {"L", "ListSet", "B:2?0", "-"},
                {"L", "ListSet", "B:2?L", "1,2"},
                {"T", "String", "B:1?0", "abc"}};
    for (const auto &row : rows)
        Board_Expect(keys,
                     Option(row.key, row.type, "GetMethod=" + std::string(row.getMethod) + "\ndefault="),
                     registers, "O", row.value);
}

TEST(OptionReading, TellsKindsApart)
{
    const Board board(
        keys, Option("A", "Range", "default=0:1:9") + "[S]\nKeys=T\nValidValuesType=String\ndefault=*\n",
        registers);
    static const struct {
        const char *name;
        int32_t kind;
        StatusCode status;
        int32_t actualKind;
    } rows[] = {{"O", 0, 0, 0},  {"O", -1, 0, 0}, {"O", 1, -18, 55}, {"O", 7, -18, 55},
                {"S", -1, 0, 2}, {"S", 2, 0, 2},  {"S", 0, -18, 55}, {"s", -1, -9, 55}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.name + std::to_string(row.kind));
        VelkWord value = 99;
        int32_t kind = 55;
        EXPECT_EQ(VelkGetOptionEx(board.config, row.name, row.kind, &value, &kind), row.status);
        EXPECT_EQ(kind, row.actualKind);
        EXPECT_EQ(value == 99, row.status != 0);
    }
    uint32_t number = 99;
    EXPECT_EQ(VelkGetOption(board.config, "S", &number), -17);
    EXPECT_EQ(number, 99U);
}

TEST(OptionReading, GivesTheValidValuesInForce)
{
    const std::string others =
        "[X]\nKeys=B\nValidValuesType=Range\ndefault=0:1:9\n[Lost]\nKeys=Gone\n"
        "ValidValuesType=Range\ndefault=0:1:9\n[S]\nKeys=T\nValidValuesType=String\ndefault=*\n";
    static const struct {
        const char *key, *type, *rules, *valid;
    } rows[] = {{"A", "Range", "X:2=1:2:3\ndefault=4:5:6", "1:2:3"},
                {"A", "Range", "X:1=1:2:3\ndefault=4:5:6\nX:2=7:8:9", "4:5:6"},
                {"A", "Range", "X:1,Lost:1=1:2:3\nX>1,X<3=7:8:9", "7:8:9"}, // the lost one is not read
                {"A", "Range", "X:2,Lost:1=1:2:3\ndefault=7:8:9", "!-3"},
                {"A", "Range", "X:1=1:2:3", "!-99"},
                {"A", "Range", "S:0=1:2:3\ndefault=7:8:9", "!-18"},
                {"A", "Range", "X:1,S:0=1:2:3\ndefault=7:8:9", "7:8:9"},
                {"A", "Range", "default=", "0:0:0"},
                {"A", "List", "default=(1, :8:2:12)", "4: 1 8 10 12"},
                {"A", "List", "default=", "0:"},
                {"L", "ListSet", "default=[*, (1)]", "-1:"},
                {"L", "ListSet", "default=[]", "0:"},
                {"L", "ListSet", "default=[(1,2),(:3:1:5) *,(7]", "3: 2 3 1"},
                {"L", "ListSet", "default=[() (0x10)]", "2: 0 1"},
                {"T", "String", "default=a, b ", "'a, b"},
                {"T", "String", "default=", "'"},
                {"T", "String", "default=*x", "any"}};
    for (const auto &row : rows) {
        SCOPED_TRACE(row.rules);
        const Board board(keys, Option(row.key, row.type, row.rules) + others, registers);
        EXPECT_EQ(ValidText(board), row.valid);
    }
    uint32_t untouched = 5;
    EXPECT_EQ(VelkDataFromValueListRef(nullptr, nullptr, &untouched, -1), 0);
}
