// The syntax of profile files and the store behind it, which clients see only through definition files.
#include "platform/profile.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/board.h"

using namespace std::string_literals;

namespace
{

struct Handle {
    Profile *profile = IniNew(0);

    Handle() = default;
    ~Handle()
    {
        IniDispose(profile);
    }
    Handle(const Handle &) = delete;
    Handle &operator=(const Handle &) = delete;

    int32_t Read(const std::string &text)
    {
        const Directory directory;
        directory.Write("file", text);
        return IniReadFromFile(profile, directory.Path("file").c_str());
    }

    int32_t Put(const std::string &section, const std::string &item, const std::string &value)
    {
        return IniPutString(profile, section.c_str(), item.c_str(), value.c_str());
    }

    std::string Get(const char *section, const char *item)
    {
        char *value = nullptr;
        return IniGetPointerToString(profile, section, item, &value) == 1 ? value : "(none)";
    }

    // Sections and items in order, by number.
    std::string Text()
    {
        std::string text;
        char *section = nullptr;
        for (int32_t s = 1; IniNthSectionName(profile, s, &section) == 1; ++s) {
            text += "["s + section + "]";
            char *name = nullptr;
            char *value = nullptr;
            for (int32_t n = 1; IniNthItemName(profile, section, n, &name) == 1; ++n) {
                EXPECT_EQ(IniNthItemPointerToString(profile, section, n, &value), 1);
                text += " "s + name + "=" + value + ";";
            }
        }
        return text;
    }
};

// As many items as a section has before and behind the point from which it is indexed.
std::string Items(int count)
{
    std::string text;
    for (int i = 0; i < count; ++i)
        text += "filler" + std::to_string(i) + "=\n";
    return text;
}

constexpr int fewAndMany[] = {0, 6, 7, 8, 9, 100};

} // namespace

TEST(Profile, ReadsEveryForm)
{
    static const struct {
        const char *text, *content;
    } rows[] = {
        {"", ""},
        {"\xEF\xBB\xBF[s]\na=b", "[s] a=b;"},
        {"\n ; x\n\t# [y\n[s]\n;a=b\n", "[s]"},
        {" [ s t ] \t\n \ta b\t=\t c  d \n", "[s t] a b=c  d;"},
        {"[s]\r\na=b\r\nc=\r\n", "[s] a=b; c=;"},
        {"[s]\na=b\rc\r\r\nd=e\r", "[s] a=b\rc\r; d=e\r;"},
        {"[]\na==b\nc=d;e#f\n", "[] a==b; c=d;e#f;"},
        {"[a]b]\n[[c]]\n", "[a]b][[c]]"},
        {"[\"a]\"]\n[ \" b\\\"\" ]\n", "[a]][ b\"]"},
        {"[s]\n\"a=\" = b\n\"\"=c\n\"[d\"\t=\n", "[s] a==b; =c; [d=;"},
        {"[s]\na=\" b\\\\\\\"\\n\\r\\t\\x41\\xfF \" \nc=\"\"\n", "[s] a= b\\\"\n\r\tA\xFF ; c=;"},
        {"[s]\na\"b=c\"d\"\ne=f\\n\n", "[s] a\"b=c\"d\"; e=f\\n;"},
        {"[s]\na=1\n[t]\nb=2\n[s]\nc=3\n[S]\nd=4", "[s] a=1; c=3;[t] b=2;[S] d=4;"},
    };
    for (const auto &row : rows) {
        SCOPED_TRACE(row.text);
        Handle file;
        EXPECT_EQ(file.Read(row.text), 0);
        EXPECT_EQ(file.Text(), row.content);
    }
}

TEST(Profile, IsEmptyAfterARefusalAndTellsItsLine)
{
    const std::vector<std::string> texts[] = {
        {"a=b\n[s]\n", "[s\n", "[", "[s] x\n", "[\"s]\n", "[\"s\" x]\n", "[\"s\"]]\n"},
        {"[s]\n=b\n", "[s]\n\"a=b\n", "[s]\n\"a\"b=c\n", "[s]\n\"a\"", "[s]\na=\"b\" c\n", "[s]\na=\"",
         "[s]\na=\"b\\\"\n", "[s]\na=\"\\", "[s]\na=\"\\q\"\n", "[s]\na=\"\\X41\"\n", "[s]\na=\"\\x00\"\n",
         "[s]\na=\"\\x4", "[s]\na=\"\\xG0\"\n"},
        {"[s]\n\nplain\n", "[s]\na=b\n; \0\n"s}};
    for (int32_t line = 1; line <= 3; ++line)
        for (const std::string &text : texts[line - 1]) {
            SCOPED_TRACE(text);
            Handle file;
            ASSERT_EQ(file.Read("[kept]\na=b\n"), 0);
            EXPECT_EQ(file.Read(text), -1);
            EXPECT_EQ(IniFailedLine(file.profile), line);
            EXPECT_EQ(file.Text(), "");
            EXPECT_EQ(IniItemExists(file.profile, "kept", "a"), 0);
            EXPECT_EQ(file.Read("[kept]\nb=c\n"), 0);
            EXPECT_EQ(file.Text(), "[kept] b=c;");
        }
}

TEST(Profile, IsEmptyAfterAFileThatCannotBeRead)
{
    const Directory directory;
    directory.Write("sparse", "");
    std::filesystem::resize_file(directory.Path("sparse"), uintmax_t{1} << 40);
    for (const std::string &path :
         {directory.Path("absent"), directory.path, directory.Path("sparse"), "/dev/zero"s}) {
        SCOPED_TRACE(path);
        Handle file;
        file.Put("kept", "a", "b");
        EXPECT_EQ(IniReadFromFile(file.profile, path.c_str()), -1);
        EXPECT_EQ(file.Text(), "");
    }
}

// Every text of up to three of the bytes that mean something, and every byte.
TEST(Profile, WritesAndReadsBackEveryText)
{
    std::vector<std::string> texts = {""};
    for (size_t i = 0; i < texts.size() && texts[i].size() < 3; ++i)
        for (const char c : "a \t\"\\[]=;#\n\r"s)
            texts.push_back(texts[i] + c);
    for (int byte = 1; byte < 256; ++byte)
        texts.push_back("x" + std::string(1, static_cast<char>(byte)));
    texts.push_back("\xEF\xBB\xBF");
    texts.push_back(std::string(300000, 'y'));

    Handle put;
    for (const std::string &text : texts)
        ASSERT_EQ(put.Put(text, text, text), 0);
    const Directory directory;
    ASSERT_EQ(IniWriteToFile(put.profile, directory.Path("file").c_str()), 0);
    Handle read;
    ASSERT_EQ(IniReadFromFile(read.profile, directory.Path("file").c_str()), 0);
    EXPECT_EQ(read.Text(), put.Text());
    for (const std::string &text : texts)
        ASSERT_EQ(read.Get(text.c_str(), text.c_str()), text);
}

TEST(Profile, QuotesOnlyWhatNeedsIt)
{
    Handle file;
    IniSetDuplicateChecking(file.profile, 0);
    file.Put("a ]b", "x y", "\"");
    file.Put("a ]b", "x y", "=[;#\\ \"'");
    file.Put(" c", "k=", "d\te\rf");
    file.Put(" c", "", "\t\\\"\r\n");
    const Directory directory;
    ASSERT_EQ(IniWriteToFile(file.profile, directory.Path("file").c_str()), 0);
    EXPECT_EQ(directory.Read("file"), "[a ]b]\nx y=\"\\\"\"\nx y==[;#\\ \"'\n"
                                      "\n[\" c\"]\n\"k=\"=d\te\rf\n\"\"=\"\\t\\\\\\\"\\r\\n\"\n");
}

TEST(Profile, KeepsDuplicatesOnlyUncheckedWithTheFirstFound)
{
    for (const int count : fewAndMany) {
        SCOPED_TRACE(count);
        const std::string text = "[s]\na=1\n" + Items(count) + "b=2\na=3\nA=4\na=5\n";
        Handle checked;
        ASSERT_EQ(checked.Read(text), 0);
        EXPECT_EQ(IniNumberOfItems(checked.profile, "s"), count + 3);
        EXPECT_EQ(checked.Get("s", "a"), "5");
        EXPECT_EQ(IniNthItemLine(checked.profile, "s", 1), count + 6);
        ASSERT_EQ(checked.Put("s", "A", "6"), 0);
        EXPECT_EQ(checked.Get("s", "A"), "6");
        EXPECT_EQ(IniNthItemLine(checked.profile, "s", count + 3), 0);

        Handle kept;
        IniSetDuplicateChecking(kept.profile, 0);
        ASSERT_EQ(kept.Read(text), 0);
        ASSERT_EQ(kept.Put("s", "a", "6"), 0);
        EXPECT_EQ(IniNumberOfItems(kept.profile, "s"), count + 6);
        EXPECT_EQ(kept.Get("s", "a"), "1");
        char *value = nullptr;
        EXPECT_EQ(IniNthItemPointerToString(kept.profile, "s", count + 6, &value), 1);
        EXPECT_STREQ(value, "6");
    }
}

TEST(Profile, FindsTheFirstButForCaseWhenThereIsNoExactName)
{
    for (const int count : fewAndMany) {
        SCOPED_TRACE(count);
        Handle file;
        ASSERT_EQ(file.Read("[Sec]\nx=0\n[SEC]\nx=1\nmoDe@Z[\xC4=2\n" + Items(count) +
                            "mode@z[\xC4=3\nMODE@Z[\xC4=4\n"),
                  0);
        EXPECT_EQ(file.Get("sec", "X"), "0");
        EXPECT_EQ(file.Get("SEC", "X"), "1");
        EXPECT_EQ(file.Get("SEC", "MoDe@Z[\xC4"), "2");
        EXPECT_EQ(file.Get("SEC", "mode@z[\xC4"), "3");
        EXPECT_EQ(file.Get("SEC", "MODE@Z[\xC4"), "4");
        EXPECT_EQ(file.Get("SEC", "mode@z{\xC4"), "(none)");
        EXPECT_EQ(file.Get("SEC", "mode`z[\xC4"), "(none)");
        EXPECT_EQ(file.Get("SEC", "mode@z[\xE4"), "(none)");
        EXPECT_EQ(file.Get("SEC", "mode@z["), "(none)");

        // A receiver may write into a name: the other spellings are still there.
        char *name = nullptr;
        ASSERT_EQ(IniNthItemName(file.profile, "SEC", 2, &name), 1);
        name[0] = '?';
        EXPECT_EQ(file.Get("SEC", "moDe@Z[\xC4"), count < 5 ? "3" : "(none)");
        EXPECT_EQ(file.Get("SEC", "MODE@Z[\xC4"), "4");
    }
}

TEST(Profile, TextsStayWhateverFollows)
{
    Handle file;
    ASSERT_EQ(file.Read("[s]\na=value\n"), 0);
    ASSERT_EQ(file.Put("p", "b", "put"), 0);
    char *section = nullptr;
    char *name = nullptr;
    char *value = nullptr;
    char *put = nullptr;
    ASSERT_EQ(IniNthSectionName(file.profile, 1, &section), 1);
    ASSERT_EQ(IniNthItemName(file.profile, "s", 1, &name), 1);
    ASSERT_EQ(IniGetPointerToString(file.profile, "s", "a", &value), 1);
    ASSERT_EQ(IniGetPointerToString(file.profile, "p", "b", &put), 1);
    value[1] = 0; // cut apart by its receiver

    ASSERT_EQ(file.Put("s", "a", "new"), 0);
    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(file.Put("s" + std::to_string(i % 30), "i" + std::to_string(i), std::to_string(i)), 0);
    ASSERT_EQ(file.Read("[s]\na=newer\n[p]\nb=other\n"), 0);
    EXPECT_EQ(file.Get("s", "a"), "newer");
    EXPECT_EQ(file.Get("s13", "i43"), "43");
    EXPECT_EQ(file.Read("[s]\na=newest\nbad\n"), -1);
    ASSERT_EQ(file.Put("s", "a", "last"), 0);
    IniSortSectionList(file.profile);
    IniSortSection(file.profile, "s");
    EXPECT_EQ(section + " "s + name + " " + value + (value + 2) + " " + put, "s a vlue put");
}

TEST(Profile, NumbersAndLinesFollowTheFile)
{
    Handle file;
    ASSERT_EQ(file.Read("[s]\n\na=1\nb=2\n[t]\n[s]\nc=3\n"), 0);
    ASSERT_EQ(file.Put("s", "d", "4"), 0);
    ASSERT_EQ(file.Put("u", "e", "5"), 0);
    EXPECT_EQ(file.Text(), "[s] a=1; b=2; c=3; d=4;[t][u] e=5;");
    EXPECT_EQ(IniSectionLine(file.profile, "s"), 1);
    EXPECT_EQ(IniSectionLine(file.profile, "T"), 5);
    EXPECT_EQ(IniSectionLine(file.profile, "u"), 0);
    const int32_t lines[] = {0, 3, 4, 7, 0, 0};
    for (int32_t n = 0; n < 6; ++n)
        EXPECT_EQ(IniNthItemLine(file.profile, "s", n), lines[n]) << n;
    char *text = nullptr;
    EXPECT_EQ(IniNthSectionName(file.profile, 0, &text), 0);
    EXPECT_EQ(IniNthSectionName(file.profile, 4, &text), 0);
    EXPECT_EQ(IniNthItemName(file.profile, "s", -1, &text), 0);
    EXPECT_EQ(IniNthItemName(file.profile, "t", 1, &text), 0);
    EXPECT_EQ(IniNumberOfItems(file.profile, "v"), 0);

    char buffer[] = "unchanged";
    ASSERT_EQ(file.Put("s", "long", "123456789"), 0);
    EXPECT_EQ(IniGetStringIntoBuffer(file.profile, "s", "long", buffer, 9), 0);
    EXPECT_EQ(IniGetStringIntoBuffer(file.profile, "s", "a", buffer, 0), 0);
    EXPECT_EQ(IniGetStringIntoBuffer(file.profile, "s", "none", buffer, 10), 0);
    EXPECT_STREQ(buffer, "unchanged");
    EXPECT_EQ(IniGetStringIntoBuffer(file.profile, "s", "long", buffer, 10), 1);
    EXPECT_STREQ(buffer, "123456789");
}

TEST(Profile, IsEmptyOrAsItWasWhicheverAllocationFails)
{
    const int64_t before = LiveAllocations();
    const Directory directory;
    directory.Write("file", "[s]\n" + Items(50) + "[t]\nx=" + std::string(9000, 'y') + "\n[s]\nz=1");
    std::filesystem::create_symlink("file", directory.Path("link"));
    const std::string path = directory.Path("link");
    FailEachAllocation(
        [&] {
            Profile *const made = IniNew(1);
            if (made == nullptr)
                return -1;
            const int32_t status = IniReadFromFile(made, path.c_str());
            EXPECT_EQ(IniNumberOfItems(made, "s"), status == 0 ? 51 : 0);
            EXPECT_EQ(IniFailedLine(made), 0);
            IniDispose(made);
            return status;
        },
        [](int32_t status) { ASSERT_EQ(status, -1); });

    for (int i = 0; i < 300; ++i) {
        Handle file;
        for (int n = 0; n < i; ++n)
            ASSERT_EQ(file.Put(n % 3 == 0 ? "a" : "b", std::to_string(n), "1"), 0);
        const std::string held = file.Text();
        FailEachAllocation([&] { return file.Put(i % 2 == 0 ? "a" : "c", "new", std::string(2000, 'v')); },
                           [&](int32_t) { ASSERT_EQ(file.Text(), held); });
        ASSERT_EQ(file.Get(i % 2 == 0 ? "a" : "c", "new").size(), 2000U);
    }
    {
        Handle file;
        ASSERT_EQ(file.Put("s", "a", "1"), 0);
        const std::string old = directory.Read("file");
        FailEachAllocation([&] { return IniWriteToFile(file.profile, path.c_str()); },
                           [&](int32_t) { ASSERT_EQ(directory.Read("file"), old); });
        EXPECT_EQ(directory.Read("file"), "[s]\na=1\n");
    }
    EXPECT_EQ(LiveAllocations(), before);
}

// A store that takes more than constant time for one of these does not come to an end here.
TEST(Profile, HoldsManyOfEachKind)
{
    std::string sections;
    for (int i = 0; i < 100000; ++i)
        sections += "[section " + std::to_string(i) + "]\nitem=" + std::to_string(i) + "\n";
    Handle file;
    ASSERT_EQ(file.Read(sections + sections), 0);
    EXPECT_EQ(file.Get("SECTION 77777", "item"), "77777");
    char *text = nullptr;
    EXPECT_EQ(IniNthSectionName(file.profile, 100001, &text), 0);

    std::string items = "[s]\n";
    for (int i = 0; i < 1000000; ++i)
        items += "item " + std::to_string(i) + "=" + std::to_string(i) + "\n";
    ASSERT_EQ(file.Read(items), 0);
    for (int32_t n = 1; n <= 1000000; ++n)
        ASSERT_EQ(IniNthItemName(file.profile, "s", n, &text), 1);
    EXPECT_EQ(file.Get("s", "Item 999999"), "999999");

    std::string spellings = "[c]\n";
    for (int i = 0; i < 1 << 17; ++i) {
        for (int letter = 0; letter < 17; ++letter)
            spellings += (i >> letter & 1) != 0 ? 'X' : 'x';
        spellings += "=" + std::to_string(i) + "\n";
    }
    ASSERT_EQ(file.Read(spellings + spellings.substr(4)), 0);
    EXPECT_EQ(IniNumberOfItems(file.profile, "c"), 1 << 17);
    EXPECT_EQ(file.Get("c", "XxxxxxxxxxxxxxxxX"), "65537");

    IniSetDuplicateChecking(file.profile, 0);
    std::string repeated = "[r]\n";
    for (int i = 0; i < 300000; ++i)
        repeated += "[s]\n[r]\nsame=" + std::to_string(i) + "\n";
    ASSERT_EQ(file.Read(repeated), 0);
    EXPECT_EQ(IniNumberOfItems(file.profile, "r"), 300000);
    EXPECT_EQ(file.Get("r", "SAME"), "0");
}
