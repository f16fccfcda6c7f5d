// What profile files leave behind when memory runs out. The files under them are in the tests of the exports.
#include "tests/support/out_of_memory.h"

#include "tests/inner/profile_handle.h"

namespace
{

struct Bed : Desk {
    Handle file;
    Profile *const profile = file.profile;
    std::string link; // a path to the file

    [[nodiscard]] std::string Observe() const
    {
        return file.Text() + std::to_string(IniFailedLine(profile)) + Names(directory) +
               directory.Read("file");
    }
    [[nodiscard]] int32_t Read(const char *name) const
    {
        return IniReadFromFile(profile, directory.Path(name).c_str());
    }
};

void MakeFile(Bed &bed)
{
    bed.link = bed.directory.Path(Directory_Link(bed.directory.path));
    bed.directory.Write("file", "[s]\n" + Items(50) + "[t]\nx=" + std::string(9000, 'y') + "\n[s]\nz=1");
}

void MakeAndRead(Bed &bed)
{
    MakeFile(bed);
    EXPECT_EQ(bed.Read("file"), 0);
}

// A source that states no size, into a block that grows.
StatusCode ReadPipe(Bed &bed)
{
    const TextPipe pipe("[s]\n" + Items(9) + "[t]\n" + Items(1000));
    const StatusCode status = IniReadFromFile(bed.profile, pipe.path.c_str());
    EXPECT_TRUE(status < 0 || IniNumberOfItems(bed.profile, "t") == 1000);
    return status;
}

StatusCode NewAndDispose(Bed & /*bed*/)
{
    Profile *profile = IniNew(1);
    if (profile == nullptr)
        return -1;
    IniDispose(profile);
    return 0;
}

// Calls whatever needs no memory.
StatusCode CallTheOthers(Bed &bed)
{
    Profile *profile = bed.profile;
    char *text = nullptr, *value = nullptr, buffer[8];
    IniItems items = IniItemsOf(profile, "s");
    IniSetDuplicateChecking(profile, 0);
    IniSortSectionList(profile);
    IniSortSection(profile, "s");
    return IniNthSectionName(profile, 1, &text) + IniNumberOfItems(profile, "s") +
           IniNthItemName(profile, "s", 1, &text) + IniNthItemPointerToString(profile, "s", 1, &text) +
           IniGetPointerToString(profile, "S", "Z", &text) +
           IniGetStringIntoBuffer(profile, "s", "z", buffer, 8) + IniSectionExists(profile, "t") +
           IniItemExists(profile, "t", "x") + IniFailedLine(profile) + IniSectionLine(profile, "t") +
           IniNthItemLine(profile, "t", 1) + IniTakeItem(profile, &items, &text, &value);
}

int putsAhead;

const Operation<Bed> operations[] = {
    {"IniNew IniDispose", "-1", "", NewAndDispose},
    {"IniReadFromFile", "-1", "", ReadPipe, LeaveAsItIs, LeaveAsItIs, true},
    {"IniReadFromFile", "-1!", "", [](Bed &bed) { return IniReadFromFile(bed.profile, bed.link.c_str()); },
     MakeAndRead, [](Bed &bed) { EXPECT_EQ(bed.Read("none"), -1); }, true},
    {"IniWriteToFile", "-1", "", [](Bed &bed) { return IniWriteToFile(bed.profile, bed.link.c_str()); },
     MakeAndRead},
    {"IniSetDuplicateChecking IniSortSectionList IniSortSection IniNthSectionName IniNumberOfItems "
     "IniNthItemName IniNthItemPointerToString IniGetPointerToString IniGetStringIntoBuffer IniSectionExists "
     "IniItemExists IniFailedLine IniSectionLine IniNthItemLine IniItemsOf IniTakeItem",
     "", "", CallTheOthers, MakeAndRead},
    // The value fits no block that is there.
    {"IniPutString", "-1", "",
     [](Bed &bed) { return bed.file.Put(putsAhead % 2 == 0 ? "a" : "c", "1", std::string(20000, 'v')); },
     [](Bed &bed) {
         for (int n = 0; n < putsAhead; ++n)
             bed.file.Put(n % 3 == 0 ? "a" : "b", std::to_string(n), "1");
     },
     LeaveAsItIs, true},
};

} // namespace

TEST(OutOfMemory, LeavesWhatWasInProfilesAndFiles)
{
    Operations_Try(operations, NamesIn("platform/profile.h", "Ini", '('));
    for (putsAhead = 1; putsAhead < 100 && !HasFailure(); ++putsAhead)
        Operation_Try(std::end(operations)[-1]);
    OutOfMemory_Report(505);
}
