#include "tools/velk/catalogue.h"

#include "platform/file.h"
#include "tools/velk/bytes.h"
#include "tools/velk/failure.h"
#include "tools/velk/value.h"
#include "values/text.h"

#include <fmt/format.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <unordered_set>

#include <unistd.h>

ProfileHandle Profile_Make()
{
    ProfileHandle file(IniNew(0));
    if (file == nullptr)
        throw std::bad_alloc();
    return file;
}

Catalogue Catalogue_Read(const std::string &directory)
{
    Catalogue catalogue = {directory, Profile_Make()};
    const std::string path = Catalogue_PathOf(catalogue, "CfgClass.ini");
    if (IniReadFromFile(catalogue.file.get(), path.c_str()) == 0)
        return catalogue;
    Failure failure =
        Failure_Of(ExitEngine, fmt::format("read the catalogue {}", Bytes_Shown(path)), StatusNoCatalogue);
    if (access(path.c_str(), R_OK) != 0 && errno == EACCES)
        failure.next = fmt::format("look whether it may be read: {}", strerror(errno));
    const int32_t line = IniFailedLine(catalogue.file.get());
    if (line > 0)
        failure.next = fmt::format("mend its line {}", line);
    Fail(failure);
}

std::vector<std::string> Catalogue_Classes(const Catalogue &catalogue)
{
    std::vector<std::string> classes;
    char *section;
    for (int32_t n = 1; IniNthSectionName(catalogue.file.get(), n, &section) == 1; ++n)
        if (IniItemExists(catalogue.file.get(), section, "Accessor") == 1)
            classes.emplace_back(section);
    return classes;
}

std::optional<std::string> Catalogue_Item(const Catalogue &catalogue, const std::string &section,
                                          const std::string &item)
{
    char *text;
    if (IniGetPointerToString(catalogue.file.get(), section.c_str(), item.c_str(), &text) != 1)
        return std::nullopt;
    return text;
}

std::vector<std::string> Catalogue_Files(const Catalogue &catalogue, const std::string &className,
                                         const std::string &item)
{
    std::string list = Catalogue_Item(catalogue, className, item).value_or("");
    std::vector<std::string> files;
    char *position = nullptr;
    for (const char *name = Text_NextFileName(list.data(), &position); name != nullptr;
         name = Text_NextFileName(nullptr, &position))
        files.emplace_back(name);
    return files;
}

std::string Catalogue_PathOf(const Catalogue &catalogue, const std::string &file)
{
    const std::unique_ptr<char, decltype(&free)> path(File_PathIn(catalogue.directory.c_str(), file.c_str()),
                                                      free);
    if (path == nullptr)
        throw std::bad_alloc();
    return path.get();
}

Words Catalogue_Words(const Catalogue &catalogue, const std::string &className, const std::string &name)
{
    Profile *file = catalogue.file.get();
    std::string section = className + "/" + name;
    if (IniSectionExists(file, section.c_str()) == 0)
        section = name;
    Words words;
    IniItems items = IniItemsOf(file, section.c_str());
    char *item;
    char *text;
    while (IniTakeItem(file, &items, &item, &text) == 1) {
        uint32_t number;
        // As VelkTranslateValue finds it, and as nobody else does.
        if (Number_Read(item, &number) && Bytes_AreAlike(item, fmt::format("0x{:X}", number)))
            words.byNumber.emplace(number, text);
    }
    words.label = Catalogue_Item(catalogue, section, "Label").value_or("");
    words.unit = Catalogue_Item(catalogue, section, "Unit").value_or("");
    words.help = Catalogue_Item(catalogue, section, "Help").value_or("");
    return words;
}

std::vector<std::string> Catalogue_DefinedNames(const Catalogue &catalogue, const std::string &className,
                                                const std::string &item)
{
    std::vector<std::string> names;
    std::unordered_set<std::string> known;
    const char *reserved = item == "Keys" ? "VREGS" : "Information";
    for (const std::string &name : Catalogue_Files(catalogue, className, item)) {
        const ProfileHandle file = Profile_Make();
        if (IniReadFromFile(file.get(), Catalogue_PathOf(catalogue, name).c_str()) < 0)
            continue;
        char *section;
        for (int32_t n = 1; IniNthSectionName(file.get(), n, &section) == 1; ++n)
            if (!Bytes_AreAlike(section, reserved) && known.insert(section).second)
                names.emplace_back(section);
    }
    return names;
}
