// Boards that fail: every transfer of the engine, with every fault at every call, beside a model that says
// what has to come of it.
#include <filesystem>
#include <map>

#include "tests/support/board.h"

using namespace std::string_literals;

namespace
{

const std::string scripted = VELK_TEST_MODULE_DIR "/scripted_accessor";
const std::string image = VELK_TEST_MODULE_DIR "/velkimage\nImage=file\nStride=1\nRegisters=1\n1=0 u8";

// What goes wrong: its code, or what is left of the sample registers.
const struct Fault {
    const char *action, *left;
    StatusCode code;
    bool isRefusal;
} faults[] = {{"fail -107", nullptr, -107, true},
              {"late -107", nullptr, -107, false},
              {"warn 101", nullptr, 101, false},
              {"short 3", "10=63 11=2 12=0", 0, false},
              {"kinds", "b000010= b000011= b000012= f000001= 1=0", 0, false},
              {"repeat", "10=63 10=2 10=0 b000001=abc f000001=1,2", 0, false},
              {"null", "10=63 11=2 12=0 b000001=- f000001=-", 0, false},
              {"none", "none", 0, false}};

// The engine as it has to be, with one fault at the nth call of an entry, or at each.
struct Model {
    std::string entry;
    int nth; // 0: each
    const Fault *fault;
    std::map<std::string, int> calls = {};
    std::string table = "none";
    bool isLoaded = false;
    int32_t classes = 0;

    // The code of a call, which may hand over a table.
    StatusCode Call(const std::string &called, std::string *handed = nullptr)
    {
        ++calls[called];
        if (called != entry || (nth != 0 && nth != calls[called]))
            return 0;
        if (handed != nullptr && fault->left != nullptr)
            *handed = fault->left;
        return fault->code;
    }
    StatusCode Load()
    {
        table = sampleRegisters;
        const StatusCode status = Call("Read", &table);
        table = status != 0 && fault->isRefusal ? "none" : table;
        isLoaded = status == 0;
        return status;
    }
    StatusCode Transfer(bool isLoad)
    {
        const StatusCode opened = Call("CreateSession");
        if (opened < 0)
            return opened;
        const StatusCode status = isLoad ? Load() : Call("Write");
        Call("CloseSession");
        return status != 0 ? status : opened;
    }
    StatusCode LoadFile(bool isOld)
    {
        std::string read = sampleRegisters;
        if (isOld && Call("LoadFromFile", &read) != 0)
            return -4;
        const StatusCode supplied = Call("SetInternalVRegs", &read);
        if (supplied < 0)
            return supplied;
        table = read;
        isLoaded = true;
        return isOld ? 2 : 0;
    }
};

// The real ones. All classes share the accessor, which is a copy of its own.
struct FaultyBoard : Desk {
    Model model;
    std::string accessor = directory.Path("faulty");

    explicit FaultyBoard(Model expected) : model(std::move(expected))
    {
        std::filesystem::copy(VELK_TEST_MODULE_DIR "/velkfaulty"s + moduleSuffix, accessor + moduleSuffix);
        directory.Write("keys.ini", sampleKeys);
        directory.Write("options.ini", "");
        directory.Write("file",
                        "[Information]\nKey=k\n[Data]\n10=63\n11=2\n12=0\n0B000001=abc\n0F000001=1,2\n");
        answers.registers = answers.oldFile = sampleRegisters;
    }
    // Classes of these settings, and one without faults.
    StatusCode StartWith(const std::string &wraps, const std::string &list)
    {
        std::string catalogue;
        for (const char *name : {"C", "D", "E", "Other"})
            catalogue += "[" + std::string(name) + "]\nAccessor=" + accessor + "\nWraps=" + wraps +
                         "\nKeys=keys.ini\nOptions=options.ini\nFaults=" + (*name == 'O' ? "" : list) + "\n";
        return Start(catalogue);
    }
    // Tells whether there is a class now. As long as there is none, counts begin anew.
    bool Begin()
    {
        const std::string nth = model.nth == 0 ? " * " : " " + std::to_string(model.nth) + " ";
        EXPECT_EQ(StartWith(scripted, model.entry + nth + model.fault->action), 0);
        for (const char *name : {"C", "D", "E"}) {
            const StatusCode status = std::min(model.Call("InitializeAccessor"), 0);
            EXPECT_EQ(Open(name), status);
            model.classes += status == 0 ? 1 : 0;
            if (model.classes == 0)
                model.calls.clear();
            EXPECT_EQ(Module_IsLoaded(accessor), model.classes != 0);
        }
        Config *other = nullptr;
        EXPECT_EQ(VelkCreateConfig(engine, "Other", &other), model.classes == 0 ? 0 : -112);
        EXPECT_EQ(model.classes == 0 ? VelkDiscardConfig(other) : Open("C"), 0);
        return model.classes != 0;
    }
    void Expect(StatusCode status, StatusCode expected)
    {
        EXPECT_EQ(status, expected);
        EXPECT_EQ(VelkIsConfigLoaded(config), model.isLoaded);
        std::string table = Run(".");
        std::erase(table, '*');
        EXPECT_EQ(table, model.table);
        EXPECT_EQ(VelkSaveToFile(config, nullDevice, ""), model.isLoaded ? 0 : -2);
    }
    void TransferAll()
    {
        const std::string old = directory.Path("options.ini");
        const auto save = [&] { Expect(Save(), model.isLoaded ? model.Transfer(false) : -2); };
        Expect(Load(), model.Transfer(true));
        save();
        Expect(LoadFile(), model.LoadFile(false));
        save();
        Expect(VelkLoadFromFile(config, old.c_str(), "k"), model.LoadFile(true));
        save();
    }
    // Sessions and modules are given back, whatever was refused.
    void End()
    {
        Clear();
        bool stays = false;
        for (int32_t n = 0; n < model.classes; ++n)
            stays = model.Call("CloseAccessor") != 0 || stays;
        EXPECT_EQ(Module_IsLoaded(accessor), stays);
        EXPECT_FALSE(Module_IsLoaded(scripted));
        int open = 0;
        for (size_t at = 0; (at = answers.calls.find("Session(", at)) != std::string::npos; ++at)
            open += answers.calls.compare(at - 2, 2, "te") == 0 ? 1 : -1;
        EXPECT_EQ(open, 0);
    }
};

} // namespace

TEST(FaultyAccessor, EveryTransferMeetsEveryFault)
{
    int transfers = 0, entries = 0;
    for (const char *entry : {"Read", "LoadFromFile", "SetInternalVRegs", "InitializeAccessor",
                              "CloseAccessor", "CreateSession", "CloseSession", "Write"}) {
        const bool handsOverATable = ++entries <= 3;
        for (const Fault &fault : faults) {
            int calls = 2; // of the entry, as far as they went; the first may end it all
            for (int nth = 0; nth <= calls && (handsOverATable || fault.code != 0); ++nth) {
                SCOPED_TRACE(std::string(entry) + " " + std::to_string(nth) + " " + fault.action);
                FaultyBoard board({entry, nth, &fault});
                if (!board.Begin())
                    continue;
                board.TransferAll();
                board.TransferAll();
                board.End();
                calls = std::max(calls, board.model.calls[entry]);
                transfers += 12;
            }
        }
    }
    printf("measured: %d transfers with a fault\n", transfers);
    EXPECT_GE(transfers, 2196);
}

TEST(FaultyAccessor, ChecksItsSettings)
{
    const std::tuple<StatusCode, std::string, std::vector<const char *>> rows[] = {
        {0, scripted, {"", " Read 1 short 0 ,Write * warn 1,\tRead 0x2 null"}},
        {-111,
         scripted,
         {"Read", "read 1 none", "Read 0 none", "Read 1 gone", "Read 1 fail 1", "Read 1 fail -0",
          "Read 1 fail", "Read 1 warn -1", "Read 1 warn 0x80000000", "Read 1 short", "Read 1 none 1",
          "Read 1 none,", ",Read 1 none", "Read 1 none;", "Write 1 none"}},
        {-107, image, {"InitializeAccessor 1 late -107"}},
        {-111, "", {""}},
        {-111, "itself", {""}},
        {-204, "nowhere", {""}}};
    for (const auto &[status, wraps, lists] : rows)
        for (const char *list : lists) {
            SCOPED_TRACE(wraps + ": " + list);
            FaultyBoard board({});
            EXPECT_EQ(board.StartWith(wraps == "itself" ? board.accessor : wraps, list), 0);
            EXPECT_EQ(board.Open("C"), status);
            EXPECT_EQ(Module_IsLoaded(board.accessor), status == 0);
        }
    FaultyBoard board({});
    EXPECT_EQ(board.StartWith(image, "InitializeAccessor 2 late -107") + board.Open("C"), 0);
    EXPECT_EQ(board.Open("D"), -107);
}

TEST(FaultyAccessor, WrapsAModuleWithoutOptionalEntries)
{
    for (const auto &[missing, status] : {std::pair{"Cfg_LoadFromFile", -4}, {"Cfg_SetInternalVRegs", 2}}) {
        SCOPED_TRACE(missing);
        FaultyBoard board({});
        const std::string module = board.directory.Module("lacking", missing);
        EXPECT_EQ(board.StartWith(module, "SetInternalVRegs 1 late -107") + board.Open("C"), 0);
        EXPECT_EQ(board.LoadFile(), -107);
        EXPECT_EQ(board.LoadFile(), 0);
        EXPECT_EQ(VelkLoadFromFile(board.config, board.directory.Path("options.ini").c_str(), "k"), status);
    }
}

TEST(FaultyAccessor, LetsAModuleStayThatRefusesToClose)
{
    FaultyBoard board({});
    const std::string module = board.directory.Module("stubborn");
    board.answers.close = -99;
    for (const StatusCode code : {-107, -107, -108}) { // neither a count nor a list is left of the one before
        EXPECT_EQ(board.StartWith(module, "Read 1 fail " + std::to_string(code)) + board.Open("C"), 0);
        EXPECT_EQ(board.Load(), code);
        EXPECT_EQ(board.Load(), 0);
        board.Clear();
        EXPECT_TRUE(Module_IsLoaded(module) && Module_IsLoaded(board.accessor));
    }
}

// Exit handlers run in the opposite order, so the module's own would come first.
TEST(FaultyAccessor, ServesAnExitHandlerThatClosesItsEngine)
{
    static FaultyBoard *served;
    FaultyBoard board({});
    served = &board;
    const auto close = [] {
        if (served->Load() != 0)
            _Exit(1);
        served->Clear();
    };
    const auto open = [&] { return board.StartWith(image, "") + board.Open("C"); };
    EXPECT_EXIT(exit(atexit(close) + open()), testing::ExitedWithCode(0), "");
}
