// What the profile files and the files under them leave behind when memory runs out.
#include "tests/support/out_of_memory.h"

#include <filesystem>
#include <unistd.h>

#include "platform/file.h"
#include "tests/inner/profile_handle.h"

extern "C" void __wrap_free(void *block);

namespace
{

struct Bed : Desk {
    Handle file;
    Profile *const profile = file.profile;

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
    std::filesystem::create_symlink("file", bed.directory.Path("link"));
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
    const std::string text = "[s]\n" + Items(9) + "[t]\n" + Items(1000);
    int ends[2];
    EXPECT_EQ(pipe(ends), 0);
    EXPECT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    close(ends[1]);
    const StatusCode status = IniReadFromFile(bed.profile, ("/dev/fd/" + std::to_string(ends[0])).c_str());
    close(ends[0]);
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

// Likewise.
StatusCode UseFile(Bed &bed)
{
    File file = {}, again = {};
    char byte = 0;
    const StatusCode status = File_OpenToChange(bed.directory.Path("file").c_str(), &file) +
                              File_OpenToRead(bed.directory.Path("file").c_str(), &again) +
                              File_WriteAt(file, 0, "[", 1) + File_Flush(file);
    EXPECT_GE(File_Size(file) + File_ReadNext(again, &byte, 1) + File_ReadAt(file, 0, &byte, 1), 3);
    File_Close(file);
    File_Close(again);
    return status;
}

int putsAhead;

const Operation<Bed> operations[] = {
    {"IniNew IniDispose", "-1", "", NewAndDispose},
    {"IniReadFromFile", "-1", "", ReadPipe, LeaveAsItIs, LeaveAsItIs, true},
    {"IniReadFromFile", "-1!", "", [](Bed &bed) { return bed.Read("link"); }, MakeAndRead,
     [](Bed &bed) { EXPECT_EQ(bed.Read("none"), -1); }, true},
    {"IniWriteToFile", "-1", "",
     [](Bed &bed) { return IniWriteToFile(bed.profile, bed.directory.Path("link").c_str()); }, MakeAndRead},
    {"IniSetDuplicateChecking IniSortSectionList IniSortSection IniNthSectionName IniNumberOfItems "
     "IniNthItemName IniNthItemPointerToString IniGetPointerToString IniGetStringIntoBuffer IniSectionExists "
     "IniItemExists IniFailedLine IniSectionLine IniNthItemLine IniItemsOf IniTakeItem",
     "", "", CallTheOthers, MakeAndRead},
    {"File_OpenToRead File_OpenToChange File_Close File_Size File_ReadNext File_ReadAt File_WriteAt "
     "File_Flush",
     "", "", UseFile, MakeFile},
    {"File_Replace", "-3", "",
     [](Bed &bed) -> StatusCode { return File_Replace(bed.directory.Path("link").c_str(), "new", 3); },
     MakeFile},
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
