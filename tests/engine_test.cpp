// The engine, its catalogue, and the loading of classes.
#include <string>

#include <gtest/gtest.h>

#include "tests/support/board.h"

namespace
{

struct Bench : Desk {
    Bench()
    {
        directory.Write("keys.ini", "[Small]\n0x10 (0xFF)=Value\n");
        directory.Write("options.ini", "[Small]\nKeys=Small\nValidValuesType=Range\ndefault=0:1:255\n");
        directory.Write("bad.ini", "[K]\n0x10=Value\n");
        directory.Write("half.ini", "[Small]\nKeys=Small\nValidValuesType=Range\n");
    }
};

std::string Class(const std::string &name, const std::string &module, const std::string &keys = "keys.ini",
                  const std::string &options = "options.ini")
{
    return "[" + name + "]\nAccessor=" + module + "\nKeys=" + keys + "\nOptions=" + options + "\n";
}

} // namespace

TEST(Engine, NeedsAReadableCatalogue)
{
    Desk desk;
    for (const char *catalogue : {"[C]\nno item\n", "x=1\n"}) {
        EXPECT_EQ(desk.Start(catalogue), -202);
        EXPECT_EQ(desk.engine, nullptr);
    }
    EXPECT_EQ(VelkInitializeConfigEngine(desk.directory.Path("none").c_str(), &desk.engine), -202);
    const int64_t live = LiveAllocations();
    FailEachAllocation([&] { return desk.Start(""); },
                       [&](StatusCode status) {
                           EXPECT_TRUE(status == -201 || status == -202)
                               << status; // the read's is a failed read
                           EXPECT_EQ(desk.engine, nullptr);
                           EXPECT_EQ(LiveAllocations(), live);
                       });
    Config *config = reinterpret_cast<Config *>(&desk);
    EXPECT_EQ(VelkCreateConfig(desk.engine, "C", &config), -203);
    EXPECT_EQ(config, nullptr);
}

TEST(Engine, TranslatesNumbers)
{
    Bench bench;
    bench.Start(Class("C", bench.directory.Module("m")) +
                "0x7=seven\n[Names]\n0x0=none\n0xFF=twelve chars\n0x0B=x\n");
    Config *config;
    ASSERT_EQ(VelkCreateConfig(bench.engine, "C", &config), 0);
    static const struct {
        const char *section;
        uint32_t value;
        int32_t size;
        const char *text; // null: none, and the buffer as it was
    } rows[] = {{"Names", 255, 13, "twelve chars"}, {"Names", 255, 12, nullptr}, {"Names", 0, 20, "none"},
                {"Names", 11, 20, nullptr},         {"Nowhere", 0, 20, nullptr}, {"C", 7, 20, "seven"}};
    for (const auto &row : rows) {
        char buffer[20] = "as it was";
        EXPECT_EQ(VelkTranslateValue(config, row.section, row.value, buffer, row.size),
                  row.text != nullptr ? 0 : -203);
        EXPECT_STREQ(buffer, row.text != nullptr ? row.text : "as it was")
            << row.value << " of " << row.section;
    }
    VelkDiscardConfig(config);
}

TEST(ClassLoading, IsUndoneWhereverItFails)
{
    static const struct {
        const char *items;   // of the class; an @ stands for its module, a % for a list of 128 characters
        const char *missing; // entry point
        StatusCode answer, status;
        bool initialized;
    } rows[] = {{nullptr, "", 0, -203, false}, // no section
                {"Keys=keys.ini\nOptions=options.ini\n", "", 0, -203, false},
                {"Accessor=@.so\nKeys=keys.ini\n", "", 0, -204, false}, // the suffix is added always
                {"Accessor=@\n", "Cfg_GetVersion", 0, -204, false},
                {"Accessor=@\n", "Cfg_InitializeAccessor", 0, -204, false},
                {"Accessor=@\n", "Cfg_CloseAccessor", 0, -204, false},
                {"Accessor=@\n", "Cfg_CreateSession", 0, -204, false},
                {"Accessor=@\n", "Cfg_CloseSession", 0, -204, false},
                {"Accessor=@\n", "Cfg_Read", 0, -204, false},
                {"Accessor=@\n", "Cfg_Write", 0, -204, false},
                {"Accessor=@\n", "", -112, -112, true},
                {"Accessor=@\nOptions=options.ini\n", "", 5, -203, true},
                {"Accessor=@\nKeys=%\nOptions=options.ini\n", "", 0, -203, true},
                {"Accessor=@\nKeys=\nOptions=options.ini\n", "", 0, -205, true}, // one empty name
                {"Accessor=@\nKeys=keys.ini,\n", "", 0, -205, true},
                {"Accessor=@\nKeys=bad.ini\n", "", 0, -205, true},
                {"Accessor=@\nKeys=keys.ini no.ini\n", "", 0, -205, true},
                {"Accessor=@\nKeys=keys.ini\n", "", 0, -203, true},
                {"Accessor=@\nKeys=keys.ini\nOptions=%\n", "", 0, -203, true},
                {"Accessor=@\nKeys=keys.ini\nOptions=,\n", "", 0, -206, true},
                {"Accessor=@\nKeys=keys.ini\nOptions=options.ini,bad.ini\n", "", 0, -206, true},
                {"Accessor=@\nKeys=keys.ini\nOptions=half.ini\n", "", 0, -9, true}};
    for (const auto &row : rows) {
        SCOPED_TRACE(std::string(row.items != nullptr ? row.items : "") + row.missing);
        Bench bench;
        const std::string module = bench.directory.Module("bad", row.missing);
        std::string section = row.items != nullptr ? std::string("[Bad]\n") + row.items : "";
        if (const size_t at = section.find('@'); at != std::string::npos)
            section.replace(at, 1, module);
        if (const size_t at = section.find('%'); at != std::string::npos)
            section.replace(at, 1, std::string(118, ',') + "keys.ini ,");
        bench.Start(section + Class("Good", bench.directory.Module("good")));
        const int64_t live = LiveAllocations();
        Config *config = reinterpret_cast<Config *>(&bench);
        for (int attempt = 0; attempt < 2; ++attempt) {
            bench.answers.initialize = row.answer;
            EXPECT_EQ(VelkCreateConfig(bench.engine, "Bad", &config), row.status);
            EXPECT_EQ(config, nullptr);
            EXPECT_EQ(bench.answers.TakeCalls().rfind("Initialize", 0) == 0, row.initialized); // and no close
            EXPECT_FALSE(IsModuleLoaded(module));
            EXPECT_EQ(LiveAllocations(), live);
        }
        bench.answers.initialize = 5; // as good as 0
        EXPECT_EQ(VelkCreateConfig(bench.engine, "Good", &config), 0);
        VelkDiscardConfig(config);
    }
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
    Config *configs[5], *survivor, **next = configs;
    for (const char *name : {"A", "A", "B", "C", "c"}) // "c" finds the section, but is a class of its own
        ASSERT_EQ(VelkCreateConfig(bench.engine, name, next++), 0) << name;
    const std::string head = "Initialize(" + bench.directory.path.substr(5);
    EXPECT_EQ(calls, head + ",-203,?) " + head + ",-203,?) " + head + ",0,own) " + head + ",0,own) ");
    ASSERT_EQ(VelkCreateConfig(other.engine, "A", &survivor), 0);
    VelkDiscardConfig(configs[0]);
    char text[8];
    EXPECT_EQ(VelkTranslateValue(configs[1], "A", 1, text, 8), -203);
    other.answers.close = -1; // then the module stays
    calls.clear();
    EXPECT_EQ(VelkCloseConfigEngine(std::exchange(bench.engine, nullptr)), 0);
    EXPECT_EQ(calls, "Close(first) Close(first) Close(second) Close(first) ");
    EXPECT_TRUE(IsModuleLoaded(second));
    EXPECT_EQ(VelkLoadCurrentConfig(survivor, 0, 0), 0);
    VelkDiscardConfig(survivor);
    for (int n = 1; n < 5; ++n)
        EXPECT_EQ(VelkDiscardConfig(configs[n]), 0);
}

TEST(ClassLoading, IsUndoneWhicheverAllocationFails)
{
    Bench bench;
    const std::string module = bench.directory.Module("m");
    bench.Start(Class("C", module));
    bench.directory.Write("keys.ini", "[VREGS]\nR=0x10\n[Small]\nR (0xFF)=Index\nArray=1,2,:4:1:9\n"
                                      "[T]\n0x0B000001 (1)=String\n[L]\n0x0F000001 (1)=List\n");
    bench.directory.Write("options.ini",
                          "[Small]\nKeys=Small\nValidValuesType=List\nLater:1=(1,2)\ndefault=1\n"
                          "[T]\nKeys=T\nValidValuesType=String\nLater>1=fixed\n"
                          "[L]\nKeys=L\nValidValuesType=ListSet\ndefault=[(1),(2)]\n"
                          "[Later]\nKeys=Small\nValidValuesType=Range\ndefault=0:1:9\n");
    const int64_t live = LiveAllocations();
    StatusCode last = -1; // they come in this order: configuration, class, module, tables and files
    Config *config;
    FailEachAllocation([&] { return VelkCreateConfig(bench.engine, "C", &config); },
                       [&](StatusCode status) {
                           const bool isTable = status == -201 && (last == -204 || last == -205);
                           EXPECT_TRUE(status == -1 || (status <= -201 && status >= -206)) << status;
                           EXPECT_TRUE(status <= last || isTable) << status << " behind " << last;
                           EXPECT_TRUE(config == nullptr && LiveAllocations() == live &&
                                       !IsModuleLoaded(module));
                           last = isTable ? last : status;
                       });
    EXPECT_EQ(last, -206);
    VelkDiscardConfig(config);
}
