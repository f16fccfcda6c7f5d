// The catalogue and the definition files as texts: what the engine's exports do not tell of them.
#ifndef VELK_TOOLS_CATALOGUE_H
#define VELK_TOOLS_CATALOGUE_H

#include "platform/profile.h"
#include "tools/velk/words.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

struct ProfileDisposer {
    void operator()(Profile *profile) const
    {
        IniDispose(profile);
    }
};
using ProfileHandle = std::unique_ptr<Profile, ProfileDisposer>;

struct Catalogue {
    std::string directory;
    ProfileHandle file;
};

// An empty handle for a text of sections and items.
ProfileHandle Profile_Make();

// The catalogue of a definition directory. Throws a Failure of the engine.
Catalogue Catalogue_Read(const std::string &directory);

// The classes, in file order: the sections that name an accessor.
std::vector<std::string> Catalogue_Classes(const Catalogue &catalogue);

std::optional<std::string> Catalogue_Item(const Catalogue &catalogue, const std::string &section,
                                          const std::string &item);

// The definition files that an item ("Keys" or "Options") of a class lists.
std::vector<std::string> Catalogue_Files(const Catalogue &catalogue, const std::string &className,
                                         const std::string &item);

// The path of a file of the definition directory.
std::string Catalogue_PathOf(const Catalogue &catalogue, const std::string &file);

// The section CLASS/NAME or, without one, NAME.
Words Catalogue_Words(const Catalogue &catalogue, const std::string &className, const std::string &name);

// What the definition files of a class define, under "Keys" or "Options", in their order, each name once.
// Files that cannot be read are left out.
std::vector<std::string> Catalogue_DefinedNames(const Catalogue &catalogue, const std::string &className,
                                                const std::string &item);

#endif
