// Profile files: the catalogue, the definition files and the save files are texts of sections with
// named items. A handle holds one in memory.
//
// Sections and items are numbered from 1 in file order. Names are found exactly, and only when there
// is no exact match without regard to ASCII case, the first in file order winning. Reading takes time
// in proportion to the text, look-ups by name and by number take constant time on average.
//
// Where duplicates are checked, look-ups change nothing, so that threads may share a handle that is read.
//
// Every text handed out stays at its address, writable and its own, until IniDispose: across puts,
// replacements and further reads, failed ones included. A receiver that changes a name should not rely
// on finding it any more, under either text.
#ifndef VELK_PLATFORM_PROFILE_H
#define VELK_PLATFORM_PROFILE_H

#include <cstdint>

struct Profile;

// `forCatalogue` is 1 for the catalogue, which is only read by name, and 0 otherwise; nothing follows
// from it. Gives the handle, or null when memory runs out.
Profile *IniNew(int32_t forCatalogue);

// Each handle once. Texts that it handed out are gone.
void IniDispose(Profile *profile);

// Reads a file behind what the handle holds. Gives 0, or -1: the file cannot be opened or read, is
// malformed, or memory ran out; the handle is empty then, and IniFailedLine tells the line.
int32_t IniReadFromFile(Profile *profile, const char *path);

// Writes all sections to a file, as File_Replace does. Gives 0, or -1.
int32_t IniWriteToFile(Profile *profile, const char *path);

// With checking on, the default, a further item of one name in a section replaces the value of the
// first one. With checking off (0) every item stands for itself; by name the first one is found.
void IniSetDuplicateChecking(Profile *profile, int32_t on);

// Requests for order by name. No reader depends on that order, so file order is kept: a sort would
// make loads more than linear.
void IniSortSectionList(Profile *profile);
void IniSortSection(Profile *profile, const char *section);

// 1 and the name, or 0: there are fewer.
int32_t IniNthSectionName(Profile *profile, int32_t n, char **name);

// 0 for an absent section.
int32_t IniNumberOfItems(Profile *profile, const char *section);

// 1 and the name, or 0: there are fewer.
int32_t IniNthItemName(Profile *profile, const char *section, int32_t n, char **name);

// 1 and the value, or 0.
int32_t IniNthItemPointerToString(Profile *profile, const char *section, int32_t n, char **value);

// How far the items of a section have been taken.
struct IniItems {
    uint32_t section; // its number
    uint32_t count;
    uint32_t taken;
};

// The items of a section, none taken; of an absent section, no items.
IniItems IniItemsOf(Profile *profile, const char *section);

// 1 and the next item, or 0: all are taken.
int32_t IniTakeItem(Profile *profile, IniItems *items, char **name, char **value);

// 1 and the value, or 0.
int32_t IniGetPointerToString(Profile *profile, const char *section, const char *item, char **value);

// 1 with the value and its terminator in `buffer`; 0 if there is no such item or its value does not
// fit, with `buffer` untouched.
int32_t IniGetStringIntoBuffer(Profile *profile, const char *section, const char *item, char *buffer,
                               int32_t size);

// Makes room for so many more items at once, so that none moves as they are put one by one. Gives 0, or -1
// when memory runs out, with the handle as it was.
int32_t IniReserveItems(Profile *profile, uint32_t count);

// Puts an item at the end of a section, which is made if it is new; with duplicate checking on, an item
// of that name is replaced instead. The texts are copied. Gives 0, or -1 when memory runs out, with the
// handle as it was.
int32_t IniPutString(Profile *profile, const char *section, const char *item, const char *value);

int32_t IniSectionExists(Profile *profile, const char *section);

int32_t IniItemExists(Profile *profile, const char *section, const char *item);

// For diagnostics: the line at which the last read failed, from 1; 0 when it did not fail or failed
// as a whole (no such file, no memory).
int32_t IniFailedLine(const Profile *profile);

// The line that a section or an item came from, from 1; 0 for one that was put, or is not there. An
// item replaced by a later line has that line.
int32_t IniSectionLine(Profile *profile, const char *section);
int32_t IniNthItemLine(Profile *profile, const char *section, int32_t n);

#endif
