// The image accessor: a board is loaded, changed, saved and loaded again as it was saved, and a save writes
// to its board alone. An input is the settings, the image and what to change.
#include "accessors/image/image_units.h"
#include "configs/config.h"
#include "fuzz/support.h"
#include "values/vreg_table.h"

// A later item of one name takes the place of an earlier one.
constexpr char Defaults[] =
    "[C]\nAccessor=a\nKeys=keys\nOptions=options\nImage=image\nStride=64\nRegisters=1\n";

static ImageMap *latest;

// In place of the accessor's own chain, which goes when its module is released: here that stays.
StatusCode ImageUnits_Add(ImageMap *map)
{
    ImageMap_Delete(latest);
    latest = map;
    return 0;
}

const ImageMap *ImageUnits_Find(uint32_t)
{
    return latest;
}

static void ChangeRegister(Bytes *changes, VReg *slot)
{
    if (!VReg_HasPayload(slot->id)) {
        slot->value = Bytes_TakeNumber(changes);
        return;
    }
    VReg_ReleasePayload(slot->id, slot->value);
    const std::string text(Bytes_Take(changes) % 16, static_cast<char>('a' + Bytes_Take(changes) % 26));
    List list = {0, nullptr};
    if ((slot->id & VRegKindMask) == VRegListNibble)
        for (const char c : text)
            List_Append(&list, static_cast<uint32_t>(c) * Bytes_Take(changes));
    const bool isList = (slot->id & VRegKindMask) == VRegListNibble;
    slot->value = Word_Of(isList ? static_cast<void *>(List_CopyNew(&list)) : String_CopyNew(text.c_str()));
    free(list.items);
}

// What a save may change are the bytes of its board.
static void CheckImage(const std::string &before, uint32_t board)
{
    std::string after = MemoryFile(latest->path);
    const size_t start = size_t{board} * latest->stride;
    Check(after.size() == before.size() && start + latest->span <= before.size(), "an image keeps its size");
    Check(after.replace(start, latest->span, before, start, latest->span) == before, "other boards stay");
}

static void ChangeAndSave(const Desk *desk, uint32_t board, Bytes *changes)
{
    const std::string before = MemoryFile(latest->path);
    Check(VelkSaveCurrentConfig(desk->config, board, 0) == 0, "what is loaded can be saved");
    Check(MemoryFile(latest->path) == before, "a save of what is there writes nothing");

    const VRegTable *table = desk->config->table;
    while (changes->used < changes->text.size())
        ChangeRegister(changes, &table->regs[Bytes_Take(changes) % VRegTable_Count(table)]);
    if (VelkSaveCurrentConfig(desk->config, board, 0) < 0) {
        Check(MemoryFile(latest->path) == before, "a save that fails writes nothing");
        return;
    }
    CheckImage(before, board);
    Check(VelkLoadCurrentConfig(desk->other, board, 0) == 0, "what is saved can be loaded");
    Check(Registers_Text(desk->config, 0) == Registers_Text(desk->other, 0), "it is equal when loaded again");
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const Bounds bounds(size);
    const std::vector<std::string> parts = Input_Split(data, size, 3);
    MemoryFiles_Clear();
    MemoryFile("CfgClass.ini") = Defaults + parts[0];
    MemoryFile("image") = parts[1];
    MemoryFile("keys") = MemoryFile("options") = "";
    Bytes changes = {parts[2], 0};

    const Desk desk = Desk_Open();
    Input_Count(desk.config != nullptr);
    const uint32_t board = Bytes_Take(&changes) % 4;
    if (desk.config != nullptr && VelkLoadCurrentConfig(desk.config, board, 0) == 0)
        ChangeAndSave(&desk, board, &changes);
    Desk_Close(&desk);
    ImageMap_Delete(latest);
    latest = nullptr;
    return 0;
}
