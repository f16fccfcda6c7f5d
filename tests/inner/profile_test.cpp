// The syntax of profile files and the store behind it, which clients see only through definition files.
#include "tests/inner/profile_handle.h"

#include <filesystem>
#include <functional>
#include <iostream>
#include <optional>

using namespace std::string_literals;

namespace
{

// As many items as a section has before and behind the point from which it is indexed.
constexpr int fewAndMany[] = {0, 6, 7, 8, 9, 100};

struct Call {
    bool empties; // the handle, when it fails; others leave it
    std::function<int32_t(const Handle &)> make;
};

// Whether a call behind some puts has an nth allocation, without which it is tried.
bool Call_IsRefused(const Call &call, int putsAhead, int nth)
{
    SCOPED_TRACE(testing::Message() << "allocation " << nth << " behind " << putsAhead);
    const Handle file;
    for (int n = 0; n < putsAhead; ++n)
        file.Put(n % 3 == 0 ? "a" : "b", std::to_string(n), "1");
    const std::string before = file.Text();
    std::optional<FailAllocations> fail(std::in_place, nth);
    const int32_t status = call.make(file);
    const bool isRefused = fail->Fired();
    fail.reset();
    EXPECT_EQ(status, isRefused ? -1 : 0);
    EXPECT_TRUE(!isRefused || file.Text() == (call.empties ? "" : before)) << file.Text();
    EXPECT_EQ(call.make(file), 0);
    return isRefused;
}

} // namespace

TEST(Profile, ReadsEveryForm)
{
    static const char *const rows[][2] = {
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
    for (const auto &[text, content] : rows) {
        SCOPED_TRACE(text);
        const Handle file;
        EXPECT_EQ(file.Read(text), 0);
        EXPECT_EQ(file.Text(), content);
    }
}

TEST(Profile, IsEmptyAfterARefusalAndTellsItsLine)
{
    const std::vector<std::string> texts[] = {
        {"a=b\n[s]\n", "[s\n", "[", "[s] x\n", "[\"s]\n", "[\"s\" x]\n", "[\"s\"]]\n"},
        {"[s]\n=b\n", "[s]\n\"a=b\n", "[s]\n\"a\"b=c\n", "[s]\n\"a\"", "[s]\na=\"b\" c\n", "[s]\na=\"",
         "[s]\na=\"b\\\"\n", "[s]\na=\"\\", "[s]\na=\"\\q\"\n", "[s]\na=\"\\X41\"\n", "[s]\na=\"\\x00\"\n",
         "[s]\na=\"\\x4", "[s]\na=\"\\xG0\"\n", "[s]\na=\"\\x!1\"\n", "[s]\na=\"\\x1@\"\n"},
        {"[s]\n\nplain\n", "[s]\na=b\n; \0\n"s}};
    for (int32_t line = 1; line <= 3; ++line)
        for (const std::string &text : texts[line - 1]) {
            SCOPED_TRACE(text);
            const Handle file;
            ASSERT_EQ(file.Read("[kept]\na=b\n"), 0);
            EXPECT_EQ(file.Read(text), -1);
            EXPECT_EQ(IniFailedLine(file.profile), line);
            EXPECT_EQ(file.Text(), "");
            EXPECT_EQ(file.Read("[kept]\nb=c\n"), 0);
            EXPECT_EQ(file.Text(), "[kept] b=c;");
        }

    const Directory directory;
    for (const std::string &path : {directory.Path("absent"), directory.path, "/dev/zero"s}) {
        SCOPED_TRACE(path);
        const Handle file;
        file.Put("kept", "a", "b");
        EXPECT_EQ(IniReadFromFile(file.profile, path.c_str()), -1);
        EXPECT_EQ(file.Text(), "");
        EXPECT_TRUE(path == "/dev/zero" || IniFailedLine(file.profile) == 0) << "no line is at fault";
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
    const Handle file;
    IniSetDuplicateChecking(file.profile, 0);
    for (const char *value : {"\"", "=[;#\\ \"'"})
        file.Put("a ]b", "x y", value);
    file.Put(" c", "k=", "d\te\rf");
    file.Put(" c", "", "\t\\\"\r\n");
    const Directory directory;
    ASSERT_EQ(IniWriteToFile(file.profile, directory.Path("file").c_str()), 0);
    EXPECT_EQ(directory.Read("file"), "[a ]b]\nx y=\"\\\"\"\nx y==[;#\\ \"'\n"
                                      "\n[\" c\"]\n\"k=\"=d\te\rf\n\"\"=\"\\t\\\\\\\"\\r\\n\"\n");
}

TEST(Profile, KeepsDuplicatesOnlyUncheckedWithTheFirstFound)
{
    for (const int count : fewAndMany)
        for (const bool checked : {true, false}) {
            SCOPED_TRACE(count);
            const Handle file;
            IniSetDuplicateChecking(file.profile, checked ? 1 : 0);
            ASSERT_EQ(file.Read("[s]\na=1\n" + Items(count) + "b=2\na=3\nA=4\na=5\n"), 0);
            EXPECT_EQ(IniNthItemLine(file.profile, "s", 1), checked ? count + 6 : 2);
            ASSERT_EQ(file.Put("s", "A", "6") + file.Put("s", "a", "7"), 0);
            EXPECT_EQ(IniNumberOfItems(file.profile, "s"), checked ? count + 3 : count + 7);
            EXPECT_EQ(file.Get("s", "a") + file.Get("s", "A"), checked ? "76" : "14");
            EXPECT_EQ(IniNthItemLine(file.profile, "s", checked ? 1 : count + 7), 0);
            const std::string text = file.Text();
            EXPECT_EQ(text.substr(text.rfind(' ')), checked ? " A=6;" : " a=7;");
        }

    // Without memory for an index, the names are looked through.
    const Handle file;
    IniSetDuplicateChecking(file.profile, 0);
    ASSERT_EQ(file.Read("[s]\na=1\n" + Items(100) + "a=2\n"), 0);
    for (const int64_t firstFailing : {1, 1000}) {
        const FailAllocations fail(firstFailing, INT32_MAX);
        EXPECT_EQ(file.Get("s", "a") + file.Get("s", "A") + file.Get("s", "b"), "11(none)");
        EXPECT_EQ(fail.Fired(), firstFailing == 1);
    }
    ASSERT_EQ(file.Put("s", "a", "3") + file.Put("s", "b", "4"), 0);
    IniSetDuplicateChecking(file.profile, 1);
    ASSERT_EQ(file.Put("s", "a", "5") + file.Put("s", "b", "6"), 0);
    EXPECT_EQ(IniNumberOfItems(file.profile, "s"), 104);
    EXPECT_EQ(file.Get("s", "a") + file.Get("s", "b"), "56");
}

TEST(Profile, FindsTheFirstButForCaseWhenThereIsNoExactName)
{
    for (const int count : fewAndMany) {
        SCOPED_TRACE(count);
        const Handle file;
        ASSERT_EQ(file.Read("[Sec]\nx=0\n[SEC]\nx=1\nmoDe@Z[\xC4=2\n" + Items(count) +
                            "mode@z[\xC4=3\nMODE@Z[\xC4=4\n"),
                  0);
        EXPECT_EQ(file.Get("sec", "X") + file.Get("SEC", "X"), "01");
        EXPECT_EQ(file.Get("SEC", "MoDe@Z[\xC4") + file.Get("SEC", "mode@z[\xC4"), "23");
        EXPECT_EQ(file.Get("SEC", "MODE@Z[\xC4"), "4");
        for (const char *name : {"mode@z{\xC4", "mode`z[\xC4", "mode@z[\xE4", "mode@z["})
            EXPECT_EQ(file.Get("SEC", name), "(none)") << name;

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
    const Handle file;
    ASSERT_EQ(file.Read("[s]\na=value\n") + file.Put("p", "b", "put"), 0);
    char *name = nullptr, *value = nullptr, *put = nullptr;
    ASSERT_EQ(IniNthItemName(file.profile, "s", 1, &name), 1);
    ASSERT_EQ(IniGetPointerToString(file.profile, "s", "a", &value), 1);
    ASSERT_EQ(IniGetPointerToString(file.profile, "p", "b", &put), 1);
    value[1] = 0; // cut apart by its receiver

    for (int i = 0; i < 1000; ++i)
        ASSERT_EQ(file.Put("s" + std::to_string(i % 30), "i" + std::to_string(i), std::to_string(i)), 0);
    for (int i = 0; i < 40; ++i)
        ASSERT_EQ(file.Put("s", "a", std::string(100000, 'a')) + file.Put("p", "b", "other"), 0);
    EXPECT_EQ(file.Get("s", "a").size() + file.Get("s13", "i43").size(), 100002U);
    EXPECT_EQ(file.Read("[s]\na=newest\nbad\n"), -1);
    ASSERT_EQ(file.Put("s", "a", "last"), 0);
    EXPECT_EQ(name + " "s + value + (value + 2) + " " + put, "a vlue put");
}

TEST(Profile, NumbersAndLinesFollowTheFile)
{
    const Handle file;
    ASSERT_EQ(file.Read("[s]\n\na=1\nb=2\n[t]\n[s]\nc=3\n"), 0);
    ASSERT_EQ(file.Put("s", "d", "4") + file.Put("u", "e", "5"), 0);
    EXPECT_EQ(file.Text(), "[s] a=1; b=2; c=3; d=4;[t][u] e=5;");
    for (const auto &[section, line] : {std::pair{"s", 1}, {"T", 5}, {"u", 0}, {"v", 0}})
        EXPECT_EQ(IniSectionLine(file.profile, section), line);
    const int32_t lines[] = {0, 3, 4, 7, 0, 0};
    for (int32_t n = 0; n < 6; ++n)
        EXPECT_EQ(IniNthItemLine(file.profile, "s", n), lines[n]) << n;
    char *text = nullptr;
    EXPECT_EQ(IniNthSectionName(file.profile, 0, &text) + IniNthSectionName(file.profile, 4, &text), 0);
    EXPECT_EQ(IniNthItemName(file.profile, "s", -1, &text) + IniNthItemName(file.profile, "t", 1, &text), 0);
    EXPECT_EQ(IniNthItemName(file.profile, "v", 1, &text) + IniNumberOfItems(file.profile, "v"), 0);
    EXPECT_EQ(IniNthItemPointerToString(file.profile, "s", 5, &text), 0);
    EXPECT_EQ(IniGetStringIntoBuffer(file.profile, "s", "a", nullptr, -1), 0);
}

// A store that takes more than constant time for one of these does not come to an end here.
TEST(Profile, HoldsManyOfEachKind)
{
    const std::string sections = Items(100000, "[section ", "]\nitem=\n"), items = "[s]\n" + Items(1000000);
    std::string spellings = "[c]\n";
    for (int i = 0; i < 1 << 17; ++i) {
        for (int letter = 0; letter < 17; ++letter)
            spellings += (i >> letter & 1) != 0 ? 'X' : 'x';
        spellings += "=" + std::to_string(i) + "\n";
    }
    const Handle file;
    ASSERT_EQ(file.Read(sections + sections) + file.Read(items) + file.Read(spellings + spellings.substr(4)),
              0);
    char *text = nullptr;
    EXPECT_EQ(IniNthSectionName(file.profile, 100003, &text), 0);
    for (int32_t n = 1; n <= 1000000; ++n)
        ASSERT_EQ(IniNthItemName(file.profile, "s", n, &text), 1);
    EXPECT_EQ(IniNumberOfItems(file.profile, "c"), 1 << 17);
    IniSetDuplicateChecking(file.profile, 0);
    ASSERT_EQ(file.Read("[r]\n" + Items(300000, "[s]\n[r]\nsame=", "\n")), 0);
    EXPECT_EQ(IniNumberOfItems(file.profile, "r"), 300000);
    EXPECT_EQ(file.Get("SECTION 77777", "item") + file.Get("s", "Filler999999"), "");
    EXPECT_EQ(file.Get("c", "XxxxxxxxxxxxxxxxX"), "65537");
    EXPECT_EQ(file.Get("r", "SAME"), "0");
}

TEST(Profile, IsEmptyOrAsItWasWhicheverAllocationFails)
{
    const int64_t live = LiveAllocations();
    const Directory directory;
    directory.Write("file", "[s]\n" + Items(50) + "[t]\nx=" + std::string(9000, 'y') + "\n[s]\nz=1");
    std::error_code noLink; // not every user may make one on Windows
    std::filesystem::create_symlink("file", directory.Path("link"), noLink);
    const std::string path = directory.Path(noLink ? "file" : "link");
    const std::string value(20000, 'v'); // it fits no block that is there
    const Call calls[] = {
        {true, [&](const Handle &file) { return IniReadFromFile(file.profile, path.c_str()); }},
        {false, [&](const Handle &file) { return IniWriteToFile(file.profile, path.c_str()); }},
        {false, [&](const Handle &file) { return IniReserveItems(file.profile, 200); }},
        {false, [&](const Handle &file) { return file.Put("a", "1", value); }},
        {false, [&](const Handle &file) { return file.Put("c", "1", value); }}};
    int points = 0;
    for (const Call &call : calls)
        for (int putsAhead = 0, nth = 1; putsAhead < 100 && !HasFailure(); ++putsAhead, nth = 1)
            for (; Call_IsRefused(call, putsAhead, nth); ++nth)
                ++points;
    std::cout << "measured: profile files out of memory at " << points << " points\n";
    EXPECT_GE(points, 1000);
    EXPECT_EQ(LiveAllocations(), live);
}
