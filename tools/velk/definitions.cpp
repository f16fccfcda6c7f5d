#include "tools/velk/definitions.h"

#include "options/option_def.h"
#include "tools/velk/bytes.h"
#include "tools/velk/value.h"
#include "values/limits.h"

#include <fmt/format.h>

#include <set>

namespace
{

// Records are only looked at: what computes a key stays with the engine.
StatusCode ComputeNothing(int32_t /*mode*/, uint32_t /*value*/, uint32_t * /*out*/, Config * /*config*/)
{
    return StatusInternalError;
}

// The engine has taken the word, or has said that it does not.
ComputedKeyFunction FindComputed(const char * /*word*/)
{
    return ComputeNothing;
}

int32_t AddName(const NameNode *node, void *names)
{
    static_cast<std::set<std::string> *>(names)->insert(node->name);
    return 0;
}

// Whether a key file loads; one of options is only tried as text, since it needs its keys.
bool Loads(const std::string &path, bool isKeyFile)
{
    if (!isKeyFile)
        return true;
    NameTable keys;
    if (NameTable_Init(&keys, NameBuckets) < 0)
        throw std::bad_alloc();
    uint32_t numbersLeft = NumberListLimit;
    const StatusCode status = KeyFile_Load(&keys, path.c_str(), FindComputed, &numbersLeft);
    KeyTable_Destroy(&keys);
    return status == 0;
}

} // namespace

void DefinitionsReleaser::operator()(Definitions *definitions) const
{
    Definitions_Release(definitions);
    delete definitions;
}

StatusCode Definitions_Read(const Catalogue &catalogue, const std::string &className, DefinitionsHandle *out)
{
    DefinitionsHandle definitions(new Definitions());
    const DefinitionSource source = {catalogue.file.get(), catalogue.directory.c_str(), className.c_str(),
                                     FindComputed};
    const StatusCode status = Definitions_Load(definitions.get(), &source);
    if (status == 0)
        *out = std::move(definitions);
    return status;
}

std::vector<NamedKey> Definitions_Keys(const Definitions &definitions, const Catalogue &catalogue,
                                       const std::string &className)
{
    std::vector<NamedKey> keys;
    for (const std::string &name : Catalogue_DefinedNames(catalogue, className, "Keys"))
        if (const KeyDef *key = KeyTable_Find(&definitions.keys, name.c_str()); key != nullptr)
            keys.push_back({name, key});
    return keys;
}

size_t Definitions_Count(const NameTable &table)
{
    std::set<std::string> names;
    NameTable_ForEach(&table, AddName, &names);
    return names.size();
}

const char *Key_TypeName(const KeyDef *key)
{
    switch (key->type) {
    case KeyTypeValue:
        return "value";
    case KeyTypeBool:
        return "bool";
    case KeyTypeIndex:
        return "index";
    case KeyTypeComputed:
        return "computed";
    case KeyTypeString:
        return "string";
    default:
        return "list";
    }
}

std::map<uint32_t, std::string> Catalogue_Symbols(const Catalogue &catalogue, const std::string &className)
{
    std::map<uint32_t, std::string> symbols;
    for (const std::string &name : Catalogue_Files(catalogue, className, "Keys")) {
        const ProfileHandle file = Profile_Make();
        if (IniReadFromFile(file.get(), Catalogue_PathOf(catalogue, name).c_str()) < 0)
            continue;
        IniItems items = IniItemsOf(file.get(), "VREGS");
        char *symbol;
        char *id;
        uint32_t number;
        while (IniTakeItem(file.get(), &items, &symbol, &id) == 1)
            if (Number_Read(id, &number))
                symbols.emplace(number, symbol);
    }
    return symbols;
}

std::string Definitions_Explain(const Catalogue &catalogue, const std::string &className, StatusCode status)
{
    if (status == StatusBadClass)
        return "give its section of the catalogue Keys and Options, each of at most 127 characters";
    const bool areKeys = status == StatusKeyLoadFailed;
    std::vector<std::string> paths = Catalogue_Files(catalogue, className, areKeys ? "Keys" : "Options");
    for (std::string &path : paths)
        path = Catalogue_PathOf(catalogue, path);
    // Each file loads; its options do not fit together.
    if (status == StatusUnknownOption)
        return fmt::format("in {} mend an option without keys or rules, one that rules test and nothing "
                           "defines, or rules that test each other in a circle",
                           Names_Join(paths, " or "));
    if (status != StatusKeyLoadFailed && status != StatusOptionLoadFailed)
        return {};
    for (const std::string &path : paths) {
        const ProfileHandle file = Profile_Make();
        if (IniReadFromFile(file.get(), path.c_str()) == 0) {
            if (!Loads(path, areKeys))
                return fmt::format("mend a definition in {}", Bytes_Shown(path));
            continue;
        }
        const int32_t line = IniFailedLine(file.get());
        return line > 0 ? fmt::format("mend line {} of {}", line, Bytes_Shown(path))
                        : fmt::format("look whether {} is there and may be read", Bytes_Shown(path));
    }
    return "mend a definition in " + Names_Join(paths, " or ");
}
