#include "velk32.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

// The shared vocabulary of the library and its accessors, with the codes of neighbours that only pass
// through.
struct ErrorEntry {
    StatusCode code;
    const char *message;
};

// The room that callers give, in bytes: the longest message and its terminator.
constexpr size_t MessageSize = 78;

constexpr ErrorEntry ErrorTable[] = {
    {-508, "Logical address of this device cannot be changed"},
    {-507, "Device cannot be deleted"},
    {-506, "No device at this logical address"},
    {-505, "Invalid parameter"},
    {-504, "System configuraiton is invalid"}, // misspelt on purpose: programs compare it
    {-503, "Out of memory"},
    {-502, "Invalid format of system configuration file."},
    {-501, "System configuration file not found."},
    {-405, "Unable to access configuration information"},
    {-404, "Incorrect format for configuration definition file"},
    {-403, "Virtual register not found"},
    {-402, "Unable to read configuration definition file"},
    {-401, "Out of memory"},
    {-307, "Possible memory conflict detected"},
    {-306, "User window mapped above 1MB boundary"},
    {-305, "User window not mapped"},
    {-304, "Unable to communicate with kernel drivers"},
    {-303, "Too many boards"},
    {-302, "Board not found, because it is not plugged into or connected to your computer"},
    {-301, "This computer doesn't have PCI bus"},
    {-206, "Unable to load option definitions"},
    {-205, "Unable to load key definitions"},
    {-204, "Unable to load hardware accessor for this configuration class"},
    {-203, "Incorrect configuration class information"},
    {-202, "Unable to read configuration class information"},
    {-201, "Out of memory"},
    {-112, "Accessor already in use"},
    {-111, "Unable to get hardware accessor configuration information"},
    {-110, "User half of the EEPROM corrupted"},
    {-109, "Configuration EEPROM is invalid and cannot be fixed"},
    {-108, "Configuration EEPROM is invalid"},
    {-107, "Configuration EEPROM read failed"},
    {-106, "Configuration EEPROM write failed"},
    {-105, "No access privilege"},
    {-104, "Incorrect hardware configuration"},
    {-103, "Incorrect hardware type"},
    {-102, "Unable to access hardware"},
    {-101, "Unable to initialize hardware"},
    {-99, "Internal error"},
    {-13, "Unknown key"},
    {-12, "Not a valid value for this option"},
    {-11, "Too many option dependencies"},
    {-10, "Invalid format for a number"},
    {-9, "Unknown option"},
    {-8, "Option definition file corrupted"},
    {-7, "Key definition file corrupted"},
    {-6, "Error writing file"},
    {-5, "Save file incompatible with hardware"},
    {-4, "Invalid file format"},
    {-3, "Virtual register not found"},
    {-2, "Configuration not loaded"},
    {-1, "Out of memory"},
    {1, "You must reset the system for changes to take effect"},
    {2, "Load file is in the old format"},
    {3, "User window modified, ensure that OS map matches (see manual)"},
    {100, "CRC missing"},
    {101, "User half of the EEPROM corrupted, but can be corrected"},
    {102, "Factory Override switch set"},
};

static constexpr bool ComesBefore(const ErrorEntry &first, const ErrorEntry &second)
{
    return first.code < second.code;
}

static_assert(std::size(ErrorTable) == 58);
static_assert(std::is_sorted(std::begin(ErrorTable), std::end(ErrorTable), ComesBefore));

void VELK_CALL VelkStrError(StatusCode code, char *buffer)
{
    const ErrorEntry sought = {code, nullptr};
    const ErrorEntry *entry =
        std::lower_bound(std::begin(ErrorTable), std::end(ErrorTable), sought, ComesBefore);
    if (entry != std::end(ErrorTable) && entry->code == code) {
        memcpy(buffer, entry->message, strlen(entry->message) + 1);
        return;
    }
    snprintf(buffer, MessageSize, "Unknown %s: %ld", code > 0 ? "warning" : "error", static_cast<long>(code));
}
