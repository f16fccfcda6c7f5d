#include "tests/support/board.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <vector>

Script *script;

namespace
{

std::string Hex(uint64_t value)
{
    std::ostringstream text;
    text << std::hex << value;
    return text.str();
}

std::vector<std::string> Split(const std::string &text, char separator)
{
    std::vector<std::string> pieces;
    std::istringstream stream(text);
    for (std::string piece; std::getline(stream, piece, separator);)
        pieces.push_back(piece);
    return pieces;
}

int32_t KindOf(uint32_t id)
{
    const uint32_t nibble = id >> 24 & 0xF;
    return nibble == 0xB ? ValueKindString : nibble == 0xF ? ValueKindList : ValueKindNumber;
}

VelkWord ValueFromText(int32_t kind, const std::string &text)
{
    if (kind == ValueKindNumber)
        return std::stoull(text, nullptr, 16);
    if (text == "-")
        return 0;
    if (kind == ValueKindString)
        return Word(String_CopyNew(text.c_str()));
    List *list = List_New(0);
    for (const std::string &number : Split(text, ','))
        List_Append(list, static_cast<uint32_t>(std::stoul(number, nullptr, 16)));
    return Word(list);
}

std::string ValueText(int32_t kind, VelkWord value)
{
    if (kind == ValueKindNumber)
        return Hex(value);
    if (value == 0)
        return "-";
    if (kind == ValueKindString)
        return reinterpret_cast<const char *>(value);
    std::string text;
    const List *list = reinterpret_cast<const List *>(value);
    for (int32_t n = 0; n < list->count; ++n)
        text += (n == 0 ? "" : ",") + Hex(list->items[n]);
    return text;
}

std::string RunRead(Config *config, const std::string &name)
{
    VelkWord value = 0;
    int32_t kind = ValueKindNumber;
    const StatusCode status = name[0] == '#' ? VelkGetKey(config, name.c_str() + 1, &value)
                                             : VelkGetOptionEx(config, name.c_str(), -1, &value, &kind);
    return status == 0 ? ValueText(kind, value) : "!" + std::to_string(status);
}

StatusCode RunSet(Config *config, const std::string &name, const std::string &text)
{
    const bool isList = text[0] == '(';
    VelkWord value = 0;
    int32_t kind = isList ? ValueKindList : text[0] == '\'' ? ValueKindString : ValueKindNumber;
    const VelkWord made = kind == ValueKindNumber ? 0 : ValueFromText(kind, text.substr(1));
    if (text == "null")
        VelkGetOptionEx(config, name.c_str(), -1, &value, &kind);
    value = made != 0 || text == "null" ? made : std::stoull(text, nullptr, 0);
    const StatusCode status = name[0] == '#' ? VelkSetKey(config, name.c_str() + 1, value)
                                             : VelkSetOptionEx(config, name.c_str(), kind, value);
    if (made != 0 && isList)
        List_Delete(reinterpret_cast<List *>(made));
    if (made != 0 && !isList)
        String_Delete(reinterpret_cast<char *>(made));
    return status;
}

} // namespace

Directory::Directory()
{
    char name[] = "/tmp/velk-XXXXXX";
    path = mkdtemp(name);
}

Directory::~Directory()
{
    std::filesystem::remove_all(path);
}

std::string Directory::Path(const std::string &name) const
{
    return path + "/" + name;
}

void Directory::Write(const std::string &name, const std::string &bytes) const
{
    std::ofstream(Path(name), std::ios::binary) << bytes;
}

std::string Directory::Read(const std::string &name) const
{
    std::ifstream file(Path(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string Directory::Module(const std::string &name, const std::string &missing) const
{
    std::ifstream file(VELK_TEST_MODULE_DIR "/scripted_accessor.so", std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(file), {}};
    const std::string symbol = '\0' + missing + '\0';
    for (size_t at = 0; !missing.empty() && (at = bytes.find(symbol, at)) != std::string::npos;)
        bytes[at + 1] = '?';
    Write(name + ".so", bytes);
    return Path(name);
}

std::string Script::TakeCalls()
{
    return std::exchange(calls, "");
}

VRegTable *Table_FromText(const char *text)
{
    return Table_Add(AllocateVRegTable(0), text);
}

VRegTable *Table_Add(VRegTable *table, const char *text)
{
    const std::vector<std::string> entries = Split(text, ' ');
    table = GrowVRegTable(table, static_cast<uint32_t>(entries.size()));
    for (const std::string &entry : entries) {
        const size_t equals = entry.find('=');
        const auto id = static_cast<uint32_t>(std::stoul(entry, nullptr, 16));
        const uint32_t flags = entry[equals - 1] == '*' ? VRegModified : 0;
        table->regs[table->count++] = {id, ValueFromText(KindOf(id), entry.substr(equals + 1)), flags};
    }
    return table;
}

std::string Table_Text(const VRegTable *table)
{
    if (table == nullptr)
        return "none";
    std::string text;
    for (int32_t n = 0; n < table->count; ++n) {
        const VReg &reg = table->regs[n];
        text += (n == 0 ? "" : " ") + Hex(reg.id) + (reg.flags == VRegModified ? "*=" : "=") +
                ValueText(KindOf(reg.id), reg.value);
    }
    return text;
}

VRegTable *&TableOf(Config *config)
{
    return *reinterpret_cast<VRegTable **>(config);
}

bool IsModuleLoaded(const std::string &module)
{
    void *handle = dlopen((module + ".so").c_str(), RTLD_LAZY | RTLD_NOLOAD);
    if (handle != nullptr)
        dlclose(handle);
    return handle != nullptr;
}

Desk::Desk() : previous(script)
{
    script = &answers;
}

Desk::~Desk()
{
    if (engine != nullptr)
        VelkCloseConfigEngine(engine);
    script = previous;
    EXPECT_EQ(LiveAllocations(), liveBefore);
}

StatusCode Desk::Start(const std::string &catalogue)
{
    directory.Write("CfgClass.ini", catalogue);
    return VelkInitializeConfigEngine(directory.path.c_str(), &engine);
}

Board::Board(const std::string &keys, const std::string &options, const char *registers,
             const std::string &moreOptions)
{
    directory.Write("keys.ini", keys);
    directory.Write("options.ini", options);
    directory.Write("more.ini", moreOptions);
    EXPECT_EQ(Start("[C]\nAccessor=" VELK_TEST_MODULE_DIR
                    "/scripted_accessor\nKeys=keys.ini\nOptions=options.ini more.ini\n"),
              0);
    status = VelkCreateConfig(engine, "C", &config);
    answers.registers = registers;
    answers.loadFromFile = -1;
    if (status == 0 && registers != nullptr)
        VelkLoadCurrentConfig(config, 1, 2);
    answers.calls.clear();
}

Board::~Board()
{
    if (config != nullptr)
        VelkDiscardConfig(config);
}

std::string Board::Run(const std::string &commands) const
{
    std::string results;
    for (const std::string &command : Split(commands, ' ')) {
        const size_t equals = command.find('=');
        results += results.empty() ? "" : " ";
        results +=
            command == "." ? Table_Text(TableOf(config))
            : equals == std::string::npos
                ? RunRead(config, command)
                : std::to_string(RunSet(config, command.substr(0, equals), command.substr(equals + 1)));
    }
    return results;
}

void Board_Expect(const std::string &keys, const std::string &options, const char *registers,
                  const std::string &commands, const std::string &results)
{
    SCOPED_TRACE(keys + "\n" + options + "\n" + commands);
    const Board board(keys, options, registers);
    EXPECT_EQ(board.status == 0 ? board.Run(commands) : std::to_string(board.status), results);
}
