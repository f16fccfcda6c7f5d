#include "tools/velk/failure.h"

#include <fmt/format.h>

#include <iterator>

namespace
{

struct CodeText {
    StatusCode code;
    const char *text;
};

// What the engine calls unknown.
constexpr CodeText Messages[] = {
    {0, "Done"},
    {StatusSeveralLists, "Several lists are valid, and none of them can be chosen"},
    {StatusWrongKind, "Not the kind of value that this option or register holds"},
    {StatusKindMismatch, "A definition puts values of two kinds together"},
    {StatusTooFewPlaces, "More options than there was room for"},
};

constexpr CodeText Advice[] = {
    {StatusOutOfMemory, "free memory, or set less at once"},
    {StatusNotLoaded, "look at its accessor, which gave no registers"},
    {StatusVRegNotFound, "look at `velk list --registers` for the registers that are there"},
    {StatusBadFile, "give it a file that `velk save` has written"},
    {StatusIncompatibleFile, "give it a file that `velk save` has written"},
    {StatusFileWriteFailed, "look whether its directory is there, and at its rights and its room"},
    {StatusUnknownOption, "look at `velk list` for the names"},
    {StatusBadNumber, "mend the list in the file"},
    {StatusUnknownKey, "look at `velk list --keys` for the names"},
    {StatusSeveralLists, "give values under which no rule of an option offers several lists"},
    {StatusWrongKind, "give a value of its kind, as `velk values` shows"},
    {StatusKindMismatch, "mend its definition"},
    {StatusInternalError, "look at `velk list --keys` for keys that cannot be read"},
    {StatusResetNeeded, "reset the system and try once more"},
    {StatusHardwareInitFailed, "look whether the board is there and switched on"},
    {StatusHardwareAccessFailed,
     "look whether there is a board of this number, and at the settings of its accessor in the catalogue"},
    {StatusWrongHardware, "look whether the board is one of this class, and the second word of --board"},
    {StatusBadHardwareConfig, "take a value or a file that fits this board"},
    {StatusNoPrivilege, "look whether the catalogue lets its accessor do that, and ask for the rights to it"},
    {StatusEepromWriteFailed, "read the board to see what it holds now, and try once more"},
    {StatusEepromReadFailed, "look at the board and try once more"},
    {StatusEepromInvalid,
     "look whether there is a board of this number; if so, what it holds has to be mended by other means"},
    {StatusEepromBeyondRepair, "have the board mended"},
    {StatusUserHalfCorrupted, "what it holds has to be mended by other means"},
    {StatusNoAccessorSettings, "mend the settings of the accessor in the catalogue"},
    {StatusAccessorInUse, "wait for the other user of the board, or end it"},
    {StatusEngineOutOfMemory, "free memory"},
    {StatusNoCatalogue, "say where the catalogue CfgClass.ini is, by -d DIR or VELK_DEFINITIONS"},
    {StatusBadClass, "mend the section of the class in the catalogue"},
    {StatusAccessorLoadFailed, "install the module that the catalogue names as its Accessor"},
    {StatusKeyLoadFailed, "mend the key file"},
    {StatusOptionLoadFailed, "mend the option file"},
};

template <size_t count> const char *Find(const CodeText (&texts)[count], StatusCode code)
{
    for (const CodeText &entry : texts)
        if (entry.code == code)
            return entry.text;
    return nullptr;
}

} // namespace

void Fail(const Failure &failure)
{
    throw Failure(failure);
}

std::string Status_Message(StatusCode code)
{
    const char *own = Find(Messages, code);
    if (own != nullptr)
        return own;
    char message[78];
    VelkStrError(code, message);
    std::string text = message;
    if (text.ends_with('.'))
        text.pop_back();
    return text;
}

std::string Status_Text(StatusCode code)
{
    return fmt::format("{} ({})", Status_Message(code), code);
}

bool Status_IsAccessors(StatusCode code)
{
    return code <= -100 && code > -200;
}

Failure Failure_Of(ExitStatus exit, const std::string &doing, StatusCode code)
{
    const char *advice = Find(Advice, code);
    if (advice == nullptr && (code > 0 || Status_IsAccessors(code)))
        advice = "look the code up in the documents of its accessor";
    return {exit, fmt::format("cannot {}: {}", doing, Status_Text(code)), advice == nullptr ? "" : advice,
            code};
}
