#include "keys/key_def.h"
#include "platform/profile.h"
#include "values/memory.h"
#include "values/number_list.h"
#include "values/text.h"
#include "values/vreg_table.h"

#include <cstring>

// The section of a key file that gives symbols for register ids.
constexpr char SymbolSection[] = "VREGS";

// The longest register reference with its mask, and its terminator, in bytes.
constexpr size_t FieldTextSize = 68;

// What a section is read with.
struct KeyReader {
    Profile *file;
    const char *section;
    ComputedKeyFinder findComputed;
    uint32_t *numbersLeft;
};

StatusCode KeyDef_GetKind(const KeyDef *key, int32_t *kind)
{
    switch (key->type) {
    case KeyTypeValue:
    case KeyTypeBool:
    case KeyTypeIndex:
    case KeyTypeComputed:
        *kind = ValueKindNumber;
        return 0;
    case KeyTypeString:
        *kind = ValueKindString;
        return 0;
    case KeyTypeList:
        *kind = ValueKindList;
        return 0;
    default:
        return StatusInternalError;
    }
}

static void KeyDef_Delete(void *record)
{
    auto *key = static_cast<KeyDef *>(record);
    if (key->type == KeyTypeIndex)
        free(key->array);
    free(key);
}

// Reads the id of a register: a number, or a symbol of this file.
static StatusCode ParseVRegId(Profile *file, const char *reference, uint32_t *id)
{
    if (Number_Parse(reference, 0, id) == 0)
        return 0;
    char *value;
    if (IniGetPointerToString(file, SymbolSection, reference, &value) != 1)
        return -1;
    return Number_Parse(value, 0, id);
}

// Reads "register:instance (mask)", where the instance may be absent.
static StatusCode KeyDef_ParseVRegSpec(Profile *file, KeyDef *key, const char *text)
{
    char work[FieldTextSize];
    const size_t size = strlen(text) + 1;
    if (size > sizeof work)
        return -1;
    memcpy(work, text, size);

    char *position = work;
    char *reference = Text_NextPiece(&position, " ()");
    const char *mask = Text_NextPiece(&position, " ()");
    if (reference == nullptr || mask == nullptr)
        return -1;

    key->instance = 1;
    char *colon = strchr(reference, ':');
    if (colon != nullptr) {
        *colon = '\0';
        if (Number_Parse(colon + 1, 10, &key->instance) < 0)
            return -1;
    }
    if (ParseVRegId(file, Text_Trim(reference), &key->vregId) < 0)
        return -1;
    return Number_Parse(mask, 0, &key->mask);
}

static StatusCode ReadNumber(const KeyReader *reader, const char *item, uint32_t *value)
{
    char *text;
    if (IniGetPointerToString(reader->file, reader->section, item, &text) != 1)
        return -1;
    return Number_Parse(text, 0, value);
}

static StatusCode KeyDef_ReadBool(KeyDef *key, const KeyReader *reader)
{
    key->type = KeyTypeBool;
    if (ReadNumber(reader, "FALSE", &key->encodedFalse) < 0)
        return -1;
    return ReadNumber(reader, "TRUE", &key->encodedTrue);
}

static StatusCode KeyDef_AppendNumber(void *target, uint32_t value)
{
    auto *key = static_cast<KeyDef *>(target);
    uint32_t *array = Memory_Resize(key->array, size_t{key->arrayCount} + 1);
    if (array == nullptr)
        return StatusOutOfMemory;
    array[key->arrayCount] = value;
    key->array = array;
    ++key->arrayCount;
    return 0;
}

static StatusCode KeyDef_ReadIndex(KeyDef *key, const KeyReader *reader)
{
    char text[DefinitionTextSize];
    key->type = KeyTypeIndex;
    if (IniGetStringIntoBuffer(reader->file, reader->section, "Array", text, sizeof text) != 1)
        return StatusBadKeyFile;
    return NumberList_Parse(text, key, KeyDef_AppendNumber, reader->numbersLeft);
}

static StatusCode KeyDef_ReadComputed(KeyDef *key, const KeyReader *reader, const char *typeWord)
{
    if (strchr(typeWord, '.') != nullptr)
        return -1; // the dot is kept for words that are more than a name
    key->compute = reader->findComputed(typeWord);
    if (key->compute == nullptr)
        return StatusBadKeyFile;
    key->type = KeyTypeComputed;
    return 0;
}

// The key stands for the whole register.
static StatusCode KeyDef_SetPayload(KeyDef *key, KeyType type)
{
    key->type = type;
    key->mask = UINT32_MAX;
    return 0;
}

static StatusCode KeyDef_ReadType(KeyDef *key, const KeyReader *reader, const char *typeWord)
{
    if (Text_EqualsIgnoringCase(typeWord, "Value")) {
        key->type = KeyTypeValue;
        return 0;
    }
    if (Text_EqualsIgnoringCase(typeWord, "Bool"))
        return KeyDef_ReadBool(key, reader);
    if (Text_EqualsIgnoringCase(typeWord, "Index"))
        return KeyDef_ReadIndex(key, reader);
    if (Text_EqualsIgnoringCase(typeWord, "List"))
        return KeyDef_SetPayload(key, KeyTypeList);
    if (Text_EqualsIgnoringCase(typeWord, "String"))
        return KeyDef_SetPayload(key, KeyTypeString);
    return KeyDef_ReadComputed(key, reader, typeWord);
}

// The key and its register have to be of one kind, and a field has to have a bit.
static bool KeyDef_FitsRegister(const KeyDef *key)
{
    int32_t keyKind;
    int32_t registerKind;
    return KeyDef_GetKind(key, &keyKind) == 0 && VReg_GetKind(key->vregId, &registerKind) == 0 &&
           keyKind == registerKind && key->mask != 0;
}

// The first item says which bits of which register, and of what type.
static StatusCode KeyDef_Fill(KeyDef *key, const KeyReader *reader)
{
    char *field;
    char *typeWord;
    if (IniNthItemName(reader->file, reader->section, 1, &field) == 0)
        return StatusBadKeyFile;
    if (KeyDef_ParseVRegSpec(reader->file, key, field) < 0)
        return StatusBadKeyFile;
    if (IniGetPointerToString(reader->file, reader->section, field, &typeWord) != 1)
        return StatusBadKeyFile;
    if (KeyDef_ReadType(key, reader, typeWord) < 0)
        return StatusBadKeyFile;
    return KeyDef_FitsRegister(key) ? 0 : StatusBadKeyFile;
}

// Null for any failure.
static KeyDef *KeyDef_ReadSection(const KeyReader *reader)
{
    auto *key = Memory_New<KeyDef>();
    if (key == nullptr)
        return nullptr;
    if (KeyDef_Fill(key, reader) < 0) {
        KeyDef_Delete(key);
        return nullptr;
    }
    return key;
}

static StatusCode LoadSections(NameTable *keys, KeyReader *reader)
{
    char *section;
    for (int32_t n = 1; IniNthSectionName(reader->file, n, &section) != 0; ++n) {
        if (Text_EqualsIgnoringCase(section, SymbolSection))
            continue;
        reader->section = section;
        KeyDef *key = KeyDef_ReadSection(reader);
        if (key == nullptr)
            return StatusBadKeyFile;
        if (NameTable_Insert(keys, section, key) == nullptr) {
            KeyDef_Delete(key);
            return StatusBadKeyFile;
        }
    }
    return 0;
}

StatusCode KeyFile_Load(NameTable *keys, const char *path, ComputedKeyFinder findComputed,
                        uint32_t *numbersLeft)
{
    Profile *file = IniNew(0);
    if (file == nullptr)
        return StatusOutOfMemory;
    if (IniReadFromFile(file, path) < 0) {
        IniDispose(file);
        return StatusBadKeyFile;
    }
    IniSortSectionList(file);
    IniSortSection(file, SymbolSection);
    KeyReader reader = {file, nullptr, findComputed, numbersLeft};
    const StatusCode status = LoadSections(keys, &reader);
    IniDispose(file);
    return status;
}

const KeyDef *KeyTable_Find(const NameTable *keys, const char *name)
{
    return static_cast<const KeyDef *>(NameTable_GetValue(keys, name));
}

void KeyTable_Destroy(NameTable *keys)
{
    if (keys != nullptr)
        NameTable_Destroy(keys, KeyDef_Delete);
}
