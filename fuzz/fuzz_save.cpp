// Save files: one that loads is saved and loaded again as an equal one, one that fails changes nothing. An
// input is the save file.
#include <algorithm>

#include "fuzz/support.h"

constexpr char SaveKey[] = "k";
constexpr StatusCode Expected[] = {0, StatusOutOfMemory, StatusBadFile, StatusIncompatibleFile,
                                   StatusBadNumber};

// One for all inputs, each of which begins with the registers of its board.
static Desk OpenDesk()
{
    MemoryFile("CfgClass.ini") = "[C]\nAccessor=a\nKeys=keys\nOptions=options\n";
    MemoryFile("keys") = "[A]\n0x10 (1)=Value\n[B]\n0x0B000001 (1)=String\n[C]\n0x0F000001 (1)=List\n";
    MemoryFile("options") = "";
    return Desk_Open();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    static const Desk desk = OpenDesk();
    const Bounds bounds(size);
    Check(desk.config != nullptr && VelkLoadCurrentConfig(desk.config, 2, 0) == 0, "the class is a good one");
    const std::string before = Registers_Text(desk.config, VRegModified);
    MemoryFile("file").assign(reinterpret_cast<const char *>(data), size);
    const StatusCode status = VelkLoadFromFile(desk.config, "file", SaveKey);
    Input_Count(status == 0);
    const std::string after = Registers_Text(desk.config, VRegModified);
    Check(std::count(std::begin(Expected), std::end(Expected), status) == 1, "the status is one of a load");
    Check(status == 0 || after == before, "a failed load changes nothing");
    if (status < 0)
        return 0;

    Check(VelkSaveToFile(desk.config, "again", SaveKey) == 0, "what is loaded can be saved");
    Check(VelkLoadFromFile(desk.other, "again", SaveKey) == 0, "what is saved can be loaded");
    Check(Registers_Text(desk.other, VRegModified) == after, "what is saved and loaded again is equal");
    return 0;
}
