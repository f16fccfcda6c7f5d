// Paths and saves on Windows, by the names that programs give there.
#include "platform/file.h"

#include <algorithm>
#include <filesystem>
#include <thread>

#include <windows.h>

#include "tests/support/board.h"

using namespace std::string_literals;

namespace
{

FileStatus Replace(const std::string &path, const std::string &bytes)
{
    return File_Replace(path.c_str(), bytes.data(), bytes.size());
}

// Reads through the seam, which takes longer paths than the C library.
std::string Read(const std::string &path)
{
    File file;
    char bytes[64];
    if (File_OpenToRead(path.c_str(), &file) != FileDone)
        return "(none)";
    const int64_t size = File_ReadAt(file, 0, bytes, sizeof bytes);
    File_Close(file);
    return {bytes, static_cast<size_t>(std::max<int64_t>(size, 0))};
}

std::string With(std::string path, char separator)
{
    std::replace_if(
        path.begin(), path.end(), [](char c) { return c == '/' || c == '\\'; }, separator);
    return path;
}

HANDLE Hold(const std::string &path, DWORD access, DWORD share, DWORD how)
{
    return CreateFileA(path.c_str(), access, share, nullptr, how, FILE_ATTRIBUTE_NORMAL, nullptr);
}

} // namespace

TEST(FileOnWindows, EveryFormOfAPathLeadsToTheFile)
{
    const Directory directory;
    const std::string back = With(directory.path, '\\'), german = "gr\xFC\xDF";
    EXPECT_EQ(back[1], ':');
    EXPECT_TRUE(CreateDirectoryA((back + "\\" + german).c_str(), nullptr));
    const auto working = std::filesystem::current_path();
    std::filesystem::current_path(directory.path);
    for (const std::string &path :
         {With(directory.path, '/') + "/file", back + "\\file", back + "\\.\\" + german + "\\..\\file",
          "file"s, back + "/" + german + "\\f\xFCr", ".\\file"s, back.substr(2) + "\\file",
          back.substr(0, 2) + "file", "\\\\?\\" + back + "\\file"}) {
        SCOPED_TRACE(path);
        EXPECT_EQ(Replace(path, "old and longer"), FileDone);
        EXPECT_EQ(Replace(path, "new"), FileDone);
        EXPECT_EQ(Read(path), "new");
        EXPECT_TRUE(DeleteFileA(path.c_str()));
    }
    EXPECT_EQ(Split(Names(directory), ' ').size(), 1U);

    for (const auto &[in, composed] : {std::pair{"/", "/a"}, {"\\", "\\a"}, {"C:", "C:\\a"}, {"", "\\a"}}) {
        char *path = File_PathIn(in, "a");
        EXPECT_STREQ(path, composed);
        free(path);
    }
    // Settings of accessors name files relative to the definition directory.
    for (const auto &[name, expected] : {std::pair{"a\\b", back + "\\defs\\a\\b"},
                                         {"..\\a/b", back + "\\a\\b"},
                                         {"C:\\x\\y", "C:\\x\\y"s}}) {
        char *path = File_AbsolutePath("defs", name);
        EXPECT_EQ(path, expected);
        free(path);
    }
    std::filesystem::current_path(working);
}

TEST(FileOnWindows, PathsMayBeLongerThan260Characters)
{
    const Directory directory;
    std::wstring wide = L"\\\\?\\" + std::filesystem::path(directory.path).make_preferred().wstring();
    std::string path = directory.path;
    for (int n = 0; n < 3; ++n) {
        wide += L"\\" + std::wstring(100, L'd');
        path += "\\" + std::string(100, 'd');
        EXPECT_TRUE(CreateDirectoryW(wide.c_str(), nullptr));
    }
    // The last one is short itself, but its directory is not.
    for (const std::string &file : {path + "\\file", path + "\\..\\" + std::string(60, 'f')}) {
        EXPECT_EQ(Read(file), "(none)");
        EXPECT_EQ(Replace(file, "old") + Replace(file, "new"), FileDone);
        EXPECT_EQ(Read(file), "new");
    }
    for (const wchar_t *file : {L"\\file", L""})
        DeleteFileW((wide + file).c_str());
}

TEST(FileOnWindows, WhatMayNotBeReplacedStays)
{
    const Directory directory;
    directory.Write("file", "old");
    const std::string path = directory.Path("file");
    EXPECT_TRUE(SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_READONLY));
    // Wine lets root write to such a file, Windows nobody.
    HANDLE writable = Hold(path, GENERIC_WRITE, 0, OPEN_EXISTING);
    CloseHandle(writable);
    EXPECT_TRUE(writable != INVALID_HANDLE_VALUE || Replace(path, "new") == FileDenied);
    EXPECT_TRUE(SetFileAttributesA(path.c_str(), FILE_ATTRIBUTE_HIDDEN));

    // Held by another program, which lets others read; then by one that lets them do all but that.
    for (const DWORD share : {FILE_SHARE_READ, FILE_SHARE_READ | FILE_SHARE_WRITE}) {
        SCOPED_TRACE(share);
        HANDLE held = Hold(path, GENERIC_READ, share, OPEN_EXISTING);
        EXPECT_NE(Replace(path, "new"), FileDone);
        EXPECT_EQ(Read(path), "old");
        EXPECT_EQ(Names(directory), "file ");
        CloseHandle(held);
    }
    EXPECT_EQ(Replace(path, "new"), FileDone);
    EXPECT_EQ(Read(path), "new");
    EXPECT_TRUE((GetFileAttributesA(path.c_str()) & FILE_ATTRIBUTE_HIDDEN) != 0);
    EXPECT_NE(Replace(directory.path, "new"), FileDone);
    EXPECT_EQ(Replace("NUL", "into nothing"), FileDone);
    EXPECT_EQ(Names(directory), "file ");
}

TEST(FileOnWindows, ASaveRemovesWhatADeadOneLeft)
{
    const Directory directory;
    const std::string living = directory.Path(".velk-save-livinglive"), foreign = ".velk-save-Settings01";
    for (const std::string &name : {".velk-save-abcdefghij"s, ".velk-save-012345abcd"s, foreign})
        directory.Write(name, "half a sa");
    HANDLE held = Hold(living, GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, CREATE_NEW);
    EXPECT_EQ(Replace(directory.Path("file"), "new"), FileDone);
    EXPECT_EQ(Names(directory), foreign + " .velk-save-livinglive file ");
    CloseHandle(held);
    EXPECT_EQ(Replace(directory.Path("file"), "newer"), FileDone);
    EXPECT_EQ(Names(directory), foreign + " file ");
}

TEST(FileOnWindows, APipeIsReadToItsEnd)
{
    const std::string path = R"(\\.\pipe\velk-)" + std::to_string(GetCurrentProcessId());
    HANDLE pipe = CreateNamedPipeA(path.c_str(), PIPE_ACCESS_OUTBOUND, PIPE_TYPE_BYTE, 1, 64, 0, 0, nullptr);
    std::jthread writer([pipe] {
        DWORD written;
        ConnectNamedPipe(pipe, nullptr);
        WriteFile(pipe, "text", 4, &written, nullptr);
        CloseHandle(pipe);
    });
    File file;
    char bytes[8];
    EXPECT_EQ(File_OpenToRead(path.c_str(), &file), FileDone);
    EXPECT_EQ(File_ReadNext(file, bytes, sizeof bytes), 4);
    EXPECT_EQ(File_ReadNext(file, bytes, sizeof bytes), 0);
    File_Close(file);
}
