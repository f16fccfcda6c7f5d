// A catalogue with its definition files: the class is loaded, a board is made up that has the registers of
// its keys, and calls are made on it as the last part of the input says. A call that fails leaves registers
// and out arguments as they were, one that reads leaves the registers anyway.
#include <algorithm>
#include <cstring>

#include "configs/config.h"
#include "engine/config_class.h"
#include "fuzz/support.h"
#include "keys/key_def.h"
#include "values/vreg_table.h"

constexpr int MaxCalls = 40;
constexpr VelkWord Untouched = 0x5A5A5A5A;

struct Play {
    Config *config;
    Config *twin;
    Bytes bytes;
    std::vector<const char *> names; // of options, then of keys, then one that is neither
    std::string before;              // the registers ahead of a call
};

static const char *TakeName(Play *play)
{
    return play->names[Bytes_Take(&play->bytes) % play->names.size()];
}

static VelkWord TakeValue(Play *play, int32_t kind)
{
    static uint32_t items[] = {1, 2, 3, 0xFFFFFFFF};
    static constexpr List lists[] = {{0, nullptr}, {2, items}, {4, items}};
    const uint32_t form = Bytes_Take(&play->bytes) % 4;
    if (kind == ValueKindNumber)
        return Bytes_TakeNumber(&play->bytes);
    if (kind == ValueKindString) {
        static constexpr const char *texts[] = {"", nullptr, "text", "k"};
        return Word_Of(texts[form]);
    }
    return form == 3 ? 0 : Word_Of(&lists[form]);
}

static StatusCode ReadOption(Play *play)
{
    VelkWord value = Untouched;
    const auto kind = static_cast<int32_t>(Bytes_Take(&play->bytes) % 5) - 1;
    const StatusCode status = VelkGetOptionEx(play->config, TakeName(play), kind, &value, nullptr);
    Check(status == 0 || value == Untouched, "a failed read of an option writes no value");
    return status;
}

static StatusCode ReadKey(Play *play)
{
    VelkWord value = Untouched;
    const StatusCode status = VelkGetKey(play->config, TakeName(play), &value);
    Check(status == 0 || value == Untouched, "a failed read of a key writes nothing");
    return status;
}

// Looks at all that the rule in force offers.
static StatusCode AskForValidValues(Play *play)
{
    uint32_t kind;
    VelkValidRef valid = nullptr;
    const StatusCode status = VelkQueryOptionValidValues(play->config, TakeName(play), &kind, &valid);
    Check((status == 0) == (valid != nullptr), "a rule in force is told when there is one");
    VelkWord words[3] = {};
    if (status == 0)
        VelkDataFromValidValueRef(play->config, valid, words);
    const auto count = static_cast<int32_t>(static_cast<uint32_t>(words[0]));
    if (status == 0 && kind == ValidKindList) {
        std::vector<uint32_t> numbers(static_cast<size_t>(count));
        VelkDataFromValueListRef(play->config, reinterpret_cast<const uint32_t *>(words[1]), numbers.data(),
                                 count);
    }
    for (int32_t n = 0; status == 0 && kind == ValidKindListSet && n < count; ++n)
        List_Delete(List_CopyNew(reinterpret_cast<const List *>(words[1]) + n));
    if (status == 0 && kind == ValidKindString)
        String_Delete(String_CopyNew(Word_AsString(words[0])));
    return status;
}

static StatusCode Translate(Play *play)
{
    char buffer[16] = "untouched";
    const auto size = static_cast<int32_t>(Bytes_Take(&play->bytes) % sizeof buffer);
    const std::string section = std::string(play->config->configClass->name) + "/" + TakeName(play);
    const uint32_t value = Bytes_TakeNumber(&play->bytes);
    const StatusCode status = VelkTranslateValue(play->config, section.c_str(), value, buffer, size);
    Check(status == 0 || strcmp(buffer, "untouched") == 0, "a failed translation writes nothing");
    return status;
}

// Of a number register; of any other the payload would have to be seen to.
static StatusCode ChangeBits(Play *play)
{
    const uint32_t count = VRegTable_Count(play->config->table);
    const uint32_t id = count == 0 ? 1 : play->config->table->regs[Bytes_Take(&play->bytes) % count].id;
    const uint32_t mask = Bytes_TakeNumber(&play->bytes);
    const auto instance = static_cast<int32_t>(Bytes_Take(&play->bytes) % 4);
    if (VReg_HasPayload(id))
        return 0;
    return VelkSetBits(play->config, id, instance, mask, Bytes_TakeNumber(&play->bytes));
}

static StatusCode SetKey(Play *play)
{
    const char *name = TakeName(play);
    const KeyDef *key = KeyTable_Find(&play->config->configClass->definitions.keys, name);
    int32_t kind = ValueKindNumber;
    if (key != nullptr)
        KeyDef_GetKind(key, &kind);
    return VelkSetKey(play->config, name, TakeValue(play, kind));
}

// A set with a change list goes as one without, or not at all; only a failure of the report may come with it.
static StatusCode SetOption(Play *play)
{
    const char *name = TakeName(play);
    const auto kind = static_cast<int32_t>(Bytes_Take(&play->bytes) % 3);
    const VelkWord value = TakeValue(play, kind);
    ChangeEntry entries[3] = {};
    for (ChangeEntry &entry : entries) {
        entry.name = TakeName(play);
        if (Bytes_Take(&play->bytes) % 2 == 0)
            VelkRefFromOptionName(play->config, entry.name, &entry.optionRef);
    }
    const auto count = static_cast<int32_t>(Bytes_Take(&play->bytes) % 4);
    VelkDuplicateConfig(play->config, play->twin);
    const StatusCode plain = VelkSetOptionEx(play->twin, name, kind, value);
    const StatusCode status = VelkSetOptionExWithChangeList(play->config, name, kind, value, entries, count);
    const std::string after = Registers_Text(play->config, VRegModified);
    Check(status < 0 || plain == 0, "a set with a list goes where one without goes");
    if (plain < 0 || after == play->before)
        return plain;
    Check(after == Registers_Text(play->twin, VRegModified), "a set with a list sets the same");
    return 0;
}

static StatusCode LoadBoard(Play *play)
{
    return VelkLoadCurrentConfig(play->config, Bytes_Take(&play->bytes), 0);
}

static StatusCode SaveBoard(Play *play)
{
    return VelkSaveCurrentConfig(play->config, Bytes_Take(&play->bytes), 0);
}

static StatusCode SaveAndLoad(Play *play)
{
    const StatusCode status = VelkSaveToFile(play->config, "save", "k");
    return status < 0 ? status : VelkLoadFromFile(play->config, "save", TakeName(play));
}

// The first ones may change registers.
static constexpr StatusCode (*Calls[])(Play *) = {SetOption,         SetKey,    ChangeBits, LoadBoard,
                                                  SaveAndLoad,       SaveBoard, ReadOption, ReadKey,
                                                  AskForValidValues, Translate};
constexpr size_t FirstThatReads = 5;

static void MakeCalls(Play *play)
{
    for (int n = 0; n < MaxCalls && play->bytes.used < play->bytes.text.size(); ++n) {
        play->before = Registers_Text(play->config, VRegModified);
        const size_t call = Bytes_Take(&play->bytes) % std::size(Calls);
        const StatusCode status = Calls[call](play);
        Check((status >= 0 && call < FirstThatReads) ||
                  Registers_Text(play->config, VRegModified) == play->before,
              "a call that fails or reads changes no register");
        char message[78];
        VelkStrError(status, message);
    }
}

static int32_t AddName(const NameNode *node, void *names)
{
    static_cast<std::vector<const char *> *>(names)->push_back(node->name);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const Bounds bounds(size);
    const std::vector<std::string> parts = Input_Split(data, size, 5);
    MemoryFiles_Clear();
    static constexpr const char *files[] = {"CfgClass.ini", "keys.ini", "options.ini", "more.ini"};
    for (size_t n = 0; n < std::size(files); ++n)
        MemoryFile(files[n]) = parts[n];

    const Desk desk = Desk_Open();
    Input_Count(desk.config != nullptr);
    if (desk.config != nullptr) {
        Play play = {desk.config, desk.other, {parts[4], 0}, {}, ""};
        uint32_t count;
        VelkNumberOfOptions(desk.config, &count);
        play.names.resize(count);
        Check(VelkGetOptionNames(desk.config, play.names.data(), count) == 0, "options that are counted");
        NameTable_ForEach(&desk.config->configClass->definitions.keys, AddName, &play.names);
        play.names.push_back("k");
        if (Bytes_Take(&play.bytes) % 16 != 0)
            LoadBoard(&play);
        MakeCalls(&play);
    }
    Desk_Close(&desk);
    return 0;
}
