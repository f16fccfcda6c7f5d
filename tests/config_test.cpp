// The configuration as a whole: raw bits, copies, no table. And the messages.
#include "tests/support/board.h"

TEST(Configs, ReadAndWriteBitsInPlace)
{
    // Instance, mask, status, bits to set; the registers then, and the bits that are read.
    static const std::tuple<int32_t, uint32_t, StatusCode, VelkWord, const char *, VelkWord> rows[] = {
        {1, 0x0FF0, 0, 0xABCD, "10*=1bc4 10=5", 0x0BC0},
        {1, 0x0FF0, 0, 0xF23F, "10=1234 10=5", 0x0230},
        {1, 0, 0, ~VelkWord{0}, "10=1234 10=5", 0},
        {2, ~0U, 0, ~VelkWord{0}, "10=1234 10*=ffffffff", ~0U},
        {0, 1, -3, 1, "10=1234 10=5", 99}};
    for (const auto &[instance, mask, status, bits, after, read] : rows) {
        SCOPED_TRACE(after);
        const Board board("", "", "10=1234 10=5");
        EXPECT_EQ(VelkSetBits(board.config, 0x10, instance, mask, bits), status);
        EXPECT_EQ(board.Run("."), after);
        EXPECT_EQ(VelkIsConfigModified(board.config), std::string(after).find('*') != std::string::npos);
        VelkWord value = 99;
        EXPECT_EQ(VelkGetBits(board.config, 0x10, instance, mask, &value), status);
        EXPECT_EQ(value, read);
    }
    const Board board("", "", "0B000001=abc 10=1200000000");
    VelkWord text = 0;
    EXPECT_EQ(VelkGetBits(board.config, 0x0B000001, 1, ~0U, &text), 0);
    EXPECT_STREQ(reinterpret_cast<const char *>(text), "abc"); // the whole reference
    EXPECT_EQ(VelkSetBits(board.config, 0x10, 1, ~0U, ~VelkWord{0}), 0);
    const bool isWide = sizeof(VelkWord) == 8; // then the low half alone
    EXPECT_EQ(board.Run("."), isWide ? "b000001=abc 10*=12ffffffff" : "b000001=abc 10*=ffffffff");
}

TEST(Configs, AreCopiedDeeply)
{
    const Board board(sampleKeys, "", "10*=1 0B000001=abc 0F000001=1,2"), copy(sampleKeys, "", nullptr);
    const std::string text = board.Run(".");
    EXPECT_EQ(VelkDuplicateConfig(copy.config, board.config), 0); // nothing to copy: no effect
    TableOf(board.config) = GrowVRegTable(TableOf(board.config), 5);
    for (int n = 0; n < 2; ++n) { // into an empty one, over a loaded one
        ASSERT_EQ(VelkDuplicateConfig(board.config, copy.config), 0);
        EXPECT_EQ(copy.Run("."), text);
        EXPECT_TRUE(VelkIsConfigLoaded(copy.config) == 1 && VelkIsConfigModified(copy.config) == 1);
        EXPECT_EQ(copy.Run("#T='other"), "0");
    }
    EXPECT_EQ(TableOf(copy.config)->capacity, 8U); // room and all
    EXPECT_EQ(board.Run("."), text);
}

TEST(Configs, RefuseWithoutATableWhatNeedsOne)
{
    const Board board(sampleKeys,
                      Option("O", "A", "Range", "default=0:1:255") +
                          Option("Fixed", "A", "List", "GetMethod=A:1?5\ndefault=(1)") +
                          Option("S", "T", "String", "O:1=a\ndefault=*"),
                      nullptr);
    EXPECT_EQ(board.Run("#X #A #X=1 #A=1 #T='- X O S Fixed X=1 S=1 O='x O=1 S='x Fixed=1"),
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
    EXPECT_EQ(message(0) + message(4), "Unknown error: 0Unknown warning: 4");
    EXPECT_EQ(message(INT32_MIN), "Unknown error: -2147483648");
    int known = 0;
    for (StatusCode code = -1000; code <= 1000; ++code)
        known += message(code).rfind("Unknown ", 0) != 0 || code == -9 || code == -13;
    EXPECT_EQ(known, 58);
}
