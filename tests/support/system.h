// What the tests ask of the platform.
#ifndef VELK_TESTS_SUPPORT_SYSTEM_H
#define VELK_TESTS_SUPPORT_SYSTEM_H

#include <cstdint>
#include <memory>
#include <string>

// What is written to it is gone.
extern const char nullDevice[];

// What a module's file has behind the name that a catalogue gives.
extern const char moduleSuffix[];

std::string System_MakeDirectory();

// Memory of this process that is in use.
int64_t System_ResidentBytes();

// Whether the program runs with a sanitizer: "asan" or "tsan".
bool System_HasSanitizer(const std::string &name);

bool Module_IsLoaded(const std::string &module);

// The file of the module that something lies in.
std::string Module_FileOf(const void *address);

// A reference to a module that is held while this stands.
struct HeldModule {
    void *const handle;

    explicit HeldModule(const std::string &module);
    ~HeldModule();
    HeldModule(const HeldModule &) = delete;
    HeldModule &operator=(const HeldModule &) = delete;

    [[nodiscard]] void *Find(const char *entry) const;
};

// A pipe with a text in it and nothing behind that: as a path, which tells no size.
struct TextPipe {
    explicit TextPipe(const std::string &text);
    ~TextPipe();
    TextPipe(const TextPipe &) = delete;
    TextPipe &operator=(const TextPipe &) = delete;

    std::string path;

  private:
    struct Ends;
    std::unique_ptr<Ends> ends;
};

// Makes a file larger, by zeros that take no room.
void File_Extend(const std::string &path, int64_t size);

// Makes "link" in a directory lead to its "file", and gives the name; where there are no links, "file".
std::string Directory_Link(const std::string &directory);

#endif
