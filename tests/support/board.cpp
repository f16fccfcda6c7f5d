#include "tests/support/board.h"

#include <filesystem>
#include <fstream>
#include <random>
#include <set>
#include <sstream>

using namespace std::string_literals;

Script *script;

const char sampleKeys[] =
    "[A]\n0x10 (0xFFFFFFFF)=Value\n[B]\n0x11 (0xFF)=Value\n[Two]\n0x12 (3)=Index\nArray=1,2\n"
    "[Gone]\n0x99 (1)=Value\n[T]\n0x0B000001 (0)=String\n[L]\n0x0F000001 (0)=List\n";
const char sampleRegisters[] = "10=63 11=2 12=0 b000001=abc f000001=1,2";

std::vector<std::string> Split(const std::string &text, char separator)
{
    std::vector<std::string> pieces;
    std::istringstream stream(text);
    for (std::string piece; std::getline(stream, piece, separator);)
        pieces.push_back(piece);
    return pieces;
}

namespace
{

std::string Hex(uint64_t value)
{
    return (std::ostringstream() << std::hex << value).str();
}

int32_t KindOf(uint32_t id)
{
    const uint32_t nibble = id >> 24 & 0xF;
    return nibble == 0xB ? ValueKindString : nibble == 0xF ? ValueKindList : ValueKindNumber;
}

VelkWord ValueFromText(int32_t kind, const std::string &text)
{
    if (kind == ValueKindNumber)
        return static_cast<VelkWord>(std::stoull(text, nullptr, 16));
    if (text == "-")
        return 0;
    if (kind == ValueKindString)
        return Word(String_CopyNew(text.c_str()));
    List *list = List_New(0);
    for (const std::string &number : Split(text, ','))
        if (list != nullptr && List_Append(list, static_cast<uint32_t>(std::stoul(number, nullptr, 16))) < 0)
            List_Delete(std::exchange(list, nullptr));
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
    const int32_t kind = text[0] == '(' ? ValueKindList : text[0] == '\'' ? ValueKindString : ValueKindNumber;
    const VelkWord value = kind == ValueKindNumber ? static_cast<VelkWord>(std::stoull(text, nullptr, 0))
                                                   : ValueFromText(kind, text.substr(1));
    const StatusCode status = name[0] == '#' ? VelkSetKey(config, name.c_str() + 1, value)
                                             : VelkSetOptionEx(config, name.c_str(), kind, value);
    if (kind == ValueKindString)
        String_Delete(reinterpret_cast<char *>(value));
    if (kind == ValueKindList && value != 0)
        List_Delete(reinterpret_cast<List *>(value));
    return status;
}

} // namespace

std::string ReadFile(const std::string &path)
{
    return (std::ostringstream() << std::ifstream(path, std::ios::binary).rdbuf()).str();
}

Directory::Directory()
{
    std::random_device random; // numbers of processes come again, and with them what a dead one has left
    do
        path = testing::TempDir() + "velk-" + std::to_string(random());
    while (!std::filesystem::create_directory(path));
}

Directory::~Directory()
{
    std::error_code error; // a module that refuses to be closed may hold its file
    std::filesystem::remove_all(path, error);
}

void Directory::Write(const std::string &name, const std::string &bytes) const
{
    std::ofstream(Path(name), std::ios::binary) << bytes;
}

std::string Names(const Directory &directory)
{
    std::set<std::string> names;
    for (const auto &entry : std::filesystem::directory_iterator(directory.path))
        names.insert(entry.path().filename().string());
    std::string text;
    for (const std::string &name : names)
        text += name + " ";
    return text;
}

std::string Directory::Module(const std::string &name, const std::string &missing) const
{
    std::string bytes = ReadFile(VELK_TEST_MODULE_DIR "/scripted_accessor"s + moduleSuffix);
    const std::string symbol = '\0' + missing + '\0';
    for (size_t at = 0; !missing.empty() && (at = bytes.find(symbol, at)) != std::string::npos;)
        bytes[at + 1] = '?';
    Write(name + moduleSuffix, bytes);
    return Path(name);
}

bool Table_Append(const std::string &text, VRegTable **place)
{
    const std::vector<std::string> entries = Split(text, ' ');
    const auto room = static_cast<uint32_t>(entries.size());
    VRegTable *table = *place == nullptr ? AllocateVRegTable(room) : GrowVRegTable(*place, room);
    if (table == nullptr)
        return false;
    *place = table;
    for (const std::string &entry : entries) {
        const size_t equals = entry.find('=');
        const auto id = static_cast<uint32_t>(std::stoul(entry, nullptr, 16));
        const uint32_t flags = entry[equals - 1] == '*' ? VRegModified : 0;
        const std::string value = entry.substr(equals + 1);
        VReg *reg = &table->regs[table->count];
        *reg = {id, ValueFromText(KindOf(id), value), flags};
        if (reg->value == 0 && KindOf(id) != ValueKindNumber && value != "-")
            return false;
        ++table->count;
    }
    return true;
}

VRegTable *Table_FromText(const std::string &text)
{
    VRegTable *table = nullptr;
    EXPECT_TRUE(Table_Append(text, &table));
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

std::string Edited(std::string text, const std::string &what, const std::string &by)
{
    const size_t at = text.find(what);
    EXPECT_NE(at, std::string::npos) << what;
    return at == std::string::npos ? text : text.replace(at, what.size(), by);
}

void Script_Append(const char *text)
{
    script->calls += text;
}

void Script_Append(int64_t number)
{
    script->calls += std::to_string(number);
}

void Script_Append(const VRegTable *table)
{
    script->calls += Table_Text(table);
}

bool Script_Fill(const char *registers, VRegTable **place)
{
    return registers == nullptr || Table_Append(registers, place);
}

Desk::~Desk()
{
    Clear();
    script = previous;
    EXPECT_TRUE(previous != nullptr || LiveAllocations() == liveBefore) << LiveAllocations() - liveBefore;
}

StatusCode Desk::Start(const std::string &catalogue)
{
    directory.Write("CfgClass.ini", catalogue);
    return VelkInitializeConfigEngine(directory.path.c_str(), &engine);
}

StatusCode Desk::Open(const char *className)
{
    if (config != nullptr)
        VelkDiscardConfig(config);
    return VelkCreateConfig(engine, className, &config);
}

void Desk::Clear()
{
    if (config != nullptr)
        VelkDiscardConfig(std::exchange(config, nullptr));
    if (engine != nullptr)
        VelkCloseConfigEngine(std::exchange(engine, nullptr));
}

std::string Desk::Run(const std::string &commands) const
{
    std::string results;
    for (const std::string &command : Split(commands, ' ')) {
        const size_t equals = command.find('=');
        results += results.empty() ? "" : " ";
        if (command == ".")
            results += Table_Text(TableOf(config));
        else if (equals == std::string::npos)
            results += RunRead(config, command);
        else
            results += std::to_string(RunSet(config, command.substr(0, equals), command.substr(equals + 1)));
    }
    return results;
}

Board::Board(const std::string &keys, const std::string &options, const char *registers,
             const std::string &moreOptions)
{
    directory.Write("keys.ini", keys);
    directory.Write("options.ini", options);
    directory.Write("more.ini", moreOptions);
    answers.registers = registers;
    answers.loadFromFile = -1;
    const std::string module = VELK_TEST_MODULE_DIR "/scripted_accessor";
    EXPECT_EQ(Start("[C]\nAccessor=" + module + "\nKeys=keys.ini\nOptions=options.ini more.ini\n"), 0);
    status = Open("C");
    EXPECT_TRUE(status != 0 || registers == nullptr || Load() == 0);
    answers.calls.clear();
}

std::string Option(const std::string &name, const std::string &keys, const std::string &type,
                   const std::string &rules)
{
    return "[" + name + "]\nKeys=" + keys + "\nValidValuesType=" + type + "\n" + rules + "\n";
}

void Board_Expect(const std::string &keys, const std::string &options, const char *registers,
                  const std::string &commands, const std::string &results)
{
    SCOPED_TRACE(keys + "\n" + options + "\n" + commands);
    const Board board(keys, options, registers);
    EXPECT_EQ(board.status == 0 ? board.Run(commands) : std::to_string(board.status), results);
}
