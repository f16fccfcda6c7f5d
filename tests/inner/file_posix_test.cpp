// What saving to a file leaves in its directory.
#include "platform/file.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <sys/file.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

#include "tests/inner/profile_handle.h"

namespace
{

FileStatus Replace(const std::string &path, const std::string &bytes)
{
    return File_Replace(path.c_str(), bytes.data(), bytes.size());
}

struct stat Look(const std::string &path)
{
    struct stat found = {};
    EXPECT_EQ(lstat(path.c_str(), &found), 0);
    return found;
}

mode_t Mode(const std::string &path)
{
    return Look(path).st_mode;
}

} // namespace

TEST(File, ReplaceKeepsOwnerAndPermissionBitsAndLeavesNothingElse)
{
    for (const mode_t mode : {0600U, 0640U, 0666U, 0755U, 07755U}) {
        SCOPED_TRACE(mode);
        const Directory directory;
        directory.Write("file", "old and longer");
        const std::string path = directory.Path("file");
        // Another user's, where this process may give it away.
        EXPECT_TRUE(chown(path.c_str(), 1, 1) == 0 || errno == EPERM || errno == EINVAL);
        ASSERT_EQ(chmod(path.c_str(), mode), 0);
        const auto old = Look(path);
        EXPECT_EQ(Replace(path, "new"), FileDone);
        EXPECT_EQ(directory.Read("file"), "new");
        EXPECT_EQ(Mode(path), S_IFREG | (mode & 0777U));
        EXPECT_EQ(std::pair(Look(path).st_uid, Look(path).st_gid), std::pair(old.st_uid, old.st_gid));
        EXPECT_EQ(Names(directory), "file ");
    }

    const Directory directory;
    const mode_t mask = umask(027);
    EXPECT_EQ(Replace(directory.Path("made"), ""), FileDone);
    umask(mask);
    EXPECT_EQ(Mode(directory.Path("made")), S_IFREG | mode_t{0640});
    for (const char *name : {"none/file", "made/file"})
        EXPECT_EQ(Replace(directory.Path(name), "x"), FileMissing);
    for (const char *name : {"", "."})
        EXPECT_EQ(Replace(directory.Path(name), "x"), FileFailed);
    EXPECT_EQ(Names(directory), "made ");
}

TEST(File, ReplaceGivesAnotherGroupNoMoreThanOthers)
{
    if (geteuid() != 0 && getenv("VELK_CI") == nullptr)
        GTEST_SKIP() << "needs root, to own a file by a group that the process is not in";
    const Directory directory;
    directory.Write("file", "old");
    const std::string path = directory.Path("file");
    ASSERT_EQ(chmod(directory.path.c_str(), 0777) + chown(path.c_str(), 0, 12345), 0);
    ASSERT_EQ(chmod(path.c_str(), 0662) + seteuid(12345), 0);
    EXPECT_EQ(Replace(path, "new"), FileDone);
    ASSERT_EQ(seteuid(0), 0);
    EXPECT_EQ(Mode(path), S_IFREG | mode_t{0622});
}

TEST(File, ReplaceFollowsLinks)
{
    const Directory directory;
    std::filesystem::create_directory(directory.Path("sub"));
    std::filesystem::create_symlink("../file", directory.Path("sub/other"));
    std::string around;
    for (int i = 0; i < 300; ++i)
        around += "./";
    const std::pair<std::string, std::vector<std::string>> rows[] = {
        {"sub/beside", {"beside"}},
        {"file", {"../file", directory.Path("file"), "other"}},
        {"long", {around + "../long"}}};
    for (const auto &[target, texts] : rows)
        for (const auto &text : texts) {
            SCOPED_TRACE(text);
            const std::string link = directory.Path("sub/link");
            std::filesystem::create_symlink(text, link);
            for (const char *bytes : {"made by a dangling link", "replaced"}) {
                EXPECT_EQ(Replace(link, bytes), FileDone);
                EXPECT_TRUE(S_ISLNK(Mode(link)));
                EXPECT_EQ(directory.Read(target), bytes);
            }
            bool isRefused = true;
            for (int nth = 1; isRefused; ++nth) {
                const FailAllocations fail(nth);
                const FileStatus status = Replace(link, "without memory");
                isRefused = fail.Fired();
                EXPECT_EQ(status, isRefused ? FileNoMemory : FileDone);
            }
            std::filesystem::remove(link);
            std::filesystem::remove(directory.Path(target));
        }
    std::filesystem::create_symlink("round", directory.Path("round"));
    EXPECT_EQ(Replace(directory.Path("round"), "x"), FileFailed);
    EXPECT_EQ(Names(directory), "round sub ");
}

TEST(File, ReplaceWritesAPipeInPlace)
{
    const Directory directory;
    const std::string path = directory.Path("pipe");
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string bytes(300000, 'p'); // more than a pipe holds
    std::string got;
    std::thread reader([&] { got = directory.Read("pipe"); });
    EXPECT_EQ(Replace(path, bytes), FileDone);
    reader.join();
    EXPECT_EQ(got, bytes);
    EXPECT_TRUE(S_ISFIFO(Mode(path)));
    EXPECT_EQ(Names(directory), "pipe ");
}

// Nothing tells how long what comes through it is, so it is read into a block that grows.
TEST(File, APipeIsReadToItsEndOrNotAtAll)
{
    const std::string text = "[s]\n" + Items(3000);
    bool isRefused = true;
    for (int nth = 1; isRefused; ++nth) {
        int ends[2];
        ASSERT_EQ(pipe(ends), 0);
        EXPECT_EQ(write(ends[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(ends[1]);
        const Handle file;
        const FailAllocations fail(nth);
        const std::string path = "/dev/fd/" + std::to_string(ends[0]);
        const int32_t status = IniReadFromFile(file.profile, path.c_str());
        close(ends[0]);
        isRefused = fail.Fired();
        EXPECT_EQ(status, isRefused ? -1 : 0);
        EXPECT_EQ(IniNumberOfItems(file.profile, "s"), isRefused ? 0 : 3000);
    }
}

TEST(File, AbsolutePathsAreAsLongAsTheyHaveToBe)
{
    for (const auto &[in, composed] : {std::pair{"/", "/a"}, {"b", "b/a"}, {"/b", "/b/a"}, {"", "/a"}}) {
        const std::unique_ptr<char, decltype(&free)> path{File_PathIn(in, "a"), free};
        EXPECT_STREQ(path.get(), composed);
    }
    const Directory directory;
    const auto start = std::filesystem::current_path();
    const std::filesystem::path deep =
        directory.Path(std::string(200, 'a') + "/" + std::string(200, 'b') + "/" + std::string(200, 'c'));
    std::filesystem::create_directories(deep);
    std::filesystem::current_path(deep);
    bool isRefused = true;
    for (int nth = 1; isRefused && nth < 20; ++nth) {
        const FailAllocations fail(nth);
        const std::unique_ptr<char, decltype(&free)> path{File_AbsolutePath("d", "e"), free};
        isRefused = fail.Fired();
        EXPECT_EQ(path == nullptr, isRefused);
        EXPECT_TRUE(isRefused || path.get() == std::filesystem::canonical(deep) / "d/e");
    }
    EXPECT_FALSE(isRefused);
    remove(deep);
    EXPECT_EQ(File_AbsolutePath("d", "e"), nullptr) << "a working directory that is gone";
    std::filesystem::current_path(start);
}
