// Option files: what loads, and what is refused.
#include "tests/support/board.h"

namespace
{

const std::string keys = sampleKeys + std::string("[1C]\n0x12 (0xFF)=Value\n");

// A number option over A.
std::string Range(const std::string &name, const std::string &rules = "default=0:1:9")
{
    return Option(name, "A", "Range", rules);
}

// Options 1 to n, each but the last with a rule on the next one.
std::string Chain(int n)
{
    std::string text;
    for (int k = 1; k < n; ++k)
        text += Range(std::to_string(k), std::to_string(k + 1) + ">0=1:1:1\ndefault=0:1:9\n");
    return text + Range(std::to_string(n));
}

// Options 1 to n with two rules each on X.
std::string Dependants(int n)
{
    std::string text = Range("X");
    for (int k = 1; k <= n; ++k)
        text += Range(std::to_string(k), "\"X:1, X!2\"=0:1:9\nX<5=0:1:1\n");
    return text;
}

} // namespace

TEST(OptionFiles, AreCheckedWhenRead)
{
    const std::string end = "\nValidValuesType=range\ndefault=0:1:9\n", blanks(1018, ' ');
    const std::string of = "[O]\nKeys=", get = "[O]\nKeys=A\nGetMethod=", x = "=0:1:9\n" + Range("X");
    const std::string rule = "[O]\nKeys=A\nValidValuesType=Range\n", set = "[O]\nKeys=L\nValidValuesType=";
    const struct {
        const char *result;
        std::string head, tail; // around each of the following
        std::vector<std::string> texts;
    } rows[] = {
        {"", "", "", {"", "[INFORMATION]\nx=1\n[information]\n", Chain(16), Dependants(32)}},
        {"", of, end, {",A,,B,", "A,A,A,A,A,A,A,A", " A ( >= 5 , B(!=0x10) "}},
        {"", get, end, {" B : 1 ? A", "B:1" + blanks + "?1"}},
        {"",
         rule,
         x,
         {"DEFAULT", "\" X : 1 , X ! 2 \"", "\"X>=5\"", "\"X:1  " + blanks + "\"", "default=\nX:1"}},
        {"", rule, "\n", {"default=", "default=::0::1:7:9"}},
        {"", "", "", {Range("X") + Range("P", "X:1=0:1:9") + Range("Q", "X:1,P:1=0:1:9")}},
        {"", set, "\n", {"listset\ndefault=(7"}},
        // Incomplete, never defined, in a circle, or too deep.
        {"-9",
         "",
         "",
         {of + ",," + end, rule, Chain(17), Chain(40), Range("O", "X:1=0:1:9") + Range("X", "O:1=0:1:9")}},
        {"-9", rule, "=0:1:9\n", {":1", "X:1", "O:1"}},
        {"-206", of, end, {"A,a", "A, ,B", "A,A,A,A,A,A,A,A,A", "A(", "A(>x)", "A(`1)", "A,T"}},
        {"-206", of, end, {"A" + std::string(1023, ',')}},
        {"-206", get, end, {"B1?A", "B:1", "B?1:A", "X:1?2", "B:1?X", "B`1?2", "B:1 " + blanks + "?1"}},
        {"-206", rule, x, {"default 1", "X:1,", "X:1,,X:2", "X:", "\"X:1   " + blanks + "\""}},
        {"-206", rule, "\n", {"default=0:1", "default=0:x:1", "default=" + std::string(1024, '1')}},
        {"-206",
         "[O]\n",
         "\n",
         {"x", end, "Keys=A\ndefault=0:1:9", "Keys=A\ndefault=0:1:9\nValidValuesType=Range"}},
        {"-206",
         of,
         "\n",
         {"A\nValidValuesType=Ranges\ndefault=0:1:9", "A\nValidValuesType=List\ndefault=*"}},
        {"-206", set, "\n", {"STRING\ndefault=*", "listset\ndefault=[1]", "listset\ndefault=[(x)]"}},
        {"-206", set, "\n", {"listset\ndefault=[(1),x]"}},
        {"-206", "", "", {Dependants(33)}}};
    for (const auto &row : rows)
        for (const std::string &text : row.texts)
            Board_Expect(keys, row.head + text + row.tail, nullptr, "", row.result);
}

TEST(OptionFiles, ListNamesByBucketThenNewestFirst)
{
    // B is declared ahead of its definition and keeps that place.
    const Board board(keys,
                      Range("A", "B:1=0:1:9\n") + Range("AA") + Range("AB") + Range("\xE9") + Range("B") +
                          Range("BA") + Range("a") + Range("L"),
                      nullptr);
    uint32_t count = 99;
    EXPECT_EQ(VelkNumberOfOptions(board.config, &count), 0);
    ASSERT_EQ(count, 8U);
    const char *names[8], *few[3] = {"x", "y", "z"};
    EXPECT_EQ(VelkGetOptionNames(board.config, names, 8), 0);
    std::string text;
    for (const char *name : names)
        text += std::string(name) + " ";
    EXPECT_EQ(text, "AA \xE9 B a BA AB A L ");
    EXPECT_EQ(VelkGetOptionNames(board.config, few, 2), 4);
    EXPECT_TRUE(few[0] == names[0] && few[1] == names[1] && *few[2] == 'z');
}

TEST(OptionFiles, RedefineOptionsThatKeepTheirDependants)
{
    const Board board(keys, "[O]\nKeys=A\nValidValuesType=List\nX:9=(1,2)\ndefault=3\n" + Range("X"),
                      "10=1 11=2",
                      "[O]\nKeys=B\nGetMethod=A:1?1C\nValidValuesType=Range\nX:1=4:1:4\ndefault=0:1:0\n");
    EXPECT_EQ(board.Run("X=1 #B O"), "0 4 1"); // 1: a source that begins with a digit is a number
}
