// Option files: what loads, and what is refused.
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/board.h"

namespace
{

const char *const keys = "[A]\n0x10 (0xFF)=Value\n[B]\n0x11 (0xFF)=Value\n[1C]\n0x12 (0xFF)=Value\n"
                         "[T]\n0x0B000001 (0)=String\n[L]\n0x0F000001 (0)=List\n";

// A number option with these rules.
std::string Option(const std::string &name, const std::string &rules = "default=0:1:9\n")
{
    return "[" + name + "]\nKeys=A\nValidValuesType=Range\n" + rules;
}

// Options 1 to n, each but the last with a rule on the next one.
std::string Chain(int n)
{
    std::string text;
    for (int k = 1; k < n; ++k)
        text += Option(std::to_string(k), std::to_string(k + 1) + ">0=1:1:1\ndefault=0:1:9\n");
    return text + Option(std::to_string(n));
}

// Options 1 to n with two rules each on X.
std::string Dependants(int n)
{
    std::string text = Option("X");
    for (int k = 1; k <= n; ++k)
        text += Option(std::to_string(k), "\"X:1, X!2\"=0:1:9\nX<5=0:1:1\n");
    return text;
}

} // namespace

TEST(OptionFiles, AreCheckedWhenRead)
{
    const std::string end = "\nValidValuesType=range\ndefault=0:1:9\n", get = "[O]\nKeys=A\nGetMethod=";
    const std::string list = "[O]\nKeys=A\nValidValuesType=List\ndefault=", x = Option("X"),
                      blanks(1018, ' ');
    const std::string set = "[O]\nKeys=L\nValidValuesType=listset\ndefault=", keysOf = "[O]\nKeys=";
    const std::pair<const char *, std::vector<std::string>> rows[] = {
        {"",
         {"", "[INFORMATION]\nx=1\n[information]\n", keysOf + ",A,,B," + end,
          keysOf + "A,A,A,A,A,A,A,A" + end, keysOf + " A ( >= 5 , B(!=0x10) " + end, get + " B : 1 ? A" + end,
          get + "B:1" + blanks + "?1" + end, Option("O", "DEFAULT=0:1:9\n"),
          Option("O", "\" X : 1 , Y ! 2 \"=0:1:9\n") + x + Option("Y"), Option("O", "\"X>=5\"=0:1:9\n") + x,
          Option("O", "\"X:1  " + blanks + "\"=0:1:9\n") + x,
          x + Option("P", "X:1=0:1:9\n") + Option("Q", "X:1,P:1=0:1:9\n"), Chain(16), Dependants(32),
          Option("O", "default=\n"), Option("O", "default=::0::1:7:9\n"), list + "\n", set + "(7\n"}},
        {"-9", // incomplete, never defined, in a circle, or too deep
         {keysOf + ",," + end, "[O]\nKeys=A\nValidValuesType=Range\n", Option("O", ":1=0:1:9\n"),
          Option("O", "X:1=0:1:9\n"), Option("O", "O:1=0:1:9\n"),
          Option("O", "X:1=0:1:9\n") + Option("X", "O:1=0:1:9\n"), Chain(17)}},
        {"-206",
         {"[O]\nx\n",
          "[O]" + end,
          keysOf + "A,a" + end,
          keysOf + "A, ,B" + end,
          keysOf + "A,A,A,A,A,A,A,A,A" + end,
          keysOf + "A" + std::string(1023, ',') + end,
          keysOf + "A(" + end,
          keysOf + "A(>x)" + end,
          keysOf + "A(`1)" + end,
          keysOf + "A\ndefault=0:1:9\n",
          keysOf + "A\nValidValuesType=Ranges\ndefault=0:1:9\n",
          keysOf + "A,T" + end,
          keysOf + "L\nValidValuesType=STRING\ndefault=*\n",
          keysOf + "A\ndefault=0:1:9\nValidValuesType=Range\n", // a fixed item in a rule's place
          get + "B1?A" + end,
          get + "B:1" + end,
          get + "B?1:A" + end,
          get + "X:1?2" + end,
          get + "B:1?X" + end,
          get + "B`1?2" + end,
          get + "B:1 " + blanks + "?1" + end,
          Option("O", "default 1=0:1:9\n"),
          Option("O", "X:1,=0:1:9\n") + x,
          Option("O", "X:1,,X:2=0:1:9\n") + x,
          Option("O", "\"X:1   " + blanks + "\"=0:1:9\n") + x,
          Dependants(33),
          Option("O", "default=0:1\n"),
          Option("O", "default=0:x:1\n"),
          list + "*\n",
          set + "[1]\n",
          set + "[(x)]\n",
          set + "[(1),x]\n"}}};
    for (const auto &[result, files] : rows)
        for (const std::string &options : files)
            Board_Expect(keys, options, nullptr, "", result);
}

TEST(OptionFiles, ListNamesByBucketThenNewestFirst)
{
    // B is declared ahead of its definition and keeps that place.
    const Board board(keys,
                      Option("A", "B:1=0:1:9\n") + Option("AA") + Option("AB") + Option("\xE9") +
                          Option("B") + Option("BA") + Option("a"),
                      nullptr);
    uint32_t count = 99;
    EXPECT_EQ(VelkNumberOfOptions(board.config, &count), 0);
    ASSERT_EQ(count, 7U);
    const char *names[7], *few[3] = {"x", "y", "z"};
    EXPECT_EQ(VelkGetOptionNames(board.config, names, 7), 0);
    std::string text;
    for (const char *name : names)
        text += std::string(name) + " ";
    EXPECT_EQ(text, "AA \xE9 B a BA AB A ");
    EXPECT_EQ(VelkGetOptionNames(board.config, few, 2), 4);
    EXPECT_TRUE(few[0] == names[0] && few[1] == names[1] && *few[2] == 'z');
}

TEST(OptionFiles, RedefineOptionsThatKeepTheirDependants)
{
    const Board board(keys, "[O]\nKeys=A\nValidValuesType=List\nX:9=(1,2)\ndefault=3\n" + Option("X"),
                      "10=1 11=2",
                      "[O]\nKeys=B\nGetMethod=A:1?1C\nValidValuesType=Range\nX:1=4:1:4\ndefault=0:1:0\n");
    EXPECT_EQ(board.Run("X=1 #B O"), "0 4 1"); // 1: a source that begins with a digit is a number
}
