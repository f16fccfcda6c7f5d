// Faults at each file call that the library and the image accessor make, one after the other: what they give,
// and what stands afterwards. The shim file_faults.so is preloaded.
#include "tests/files/file_faults.h"

#include <cerrno>
#include <dlfcn.h>
#include <filesystem>
#include <fnmatch.h>
#include <iostream>
#include <map>
#include <sys/syscall.h>
#include <unistd.h>

#include "tests/support/board.h"

namespace
{

using State = std::map<std::string, std::string>; // of the files by their names, and of the registers

const std::string module = VELK_TEST_MODULE_DIR "/velkimage";
const std::string padding = "\n;" + std::string(3000, '-') + "\n"; // makes half a read less than the file
const char image[] = "board.img", dead[] = ".velk-save-dead000001";

// What looks like the rest of a dead save, as little more than a name or as no file at all.
const char *const others[] = {".velk-save-long0000001", ".velk-save-Settings01", "calibrationofboard123",
                              ".velk-save-linked0001", ".velk-save-folder0001"};

FileFaults *Shim()
{
    return static_cast<FileFaults *>(dlsym(RTLD_DEFAULT, "fileFaults"));
}

// A class over an image in a directory of its own, relative to the working directory. The module is loaded
// ahead of the library, so that the loader's own calls are not among those that are looked at. Its keys are
// set to others than those on the board and in the save file. `settings` are further ones of the accessor.
struct Bench : Desk {
    void *loaded = dlopen((module + ".so").c_str(), RTLD_NOW);
    Desk second;

    explicit Bench(const std::string &settings)
    {
        directory.Write("keys.ini",
                        "[Large]\n0x11 (0xFFFFFFFF)=Value\n[T]\n0xB000001 (0)=String\n" + padding);
        directory.Write("options.ini", padding);
        directory.Write("CfgClass.ini",
                        "[C]\nAccessor=" + module +
                            "\nKeys=keys.ini\nOptions=options.ini\nImage=board.img\nStride=32\n"
                            "Registers=0x11,0xB000001\n0x11=4 u32 big\n0xB000001=16 text 8\n" +
                            settings + padding);
        directory.Write(image, std::string(64, '1'));
        EXPECT_EQ(StartHere(this) + Open("C") + Load(1) + SaveFile() +
                      VelkSetKey(config, "Large", 0xDEADBEEF) + VelkSetKey(config, "T", Word("changed")),
                  0);
        directory.Write("file", directory.Read("file") + padding);
        std::filesystem::create_symlink("file", directory.Path("link"));
        for (const char *debris : {dead, others[0], others[1], others[2]})
            directory.Write(debris, "half a sa");
        std::filesystem::create_symlink("file", directory.Path(others[3]));
        std::filesystem::create_directory(directory.Path(others[4]));
    }
    ~Bench()
    {
        Clear();
        second.Clear();
        dlclose(loaded);
    }
    StatusCode StartHere(Desk *desk) const
    {
        return VelkInitializeConfigEngine(directory.path.substr(5).c_str(), &desk->engine);
    }
    [[nodiscard]] State Now() const
    {
        State state = {{"registers", Run(".")}};
        for (const auto &entry : std::filesystem::directory_iterator(directory.path)) {
            const std::string name = entry.path().filename();
            state[name] = directory.Read(name);
        }
        return state;
    }
};

StatusCode SaveAs(const Bench &bench, const char *name)
{
    return VelkSaveToFile(bench.config, bench.directory.Path(name).c_str(), "k");
}

const struct Operation {
    const char *name;
    StatusCode failure; // what a fault gives if no exception says otherwise
    StatusCode (*run)(Bench &bench);
    const char *settings = "";
} operations[] = {
    {"class", -205,
     [](Bench &bench) {
         const StatusCode status = bench.second.engine == nullptr ? bench.StartHere(&bench.second) : 0;
         return status < 0 ? status : bench.second.Open("C");
     }},
    {"load", -4, [](Bench &bench) { return bench.LoadFile(); }},
    {"save new", -6, [](Bench &bench) { return SaveAs(bench, "new"); }},
    {"save over", -6, [](Bench &bench) { return SaveAs(bench, "link"); }},
    {"save in place", -6, [](Bench &bench) { return SaveAs(bench, "../../dev/null"); }},
    {"board read", -101, [](Bench &bench) { return bench.Load(1); }},
    {"board write", -101, [](Bench &bench) { return bench.Save(1); }, "Write=inplace"},
    {"board replace", -106, [](Bench &bench) { return bench.Save(1); }},
};

const struct Fault {
    const char *name;
    bool isShort;
    int error;
} faults[] = {{"EIO", false, EIO},       {"ENOSPC", false, ENOSPC}, {"EINTR", false, EINTR},
              {"EACCES", false, EACCES}, {"short", true, 0},        {"short, then ENOSPC", true, ENOSPC}};

// Stands for whichever failure: the same call comes from several steps.
constexpr StatusCode AnyFailure = 1;

// Where a fault is not the failure of its operation; the first row that fits counts. Operation, call and
// object are patterns, an error of 0 is any.
const struct {
    const char *operation, *call, *object;
    int error;
    StatusCode status;
    const char *why;
} exceptions[] = {
    {"class", "getcwd", "*", 0, -1, "the path of the image is not to be had"},
    {"*", "*dir*", "*", 0, 0, "what a dead save left may stay"},
    {"*", "*", dead, 0, 0, "what a dead save left may stay"},
    {"*", "openat*", ".", 0, 0, "the directory, to be listed or flushed: see above and below"},
    {"*", "fsync", ".", 0, 0, "the new file is there under its name, and flushed"},
    {"*", "*", "*", EINTR, 0, "the call is made again"},
    {"*", "close", "*", 0, 0, "what counts was flushed before"},
    {"save*", "flock", "*", 0, 0, "a file system without locks"},
    {"save*", "fstat*", ".velk-save-*", 0, 0, "nothing says that the new file has lost its name"},
    {"save*", "fchown", "*", 0, 0, "not every process may give a file away"},
    {"[cl]*", "fstat*", "*", 0, 0, "the size is a hint"},
    {"class", "*", "CfgClass.ini", 0, -202, "by the file"},
    {"class", "*", "options.ini", 0, -206, "by the file"},
    {"board*", "openat*", "*", EACCES, -105, "no right to do so"},
    {"board replace", "openat*", image, 0, AnyFailure, "to read it or to replace it"},
    {"board replace", "openat*", "*", 0, -106, "to replace it"},
    {"board replace", "fstat*", ".velk-save-*", 0, 0, "nothing says that the new file has lost its name"},
    {"board replace", "fstat*", "*", 0, AnyFailure, "to read it or to replace it"},
    {"board replace", "@(flock|fchown)", "*", 0, 0, "not every system and not every process may"},
    {"board replace", "@(fchmod|renameat|readlink|getcwd|write|fsync)", "*", EACCES, -105,
     "no right to do so"},
    {"board*", "pread*", "*", 0, -107, "reading"},
    {"board*", "pwrite*", "*", 0, -106, "writing"},
    {"board*", "fsync", "*", 0, -106, "writing"},
};

bool Fits(const char *pattern, const char *text)
{
    return fnmatch(pattern, text, FNM_EXTMATCH) == 0;
}

StatusCode Expected(const Operation &operation, const FileCall &call, const Fault &fault)
{
    if (fault.isShort && Shim()->failed == 0)
        return 0;
    for (const auto &row : exceptions)
        if (Fits(row.operation, operation.name) && Fits(row.call, call.name) &&
            Fits(row.object, call.object) && (row.error == 0 || row.error == fault.error))
            return row.status;
    return operation.failure;
}

StatusCode RunWithFault(const Operation &operation, Bench &bench, int nth, const Fault &fault)
{
    *Shim() = {true, nth, fault.isShort, fault.error, 0, 0, {}};
    const StatusCode status = operation.run(bench);
    Shim()->isArmed = false;
    return status;
}

// Shows where an operation begins and ends in a trace of the process.
void Mark(const std::string &text)
{
    EXPECT_EQ(syscall(SYS_write, -1, text.data(), text.size()), -1);
}

// Gives the calls of an operation that succeeds, and what stands behind it.
std::vector<FileCall> Calls(const Operation &operation, State *after)
{
    Bench bench(operation.settings);
    Mark(std::string("velk-begin ") + operation.name);
    EXPECT_EQ(RunWithFault(operation, bench, 0, {}), 0) << operation.name;
    Mark("velk-end");
    *after = bench.Now();
    // Of what looks like debris only that goes, and only by a save.
    EXPECT_EQ(after->contains(dead), !Fits("@(save new|save over|board replace)", operation.name));
    for (const char *other : others)
        EXPECT_TRUE(after->contains(other)) << other;
    std::vector<FileCall> calls(Shim()->calls, Shim()->calls + Shim()->count);
    std::cout << "velk-calls " << operation.name << ":";
    for (const FileCall &call : calls)
        std::cout << " " << call.name;
    std::cout << std::endl;
    return calls;
}

// A write of a board that fails may have written a part: its bytes are old or new, once the first is written
// or the image replaced.
void TakeBack(State &now, const State &before, const State &after)
{
    bool hasWritten = false;
    for (int n = 0; n < Shim()->failed; ++n)
        hasWritten = hasWritten || Fits("@(pwrite*|renameat)", Shim()->calls[n].name);
    std::string &bytes = now[image];
    for (size_t n = 0; hasWritten && n < bytes.size(); ++n)
        if (bytes[n] == after.at(image)[n])
            bytes[n] = before.at(image)[n];
}

auto OpenDescriptors()
{
    return std::distance(std::filesystem::directory_iterator("/proc/self/fd"), {});
}

// Runs an operation with a fault at its nth call, and then once more without.
void Expect_OldOrNew(const Operation &operation, int nth, const Fault &fault, const State &after)
{
    Bench bench(operation.settings);
    const State before = bench.Now();
    const auto descriptors = OpenDescriptors();
    const StatusCode status = RunWithFault(operation, bench, nth, fault);
    const StatusCode wanted = Expected(operation, Shim()->calls[nth - 1], fault);
    EXPECT_TRUE(wanted == AnyFailure ? status < 0 : status == wanted) << status << " and not " << wanted;
    EXPECT_EQ(OpenDescriptors(), descriptors);

    const auto withoutDebris = [](State state) {
        state.erase(dead); // goes if it can
        return state;
    };
    State now = bench.Now();
    if (status < 0)
        TakeBack(now, before, after);
    EXPECT_EQ(withoutDebris(now), withoutDebris(status < 0 ? before : after));
    EXPECT_EQ(operation.run(bench), 0);
    EXPECT_EQ(withoutDebris(bench.Now()), withoutDebris(after));
}

} // namespace

TEST(FileFaults, LeaveTheOldOrTheNewBehind)
{
    ASSERT_NE(Shim(), nullptr) << "file_faults.so is to be preloaded";
    std::filesystem::current_path("/tmp");
    int points = 0;
    for (const Operation &operation : operations) {
        State after;
        int nth = 0;
        for (const FileCall &call : Calls(operation, &after)) {
            ++nth;
            for (const Fault &fault : faults) {
                if (HasFailure() || (fault.isShort && !Fits("?(p)@(read|write)?(64)", call.name)) ||
                    getenv("VELK_FILE_FAULTS_NONE") != nullptr)
                    continue;
                SCOPED_TRACE(std::string(operation.name) + ", call " + std::to_string(nth) + ": " +
                             call.name + " " + call.object + ": " + fault.name);
                Expect_OldOrNew(operation, nth, fault, after);
                ++points;
            }
        }
    }
    std::cout << "measured: file faults at " << points << " points" << std::endl;
}
