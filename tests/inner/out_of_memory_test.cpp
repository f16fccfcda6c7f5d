// What the profile files and the files under them leave behind when memory runs out.
#include "tests/support/out_of_memory.h"

#include "platform/file.h"
#include "tests/inner/profile_handle.h"

extern "C" void __wrap_free(void *block);

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
    return IniReadFromFile(bed.profile, pipe.path.c_str());
}

StatusCode NewAndDispose(Bed & /*bed*/)
{
    Profile *profile = IniNew(1);
    if (profile == nullptr)
        return -1;
    IniDispose(profile);
    return 0;
}

StatusCode FreePath(char *path)
{
    __wrap_free(path);
    return path == nullptr ? -1 : 0;
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

// Beyond the path, a file needs no memory.
StatusCode UseFile(Bed &bed)
{
    File file = {};
    char byte = 0;
    StatusCode status = File_OpenToRead(bed.directory.Path("file").c_str(), &file);
    if (status < 0)
        return status;
    EXPECT_EQ(File_ReadNext(file, &byte, 1), 1);
    File_Close(file);
    status = File_OpenToChange(bed.directory.Path("file").c_str(), &file);
    if (status < 0)
        return status;
    EXPECT_EQ(File_WriteAt(file, 0, "[", 1) + File_Flush(file), 0);
    EXPECT_GE(File_Size(file) + File_ReadAt(file, 0, &byte, 1), 2);
    File_Close(file);
    return 0;
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
    {"File_OpenToRead File_OpenToChange File_Close File_Size File_ReadNext File_ReadAt File_WriteAt "
     "File_Flush",
     openWithoutMemory, "", UseFile, MakeFile},
    {"File_Replace", "-4", "",
     [](Bed &bed) -> StatusCode { return File_Replace(bed.link.c_str(), "new", 3); }, MakeFile},
    {"File_PathIn", "-1", "", [](Bed & /*bed*/) { return FreePath(File_PathIn("some", "other")); }},
    {"File_AbsolutePath", "-1", "",
     [](Bed & /*bed*/) { return FreePath(File_AbsolutePath("some", "other")); }},
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
    std::set<std::string> declared = NamesIn("platform/profile.h", "Ini", '(');
    declared.merge(NamesIn("platform/file.h", "File_", '('));
    Operations_Try(operations, declared);
    for (putsAhead = 1; putsAhead < 100 && !HasFailure(); ++putsAhead)
        Operation_Try(std::end(operations)[-1]);
    OutOfMemory_Report(519);
}
