// The names of files that a save is still writing: what a process that died left behind is known by them.
#ifndef VELK_PLATFORM_NEW_FILE_H
#define VELK_PLATFORM_NEW_FILE_H

#include <cstddef>
#include <cstdint>
#include <cstring>

// A new file bears this and ten characters of that as its name until it is complete. The process that
// writes it holds it locked; one that nobody holds locked was left by a process that died.
constexpr char NewFilePrefix[] = ".velk-save-";
constexpr char NewFileAlphabet[] = "abcdefghijklmnopqrstuvwxyz012345";
constexpr size_t NewFilePrefixLength = sizeof NewFilePrefix - 1;
constexpr size_t NewFileLength = NewFilePrefixLength + 10;
constexpr int NewFileAttempts = 100;

inline bool Name_IsOfNewFile(const char *name)
{
    return strlen(name) == NewFileLength && memcmp(name, NewFilePrefix, NewFilePrefixLength) == 0 &&
           strspn(name + NewFilePrefixLength, NewFileAlphabet) == NewFileLength - NewFilePrefixLength;
}

// The name for a process, a time and an attempt. It need not be hard to guess, for the file is made
// exclusively: only rarely taken.
inline void NewFile_ComposeName(char (&name)[NewFileLength + 1], uint64_t process, uint64_t time, int attempt)
{
    uint64_t number = (time + static_cast<uint64_t>(attempt)) * 0x9E3779B97F4A7C15 ^ process << 40;
    memcpy(name, NewFilePrefix, NewFilePrefixLength);
    for (size_t at = NewFilePrefixLength; at < NewFileLength; ++at) {
        name[at] = NewFileAlphabet[number >> 59];
        number <<= 5;
    }
    name[NewFileLength] = 0;
}

#endif
