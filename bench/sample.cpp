#include "bench/sample.h"

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>

#include <unistd.h>

// In base 16, as files have it.
static std::string Hex(uint32_t number)
{
    char text[sizeof "0xFFFFFFFF"];
    snprintf(text, sizeof text, "0x%08X", number);
    return text;
}

static size_t ItemsOfSection(Shape shape, uint32_t section)
{
    switch (shape) {
    case Shape::OneSection:
        return SIZE_MAX;
    case Shape::OneItemASection:
        return 1;
    default:
        return 4 + section % 5;
    }
}

// Every section is that of a key, with items behind it that a key does without.
ProfileText::ProfileText(Shape shape, size_t bytes)
{
    uint32_t number = 0;
    for (uint32_t section = 0; text.size() < bytes; ++section) {
        const std::string name = KeyName(section);
        text += "[" + name + "]\n";
        const size_t items = ItemsOfSection(shape, section);
        for (size_t n = 0; n < items && (n == 0 || items != SIZE_MAX || text.size() < bytes); ++n) {
            const std::string item =
                n == 0 ? Hex(RegisterId(section)) + " (0xFF)" : "Note" + std::to_string(number);
            text += item + (n == 0 ? " = Value\n" : " = the " + std::to_string(number) + ". of them\n");
            places.push_back({name, item});
            ++number;
        }
    }
}

Folder::Folder()
{
    std::string name = std::filesystem::temp_directory_path() / "velk-bench-XXXXXX";
    Require(mkdtemp(name.data()) != nullptr, "make a directory");
    path = name;
}

Folder::~Folder()
{
    std::filesystem::remove_all(path);
}

std::string Folder::Write(const std::string &name, const std::string &bytes) const
{
    std::string file = path + "/" + name;
    std::ofstream stream(file, std::ios::binary);
    Require(stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size())).flush().good(),
            "write a file");
    return file;
}

DefinitionFiles::DefinitionFiles(const std::string &keys, const std::string &options)
    : bytes(keys.size() + options.size())
{
    (void)folder.Write("CfgClass.ini", "[C]\nAccessor = velkimage\nImage = none\nStride = 4\n"
                                       "Registers = 0x10\n0x10 = 0 u32 big\n"
                                       "Keys = keys.ini\nOptions = options.ini\n");
    (void)folder.Write("keys.ini", keys);
    (void)folder.Write("options.ini", options);
}

Config *DefinitionFiles::Open(ConfigEngine **engine) const
{
    Config *config = nullptr;
    Require(VelkInitializeConfigEngine(folder.path.c_str(), engine) == 0, "open an engine");
    Require(VelkCreateConfig(*engine, "C", &config) == 0, "load the class");
    return config;
}

Sample::Sample(const std::string &keys, const std::string &options, const std::string &registers)
    : definitions(keys, options), config(definitions.Open(&engine))
{
    const std::string file =
        definitions.folder.Write("save.ini", "[Information]\nKey = k\n[Data]\n" + registers);
    Require(VelkLoadFromFile(config, file.c_str(), "k") == 0, "load the registers");
}

Sample::~Sample()
{
    VelkDiscardConfig(config);
    VelkCloseConfigEngine(engine);
}

VRegTable *Sample::Table() const
{
    return *reinterpret_cast<VRegTable **>(config);
}

uint32_t RegisterId(uint32_t n, bool isText)
{
    return (isText ? 0x0B000000 : 0x00100000) + 4 * n;
}

std::string Registers(uint32_t count, uint32_t textEvery)
{
    std::string lines;
    for (uint32_t n = 0; n < count; ++n) {
        const bool isText = textEvery != 0 && n % textEvery == 0;
        lines += Hex(RegisterId(n, isText)) + " = " + (isText ? "sixteen letters." : Hex(n)) + "\n";
    }
    return lines;
}

static std::string Lettered(std::string name, uint32_t n)
{
    for (int place = 0; place < 5; ++place, n /= 26)
        name += static_cast<char>('a' + n % 26);
    return name;
}

std::string KeyName(uint32_t n)
{
    return Lettered("Key", n);
}

std::string OptionName(uint32_t n)
{
    return Lettered("Option", n);
}

std::string KeySection(uint32_t n)
{
    return "[" + KeyName(n) + "]\n" + Hex(RegisterId(n)) + " (0xFF) = Value\n";
}

std::string OptionSection(uint32_t n, const std::string &rules)
{
    return "[" + OptionName(n) + "]\nKeys = " + KeyName(n) + "\nValidValuesType = " + rules;
}

void Require(bool holds, const char *step)
{
    if (holds)
        return;
    fprintf(stderr, "velk_bench: cannot %s\n", step);
    exit(1);
}
