// What the fuzz targets share. The library is linked in, but for two seams that stand here: files lie in
// memory and a module is the target itself, since texts of an input name both, and a run may neither open
// files of the machine nor load code of it.
#ifndef VELK_FUZZ_SUPPORT_H
#define VELK_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "velk32.h"

// Reports a finding unless `holds`.
void Check(bool holds, const char *what);

// While it lives, one input is at work: what is allocated meanwhile, less what is released, and the processor
// time have to stay in proportion to its size.
struct Bounds {
    int64_t size;
    int64_t start;

    explicit Bounds(size_t size);
    ~Bounds();
    Bounds(const Bounds &) = delete;
    Bounds &operator=(const Bounds &) = delete;
};

// Counts an input that is made to be loaded, and whether it was.
void Input_Count(bool isLoaded);

// The parts of an input, which are separated by lines of four equals signs; the missing ones are empty.
std::vector<std::string> Input_Split(const uint8_t *data, size_t size, size_t parts);

// A part that tells what to do, byte by byte; zeros behind its end.
struct Bytes {
    std::string text;
    size_t used;
};
uint32_t Bytes_Take(Bytes *bytes);
uint32_t Bytes_TakeNumber(Bytes *bytes); // of one byte, or of four behind one with its top bit set

// The files that the library knows, by name; directories count for nothing.
std::string &MemoryFile(const std::string &name);
void MemoryFiles_Clear();

// An engine on the memory file "CfgClass.ini", with two configurations of the first class in there.
struct Desk {
    ConfigEngine *engine;
    Config *config; // null: the class cannot be loaded
    Config *other;
};
Desk Desk_Open();
void Desk_Close(const Desk *desk);

// The registers of a configuration, of their flags those asked for; a null payload is as an empty one.
std::string Registers_Text(const Config *config, uint32_t flags);

#endif
