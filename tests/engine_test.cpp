// The engine, its catalogue, and the loading of classes.
#include "tests/support/board.h"

namespace
{

struct Bench : Desk {
    Bench()
    {
        directory.Write("keys.ini", "[Small]\n0x10 (0xFF)=Value\n");
        directory.Write("options.ini", Option("Small", "Small", "Range", "default=0:1:255"));
        directory.Write("bad.ini", "[K]\n0x10=Value\n");
        directory.Write("half.ini", Option("Small", "Small", "Range", ""));
    }
};

std::string Class(const std::string &name, const std::string &module, const std::string &keys = "keys.ini")
{
    return "[" + name + "]\nAccessor=" + module + "\nKeys=" + keys + "\nOptions=options.ini\n";
}

// Expects that a class of these items is refused, twice, and leaves nothing behind. An @ in them stands for
// its module, which may lack an entry point, a % for a list of files that has 128 characters.
void ExpectRefusal(std::string items, const std::string &missing, StatusCode answer, StatusCode status)
{
    SCOPED_TRACE(items + missing);
    Bench bench;
    const std::string module = bench.directory.Module("bad", missing);
    if (const size_t at = items.find('%'); at != std::string::npos)
        items.replace(at, 1, std::string(118, ',') + "keys.ini ,");
    if (const size_t at = items.find('@'); at != std::string::npos)
        items.replace(at, 1, module);
    bench.Start(items + Class("Good", bench.directory.Module("good")));
    const int64_t live = LiveAllocations();
    for (int attempt = 0; attempt < 2; ++attempt) {
        bench.answers.initialize = answer;
        bench.config = reinterpret_cast<Config *>(&bench);
        EXPECT_EQ(VelkCreateConfig(bench.engine, "Bad", &bench.config), status);
        EXPECT_EQ(bench.config, nullptr);
        // Once initialized; and never closed.
        const std::string calls = std::exchange(bench.answers.calls, "");
        EXPECT_EQ(calls.substr(0, 4), answer == 0 ? "" : "Init");
        EXPECT_EQ(calls.find("Close"), std::string::npos);
        EXPECT_FALSE(Module_IsLoaded(module));
        EXPECT_EQ(LiveAllocations(), live);
    }
    bench.answers.initialize = 5; // as good as 0
    EXPECT_EQ(bench.Open("Good"), 0);
}

} // namespace

TEST(Engine, NeedsAReadableCatalogue)
{
    Desk desk;
    for (const char *catalogue : {"[C]\nno item\n", "x=1\n"})
        EXPECT_EQ(desk.Start(catalogue), -202);
    auto *const untouched = reinterpret_cast<ConfigEngine *>(&desk);
    desk.engine = untouched;
    EXPECT_EQ(VelkInitializeConfigEngine(desk.directory.Path("none").c_str(), &desk.engine), -202);
    EXPECT_EQ(std::exchange(desk.engine, nullptr), untouched);
}

TEST(Engine, TranslatesNumbers)
{
    Bench bench;
    bench.Start(Class("C", bench.directory.Module("m")) +
                "0x7=seven\n[Names]\n0x0=none\n0xFF=twelve chars\n0x0B=x\n");
    ASSERT_EQ(bench.Open("C"), 0);
    // Section, value, room, text; without one the buffer stays as it was.
    static const std::tuple<const char *, uint32_t, int32_t, const char *> rows[] = {
        {"Names", 255, 13, "twelve chars"}, {"Names", 255, 12, nullptr}, {"Names", 0, 20, "none"},
        {"Names", 11, 20, nullptr},         {"Nowhere", 0, 20, nullptr}, {"C", 7, 20, "seven"}};
    for (const auto &[section, value, size, text] : rows) {
        SCOPED_TRACE(section + std::to_string(value));
        char buffer[20] = "as it was";
        EXPECT_EQ(VelkTranslateValue(bench.config, section, value, buffer, size), text != nullptr ? 0 : -203);
        EXPECT_STREQ(buffer, text != nullptr ? text : "as it was");
    }
}

TEST(ClassLoading, IsUndoneWhereverItFails)
{
    ExpectRefusal("", "", 0, -203); // no section
    ExpectRefusal("[Bad]\nKeys=keys.ini\nOptions=options.ini\n", "", 0, -203);
    ExpectRefusal("[Bad]\nAccessor=@.so\nKeys=keys.ini\n", "", 0, -204); // the suffix is added always
    for (const char *missing : {"GetVersion", "InitializeAccessor", "CloseAccessor", "CreateSession",
                                "CloseSession", "Read", "Write"})
        ExpectRefusal("[Bad]\nAccessor=@\n", std::string("Cfg_") + missing, 0, -204);
    ExpectRefusal("[Bad]\nAccessor=@\n", "", -112, -112);
    const std::pair<StatusCode, std::vector<std::string>> rows[] = {
        {-203,
         {"Options=options.ini", "Keys=%\nOptions=options.ini", "Keys=keys.ini", "Keys=keys.ini\nOptions=%"}},
        {-205, {"Keys=\nOptions=options.ini", "Keys=keys.ini,", "Keys=bad.ini", "Keys=keys.ini no.ini"}},
        {-206, {"Keys=keys.ini\nOptions=,", "Keys=keys.ini\nOptions=options.ini,bad.ini"}},
        {-9, {"Keys=keys.ini\nOptions=half.ini"}}};
    for (const auto &[status, classes] : rows)
        for (const std::string &items : classes)
            ExpectRefusal("[Bad]\nAccessor=@\n" + items + "\n", "", 5, status);
}

TEST(ClassLoading, IsDoneOnceAnEngineAndName)
{
    Bench bench, other; // whose script gets all calls
    std::string &calls = other.answers.calls;
    const std::string first = bench.directory.Module("first"), second = bench.directory.Module("second");
    bench.Start(Class("A", first) +
                Class("B", second, '"' + std::string(119, ' ') + "keys.ini\"") + // 127 characters
                Class("C", first) + "Private=own\n");
    other.Start(Class("A", first));
    Config *configs[5], **next = configs;
    for (const char *name : {"A", "A", "B", "C", "c"}) // "c" finds the section, but is a class of its own
        ASSERT_EQ(VelkCreateConfig(bench.engine, name, next++), 0) << name;
    const std::string head = "Initialize(" + bench.directory.path;
    EXPECT_EQ(calls, head + ",-203,?) " + head + ",-203,?) " + head + ",0,own) " + head + ",0,own) ");
    ASSERT_EQ(other.Open("A"), 0);
    VelkDiscardConfig(configs[0]);
    char text[8];
    EXPECT_EQ(VelkTranslateValue(configs[1], "A", 1, text, 8), -203);
    other.answers.close = -1; // then the module stays
    calls.clear();
    bench.Clear();
    const std::string close = "Close(" + first + ") ";
    EXPECT_EQ(calls, close + close + "Close(" + second + ") " + close);
    EXPECT_TRUE(Module_IsLoaded(second));
    EXPECT_EQ(other.Load(), 0);
    for (int n = 1; n < 5; ++n)
        EXPECT_EQ(VelkDiscardConfig(configs[n]), 0);
}
