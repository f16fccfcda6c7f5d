// The configuration as a whole: raw bits, copies, no table. And the messages.
#include <string>

#include <gtest/gtest.h>

#include "tests/support/board.h"

namespace
{

const char *const keys = "[A]\n0x10 (0xFF)=Value\n[T]\n0x0B000001 (0)=String\n";
const char *const options = "[O]\nKeys=A\nValidValuesType=Range\ndefault=0:1:255\n"
                            "[Fixed]\nKeys=A\nGetMethod=A:1?5\nValidValuesType=List\ndefault=(1)\n"
                            "[S]\nKeys=T\nValidValuesType=String\nO:1=a\ndefault=*\n";

} // namespace

TEST(Configs, ReadAndWriteBitsInPlace)
{
    static const struct {
        uint32_t id;
        int32_t instance;
        uint32_t mask;
        StatusCode status;
        VelkWord bits;
        const char *after;
        VelkWord read;
    } rows[] = {{0x10, 1, 0x0FF0, 0, 0xABCD, "10*=1bc4 10=5", 0x0BC0},
                {0x10, 1, 0x0FF0, 0, 0xF23F, "10=1234 10=5", 0x0230},
                {0x10, 1, 0, 0, ~VelkWord{0}, "10=1234 10=5", 0},
                {0x10, 2, ~0U, 0, ~VelkWord{0}, "10=1234 10*=ffffffff", ~0U},
                {0x10, 0, 1, -3, 1, "10=1234 10=5", 99}};
    for (const auto &row : rows) {
        SCOPED_TRACE(std::to_string(row.mask) + " " + std::to_string(row.instance));
        const Board board(keys, options, "10=1234 10=5");
        EXPECT_EQ(VelkSetBits(board.config, row.id, row.instance, row.mask, row.bits), row.status);
        EXPECT_EQ(board.Run("."), row.after);
        EXPECT_EQ(VelkIsConfigModified(board.config), std::string(row.after).find('*') != std::string::npos);
        VelkWord value = 99;
        EXPECT_EQ(VelkGetBits(board.config, row.id, row.instance, row.mask, &value), row.status);
        EXPECT_EQ(value, row.read);
    }
    const Board board(keys, options, "0B000001=abc 10=0");
    VelkWord text = 0;
    EXPECT_EQ(VelkGetBits(board.config, 0x0B000001, 1, ~0U, &text), 0);
    EXPECT_STREQ(reinterpret_cast<const char *>(text), "abc"); // the whole reference
    TableOf(board.config)->regs[1].value = static_cast<VelkWord>(0x1200000000);
    EXPECT_EQ(VelkSetBits(board.config, 0x10, 1, ~0U, ~VelkWord{0}), 0);
    EXPECT_EQ(TableOf(board.config)->regs[1].value,
              static_cast<VelkWord>(0x12FFFFFFFF)); // the low half alone
}

TEST(Configs, AreCopiedDeeply)
{
    const Board board(keys, options, "10*=1 0B000001=abc 0F000001=1,2");
    Config *copy;
    ASSERT_EQ(VelkCreateConfig(board.engine, "C", &copy), 0);
    EXPECT_EQ(VelkDuplicateConfig(copy, board.config), 0); // nothing to copy: no effect
    EXPECT_EQ(board.Run("."), "10*=1 b000001=abc f000001=1,2");
    TableOf(board.config) = GrowVRegTable(TableOf(board.config), 5);
    for (int n = 0; n < 2; ++n) { // into an empty one, over a loaded one
        ASSERT_EQ(VelkDuplicateConfig(board.config, copy), 0);
        EXPECT_EQ(Table_Text(TableOf(copy)), board.Run("."));
        EXPECT_TRUE(VelkIsConfigLoaded(copy) == 1 && VelkIsConfigModified(copy) == 1);
        EXPECT_EQ(VelkSetKey(copy, "T", Word("other")), 0);
    }
    EXPECT_EQ(TableOf(copy)->capacity, 8U); // room and all
    EXPECT_EQ(Table_Text(TableOf(copy)), "10*=1 b000001*=other f000001=1,2");
    EXPECT_EQ(board.Run("."), "10*=1 b000001=abc f000001=1,2");
    VelkDiscardConfig(copy);
}

TEST(Configs, RefuseWithoutATableWhatNeedsOne)
{
    const Board board(keys, options, nullptr);
    EXPECT_EQ(board.Run("#X #A #X=1 #A=1 #T=null X O S Fixed X=1 S=1 O='x O=1 S='x Fixed=1"),
              "!-13 !-2 -13 -2 -2 !-9 !-2 !-2 !-2 -9 -17 -17 -2 -2 -2");
    Config *const config = board.config;
    VelkWord word = 99;
    uint32_t number = 99;
    int32_t kind = 99;
    VelkValidRef ref = nullptr;
    ChangeEntry entry{"no", nullptr, 77, 0, 0, nullptr};
    EXPECT_EQ(VelkGetBits(config, 0x10, 1, 1, &word), -2);
    EXPECT_EQ(VelkSetBits(config, 0x10, 1, 0, 0), -2);
    EXPECT_EQ(VelkGetOptionEx(config, "S", 2, &word, &kind), -2);
    EXPECT_EQ(VelkQueryOptionValidValues(config, "Fixed", &number, &ref), -2);
    EXPECT_TRUE(kind == 2 && number == 1); // written as always
    EXPECT_EQ(VelkSetOptionWithChangeList(config, "O", 1, &entry, 1), -2);
    EXPECT_TRUE(word == 99 && ref == nullptr && entry.flags == 77);
    EXPECT_EQ(VelkSaveCurrentConfig(config, 0, 0), -2);
    EXPECT_EQ(VelkSaveToFile(config, "/no/file", "k"), -2);
    EXPECT_TRUE(VelkIsConfigLoaded(config) == 0 && VelkIsConfigModified(config) == 0);
    EXPECT_EQ(board.answers.calls, "");
}

TEST(Messages, FallBackForUnknownCodes)
{
    const auto message = [](StatusCode code) {
        char text[78];
        VelkStrError(code, text);
        return std::string(text);
    };
    EXPECT_EQ(message(-504), "System configuraiton is invalid");
    EXPECT_EQ(message(-302), "Board not found, because it is not plugged into or connected to your computer");
    EXPECT_EQ(message(3), "User window modified, ensure that OS map matches (see manual)");
    EXPECT_EQ(message(0), "Unknown error: 0");
    EXPECT_EQ(message(4), "Unknown warning: 4");
    EXPECT_EQ(message(INT32_MIN), "Unknown error: -2147483648");
    int known = 0;
    for (StatusCode code = -1000; code <= 1000; ++code)
        known += message(code).rfind("Unknown ", 0) != 0 || code == -9 || code == -13;
    EXPECT_EQ(known, 58);
}
