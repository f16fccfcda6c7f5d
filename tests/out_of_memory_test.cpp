// What every export leaves behind when memory runs out within it.
#include "tests/support/out_of_memory.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iostream>
#include <optional>
#include <set>
#include <sstream>

#include <gtest/gtest-spi.h>

namespace
{

// B, T and L follow A. Some rules test an option of a later file.
const std::string definedKeys = "[I]\n0x10 (1)=Index\nArray=1,2,:4:1:9\n[U]\n0x0B000002 (0)=String\n";
const std::string definedOptions = Option("A", "A", "Range", "default=0:1:3") +
                                   Option("B", "B", "List", "A:1=(5,6)\ndefault=(1,2)") +
                                   Option("T", "T", "String", "A:1=one\ndefault=other") +
                                   Option("L", "L", "ListSet", "A:1=[(1,1)]\nA:2=[*]\ndefault=[(2),(3)]") +
                                   Option("U", "U", "String", "Later>1=fixed\ndefault=*");
const char state[] = "10=2 11=1 b000001=other f000001=2 b000002=- f000002=2,3";

const std::string imageSettings =
    "Keys=keys.ini\nOptions=more.ini\nImage=board.img\nStride=16\nRegisters=0x10,0xB000001,0xF000001,0x10\n"
    "0x10=0 u8\n0xB000001=1 text 4\n0xF000001=5 list 3 u16 big\n0x10:2=13 u8\n";
const std::string imageClass = "[C]\nAccessor=" VELK_TEST_MODULE_DIR "/velkimage\n" + imageSettings;
const std::string faultyClass = "[C]\nAccessor=" VELK_TEST_MODULE_DIR
                                "/velkfaulty\nFaults=Read * kinds,SetInternalVRegs * kinds\n"
                                "Wraps=" VELK_TEST_MODULE_DIR "/velkimage\n" +
                                imageSettings;

void StartAnew(Bed &bed, const std::string &catalogue)
{
    bed.Discard();
    bed.Clear();
    EXPECT_EQ(bed.Start(catalogue), 0);
}

void StartImage(Bed &bed)
{
    StartAnew(bed, imageClass);
}

void StartFaulty(Bed &bed)
{
    StartAnew(bed, faultyClass);
}

void OpenFaulty(Bed &bed)
{
    StartFaulty(bed);
    EXPECT_EQ(bed.Open("C"), 0);
}

void LoadImage(Bed &bed)
{
    StartImage(bed);
    EXPECT_EQ(bed.Open("C") + bed.Load(), 0);
}

// Puts what was made in its place; null leaves that alone.
template <typename Type> StatusCode Put(Type **place, Type *made)
{
    *place = made == nullptr ? *place : made;
    return made == nullptr ? -1 : 0;
}

StatusCode MakeText(Bed &bed)
{
    return Put(&bed.text, String_CopyNew("text"));
}

void MakeObjects(Bed &bed)
{
    bed.table = AllocateVRegTable(9);
    bed.list = List_New(0);
    EXPECT_EQ(List_Append(bed.list, 5) + MakeText(bed), 0);
}

StatusCode OpenClass(Bed &bed)
{
    return bed.Open("C");
}

StatusCode LoadBoard(Bed &bed)
{
    return bed.Load();
}

// Calls whatever needs no memory.
StatusCode CallTheOthers(Bed &bed)
{
    Config *config = bed.config;
    const char *name = nullptr;
    char message[80];
    int32_t kind = 0;
    uint32_t number = 0;
    VelkWord word = 0, words[3] = {};
    VelkOptionRef option = nullptr;
    VelkValidRef valid = nullptr;
    VelkStrError(-1, message);
    const StatusCode status =
        std::min({CfgClass_GetAccessorData(bed.answers.configClass, "Keys", &name),
                  VelkTranslateValue(config, "C", 1, message, 80) + 203,
                  VelkIsConfigLoaded(config),
                  VelkIsConfigModified(config),
                  VelkGetBits(config, 0x10, 1, 1, &word),
                  VelkSetBits(config, 0x10, 1, 1, 1),
                  VelkGetKey(config, "A", &word),
                  VelkGetKey(config, "L", &word),
                  VelkSetKey(config, "A", 2),
                  VelkSetKey(config, "T", Word("other")),
                  VelkGetOption(config, "B", &number),
                  VelkGetOptionEx(config, "L", -1, &word, &kind),
                  VelkNumberOfOptions(config, &number),
                  VelkGetOptionNames(config, &name, 1),
                  VelkRefFromOptionName(config, "T", &option),
                  VelkQueryOptionValidValues(config, "B", &number, &valid),
                  VelkDataFromValidValueRef(config, valid, words),
                  VelkDataFromValueListRef(config, reinterpret_cast<const uint32_t *>(words[1]), &number, 1),
                  List_AreEqual(bed.list, bed.list),
                  String_AreEqual(bed.text, bed.text),
                  LookupVReg(TableOf(config), 0x11, 1) == nullptr ? -1 : 0,
                  VelkDiscardConfig(std::exchange(bed.copy, nullptr))});
    String_Delete(std::exchange(bed.text, nullptr));
    List_Delete(std::exchange(bed.list, nullptr));
    FreeVRegTable(std::exchange(bed.table, nullptr));
    return status;
}

uint32_t numbers[] = {1, 2};
const List someNumbers = {2, numbers};

const Operation operations[] = {
    {"List_New", "-1", [](Bed &bed) { return Put(&bed.list, List_New(3)); }},
    {"List_CopyNew", "-1", [](Bed &bed) { return Put(&bed.list, List_CopyNew(&someNumbers)); }},
    {"List_Append", "-1", [](Bed &bed) { return List_Append(bed.list, 6); }, MakeObjects},
    {"String_CopyNew", "-1", MakeText},
    {"String_Append", "-1", [](Bed &bed) { return Put(&bed.text, String_Append(bed.text, " and more")); },
     MakeObjects},
    {"AllocateVRegTable", "-1", [](Bed &bed) { return Put(&bed.table, AllocateVRegTable(3)); }},
    {"GrowVRegTable", "-1", [](Bed &bed) { return Put(&bed.table, GrowVRegTable(bed.table, 1000)); },
     MakeObjects},
    {"CopyVRegTable", "0", [](Bed &bed) { return CopyVRegTable(TableOf(bed.config), bed.table), 0; },
     MakeObjects},
    {"CfgClass_GetAccessorData VelkTranslateValue VelkIsConfigLoaded VelkIsConfigModified VelkGetBits "
     "VelkSetBits VelkGetKey VelkSetKey VelkGetOption VelkGetOptionEx VelkNumberOfOptions VelkGetOptionNames "
     "VelkRefFromOptionName VelkQueryOptionValidValues VelkDataFromValidValueRef VelkDataFromValueListRef "
     "List_AreEqual String_AreEqual LookupVReg VelkDiscardConfig String_Delete List_Delete FreeVRegTable "
     "VelkStrError",
     "", CallTheOthers, MakeObjects},
    {"VelkInitializeConfigEngine", "-201 -202",
     [](Bed &bed) { return VelkInitializeConfigEngine(bed.directory.path.c_str(), &bed.engine); },
     [](Bed &bed) { bed.Discard(), bed.Clear(); }},
    {"VelkCloseConfigEngine", "",
     [](Bed &bed) { return VelkCloseConfigEngine(std::exchange(bed.engine, nullptr)); }, LoadImage},
    // Configuration and class, module, the accessor's settings, keys, options: of each its table and files.
    {"VelkCreateConfig", "-1", OpenClass, [](Bed &bed) { bed.Discard(); }},
    {"VelkCreateConfig", "-1 -201 -204 -201 -205 -201 -206", OpenClass,
     [](Bed &bed) { StartAnew(bed, bed.directory.Read("CfgClass.ini")); }},
    {"VelkCreateConfig", "-1 -201 -204 -1 -201 -205 -201 -206", OpenClass, StartImage},
    {"VelkCreateConfig", "-1 -201 -204 -1 -204 -1 -201 -205 -201 -206", OpenClass, StartFaulty},
    {"VelkDuplicateConfig", "-1 0", [](Bed &bed) { return VelkDuplicateConfig(bed.config, bed.copy); }},
    {"VelkLoadCurrentConfig", "-1", LoadBoard, LeaveAsItIs, true},
    {"VelkLoadCurrentConfig", "-1", LoadBoard, LoadImage, true},
    {"VelkLoadCurrentConfig", "-1", LoadBoard, OpenFaulty},
    {"VelkSaveCurrentConfig", "-1", [](Bed &bed) { return bed.Save(); },
     [](Bed &bed) {
         LoadImage(bed);
         EXPECT_EQ(bed.Run("#T='CD"), "0");
     }},
    {"VelkLoadFromFile", "-1 -4 -1", [](Bed &bed) { return bed.LoadFile(); }},
    {"VelkLoadFromFile", "-1 2 -4 -1", [](Bed &bed) { return bed.LoadFile(); },
     [](Bed &bed) {
         bed.directory.Write("file", "[Older]\n");
         bed.answers.loadFromFile = 0;
     }},
    {"VelkLoadFromFile", "-1 -4 -1", [](Bed &bed) { return bed.LoadFile(); }, OpenFaulty},
    {"VelkSaveToFile", "-1 -6",
     // The key fills a block, so that items behind it take further ones.
     [](Bed &bed) { return bed.SaveFile(std::string(2000, 'k')); }},
    {"VelkSetKey", "-1", [](Bed &bed) { return VelkSetKey(bed.config, "T", Word("new")); }},
    {"VelkSetKey", "-1", [](Bed &bed) { return VelkSetKey(bed.config, "L", Word(bed.list)); }, MakeObjects},
    {"VelkSetOption", "-1", [](Bed &bed) { return VelkSetOption(bed.config, "A", 1); }},
    {"VelkSetOptionEx", "-1",
     [](Bed &bed) { return VelkSetOptionEx(bed.config, "U", ValueKindString, Word("new")); }},
    {"VelkSetOptionEx", "-1",
     [](Bed &bed) { return VelkSetOptionEx(bed.config, "L", ValueKindList, Word(bed.list)); }, MakeObjects},
    {"VelkSetOptionWithChangeList", "-1",
     [](Bed &bed) { return VelkSetOptionWithChangeList(bed.config, "A", 1, bed.entries, 2); }, LeaveAsItIs,
     true},
    {"VelkSetOptionExWithChangeList", "-1",
     [](Bed &bed) {
         return VelkSetOptionExWithChangeList(bed.config, "U", ValueKindString, Word("new"), bed.entries, 2);
     },
     LeaveAsItIs, true},
};

// What the driver has to complain about, in these words.
const std::pair<const char *, Operation> canaries[] = {
    {"seen == trial->good", {"swallows a failure", "-1", [](Bed &bed) { return MakeText(bed), 0; }}},
    {"1 blocks",
     {"keeps a block", "-1",
      [](Bed &bed) { return bed.lost == nullptr ? Put(&bed.lost, String_CopyNew("")), MakeText(bed) : 0; }}},
    {"seen == before",
     {"leaves half of it", "-1", [](Bed &bed) { return bed.entries[0].flags = 0, MakeText(bed); }}},
    {"trial->allowed", {"tells another reason", "-99", MakeText}},
    {"operation.outcomes", {"allocates all the same", "", MakeText}},
    {"when called again",
     {"stays broken", "-1",
      [](Bed &bed) { return std::exchange(bed.answers.close, -1) == 0 ? MakeText(bed) : -1; }}},
};

// Whether a call has an nth allocation, without which it gives -1; it gives `otherwise` with all.
bool IsRefused(int nth, const std::function<StatusCode()> &call, StatusCode otherwise)
{
    std::optional<FailAllocations> fail(std::in_place, nth);
    const StatusCode status = call();
    const bool isRefused = fail->Fired();
    fail.reset();
    EXPECT_EQ(status, isRefused ? -1 : otherwise);
    return isRefused;
}

} // namespace

Bed::Bed()
    : Board(definedKeys + sampleKeys, definedOptions, state, Option("Later", "A", "Range", "default=0:1:9"))
{
    directory.Write("file", "[Information]\nKey=k\n[Data]\n10=3\n0B000001=new\n0F000001=7,8\n");
    directory.Write("board.img", {"\x7F\x41\x42\0Z\0\2\1\2\xFF\xFE..\1..", 16});
    answers.oldFile = "10=2 b000001=older f000001=9";
    answers.internal = "fb000001=internal";
    EXPECT_EQ(VelkCreateConfig(engine, "C", &copy), 0);
}

Bed::~Bed()
{
    Discard();
    FreeVRegTable(table);
    if (list != nullptr)
        List_Delete(list);
    String_Delete(text);
    String_Delete(lost);
}

void Bed::Discard()
{
    for (Config **one : {&config, &copy})
        if (*one != nullptr)
            VelkDiscardConfig(std::exchange(*one, nullptr));
}

std::string Bed::Observe() const
{
    std::ostringstream seen;
    seen << (engine != nullptr) << Module_IsLoaded(VELK_TEST_MODULE_DIR "/scripted_accessor")
         << Module_IsLoaded(VELK_TEST_MODULE_DIR "/velkimage");
    for (Config *one : {config, copy}) // what a failed read left does not count
        seen << (one == nullptr                 ? " none "
                 : VelkIsConfigLoaded(one) == 1 ? " loaded " + Table_Text(TableOf(one)) + " "
                                                : " empty ");
    if (engine != nullptr && config != nullptr && VelkIsConfigLoaded(config) == 1)
        seen << Run("A B T L U");
    seen << " made " << Table_Text(table) << " " << (table == nullptr ? 0 : table->capacity) << " "
         << (list == nullptr ? -1 : list->count) << (text == nullptr ? "-" : text);
    for (const ChangeEntry &entry : entries)
        seen << "\n" << entry.flags << " " << (entry.newValue > 77) << (entry.newValidRef != nullptr);
    seen << "\n" << Names(directory) << directory.Read("file") << directory.Read("board.img");
    return seen.str();
}

TEST(OutOfMemory, LeavesWhatWasBehindEveryExport)
{
    std::set<std::string> exported, named;
    std::ifstream list(VELK_SOURCE_DIR "/platform/libvelk32.map");
    for (std::string word; list >> word;)
        if (word.size() > 2 && word.back() == ';') // "*;" and "};" name nothing
            exported.insert(word.substr(0, word.size() - 1));

    int64_t faults = 0;
    for (const Operation &operation : operations) {
        for (const std::string &name : Split(operation.names, ' '))
            named.insert(name);
        faults += HasFailure() ? 0 : Operation_Try(operation);
    }
    EXPECT_EQ(named, exported);
    std::cout << "measured: out of memory at " << faults << " points\n";
    EXPECT_GE(faults, 916);
}

// In a load each allocation fails along with each call of the accessor. A set enters none.
TEST(OutOfMemory, MeetsFailingAccessors)
{
    for (StatusCode Script::*const answer : {&Script::createSession, &Script::read}) {
        bool isLoadRefused = true, isSetRefused = true;
        for (int nth = 1; (isLoadRefused || isSetRefused) && !HasFailure(); ++nth) {
            SCOPED_TRACE(nth);
            Bed bed;
            const std::string before = bed.Observe();
            bed.answers.*answer = -109;
            std::string calls = bed.answers.calls;
            isSetRefused = IsRefused(
                nth, [&] { return VelkSetOption(bed.config, "A", 1); }, 0);
            EXPECT_TRUE(!isSetRefused || bed.Observe() == before);
            EXPECT_EQ(bed.answers.calls, calls);

            const std::string set = bed.Observe();
            isLoadRefused = IsRefused(
                nth, [&] { return bed.Load(); }, -109);
            EXPECT_EQ(bed.Observe() == set, answer == &Script::createSession);
            EXPECT_GT(bed.answers.calls, calls);
            bed.answers.*answer = 0;
            EXPECT_EQ(bed.Load(), 0);
            EXPECT_EQ(bed.Observe(), before);
        }
    }
}

TEST(OutOfMemory, CanariesAreReported)
{
    for (const auto &[complaint, operation] : canaries) {
        testing::TestPartResultArray failures;
        {
            const testing::ScopedFakeTestPartResultReporter reporter(&failures);
            Operation_Try(operation);
        }
        std::string text;
        for (int n = 0; n < failures.size(); ++n)
            text += failures.GetTestPartResult(n).message();
        EXPECT_NE(text.find(complaint), std::string::npos) << operation.names << "\n" << text;
    }
}
