/*
 * A tour of the library, on one device of the sample mainframe.
 *
 *     tour DIRECTORY
 *
 * DIRECTORY is a definition directory such as examples/vxi. The tour writes to the image in it, and puts a
 * save file beside it: give it a copy.
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "velk32.h"

static const char className[] = "VxiDevice";

/* What the accessor wants to know to find the board: its logical address, and the unit of its class. */
enum { LogicalAddress = 8, Unit = 0 };

/* Room for any message of VelkStrError. */
enum { MessageSize = 78 };

/* The columns of a line about an option. */
enum { NameWidth = 14, ValueWidth = 14, WordsWidth = 21 };

static void Fail(const char *what, const char *why)
{
    fprintf(stderr, "tour: %s: %s\n", what, why);
    exit(EXIT_FAILURE);
}

/* Ends the tour if a call failed. A positive status is a warning beside a finished call. */
static void Check(const char *call, StatusCode status)
{
    char message[MessageSize];
    if (status == 0)
        return;
    VelkStrError(status, message);
    fprintf(stderr, "tour: %s: %s (%ld)\n", call, message, (long)status);
    if (status < 0)
        exit(EXIT_FAILURE);
}

static void *Allocate(size_t count, size_t size)
{
    void *block = calloc(count, size);
    if (block == NULL)
        Fail("calloc", "out of memory");
    return block;
}

/* The printing functions give the number of columns that they took. */

static int PrintNumbers(const uint32_t *numbers, int32_t count)
{
    int width = 0;
    int32_t i;
    for (i = 0; i < count; ++i)
        width += printf("%s%lu", i == 0 ? "" : ", ", (unsigned long)numbers[i]);
    return width;
}

static int PrintList(const List *list)
{
    int width = printf("(");
    if (list != NULL)
        width += PrintNumbers(list->items, list->count);
    return width + printf(")");
}

static int PrintText(const char *text)
{
    return printf("\"%s\"", text == NULL ? "" : text);
}

/* A value is a number or a reference, whichever its kind says. */
static int PrintValue(int32_t kind, VelkWord value)
{
    if (kind == ValueKindList)
        return PrintList((const List *)value);
    if (kind == ValueKindString)
        return PrintText((const char *)value);
    return printf("%lu", (unsigned long)value);
}

/* The catalogue has names for numbers, in a section for each option. A number without one goes without. */
static int PrintWords(Config *config, const char *option, VelkWord value)
{
    char section[128];
    char words[WordsWidth];
    snprintf(section, sizeof section, "%s/%s", className, option);
    if (VelkTranslateValue(config, section, (uint32_t)value, words, (int32_t)sizeof words) < 0)
        return 0;
    return printf("%s", words);
}

static void PrintRange(uint32_t low, uint32_t step, uint32_t high)
{
    if (step == 0)
        printf("fixed");
    else if (step == 1)
        printf("%lu to %lu", (unsigned long)low, (unsigned long)high);
    else
        printf("%lu to %lu by %lu", (unsigned long)low, (unsigned long)high, (unsigned long)step);
}

/* A long list is shown by its ends. */
static void PrintChoices(Config *config, const uint32_t *listRef, int32_t count)
{
    uint32_t *choices;
    if (count < 1) {
        printf("fixed");
        return;
    }
    choices = Allocate((size_t)count, sizeof *choices);
    Check("VelkDataFromValueListRef", VelkDataFromValueListRef(config, listRef, choices, count));
    PrintNumbers(choices, count > 4 ? 2 : count);
    if (count > 4)
        printf(" .. %lu", (unsigned long)choices[count - 1]);
    free(choices);
}

static void PrintLists(const List *lists, int32_t count)
{
    if (count < 0)
        printf("any list");
    else if (count == 0)
        printf("fixed");
    else
        PrintList(&lists[0]);
}

/* What the three words of a rule mean depends on the kind of its option. */
static void PrintValidValues(Config *config, uint32_t validKind, VelkValidRef validRef)
{
    VelkWord words[3];
    Check("VelkDataFromValidValueRef", VelkDataFromValidValueRef(config, validRef, words));
    switch (validKind) {
    case ValidKindRange:
        PrintRange((uint32_t)words[0], (uint32_t)words[1], (uint32_t)words[2]);
        break;
    case ValidKindList:
        PrintChoices(config, (const uint32_t *)words[1], (int32_t)words[0]);
        break;
    case ValidKindListSet:
        PrintLists((const List *)words[1], (int32_t)words[0]);
        break;
    case ValidKindString:
        if (words[0] == 0)
            printf("any text");
        else
            PrintText((const char *)words[0]);
        break;
    }
}

static void PrintHeading(void)
{
    printf("  %-*s%-*s%-*s%s\n", NameWidth, "option", ValueWidth, "value", WordsWidth, "in words",
           "valid values");
}

static void PrintValueColumns(Config *config, const char *option, int32_t kind, VelkWord value)
{
    int width = PrintValue(kind, value);
    printf("%*s", width < ValueWidth ? ValueWidth - width : 1, "");
    width = kind == ValueKindNumber ? PrintWords(config, option, value) : 0;
    printf("%*s", WordsWidth - width, "");
}

static void PrintOption(Config *config, const char *option)
{
    VelkWord value;
    int32_t kind;
    uint32_t validKind;
    VelkValidRef validRef;

    Check(option, VelkGetOptionEx(config, option, -1, &value, &kind));
    Check(option, VelkQueryOptionValidValues(config, option, &validKind, &validRef));
    printf("  %-*s", NameWidth, option);
    PrintValueColumns(config, option, kind, value);
    PrintValidValues(config, validKind, validRef);
    printf("\n");
}

/* An entry tells the new value and the new valid values, each only if it moved; the kind it does not tell. */
static void PrintChange(Config *config, const ChangeEntry *entry)
{
    static const char unmoved[] = "as before";
    VelkWord value;
    int32_t kind;

    if (entry->flags == 0)
        return;
    Check(entry->name, VelkGetOptionEx(config, entry->name, -1, &value, &kind));
    printf("  %-*s", NameWidth, entry->name);
    if (entry->flags & ChangeValueChanged)
        PrintValueColumns(config, entry->name, kind, entry->newValue);
    else
        printf("%-*s", ValueWidth + WordsWidth, unmoved);
    if (entry->flags & ChangeValidChanged)
        PrintValidValues(config, entry->newValidKind, entry->newValidRef);
    else
        printf("%s", unmoved);
    printf("\n");
}

static int CompareNames(const void *first, const void *second)
{
    return strcmp(*(const char *const *)first, *(const char *const *)second);
}

/* The names belong to the class; the array is the caller's. */
static const char **GetSortedNames(Config *config, uint32_t *count)
{
    const char **names;
    Check("VelkNumberOfOptions", VelkNumberOfOptions(config, count));
    names = Allocate(*count + 1, sizeof *names);
    Check("VelkGetOptionNames", VelkGetOptionNames(config, names, *count));
    qsort(names, *count, sizeof *names, CompareNames);
    return names;
}

static void ShowOptions(Config *config, const char *const *names, uint32_t count)
{
    uint32_t i;
    printf("\nThe device at logical address %d, as its registers have it:\n\n", LogicalAddress);
    PrintHeading();
    for (i = 0; i < count; ++i)
        PrintOption(config, names[i]);
}

/* Sets one option, and has the library report on all. */
static void ShowMove(Config *config, const char *const *names, uint32_t count, uint32_t addressSpace)
{
    ChangeEntry *entries = Allocate(count + 1, sizeof *entries);
    uint32_t i;

    for (i = 0; i < count; ++i)
        entries[i].name = names[i];
    Check("AddressSpace",
          VelkSetOptionWithChangeList(config, "AddressSpace", addressSpace, entries, (int32_t)count));

    printf("\nAddressSpace is set to %lu. What moved with it:\n\n", (unsigned long)addressSpace);
    PrintHeading();
    for (i = 0; i < count; ++i)
        PrintChange(config, &entries[i]);
    free(entries);
}

static void PrintRefusal(const char *call, StatusCode status)
{
    char message[MessageSize];
    if (status >= 0)
        Fail(call, "was expected to be refused");
    VelkStrError(status, message);
    printf("  %s\n      %s (%ld)\n", call, message, (long)status);
}

/* The registers have room for a label of 16 characters, which shows when the board is to be written. */
static void ShowRefusals(Config *config)
{
    static const char longLabel[] = "DIGITIZER, ON LOAN FROM BAY 4";
    VelkWord stored;
    char *label;

    printf("\nWhat cannot be done is refused, and changes nothing:\n\n");
    PrintRefusal("set the option Colour", VelkSetOption(config, "Colour", 1));

    Check("Label", VelkGetOptionEx(config, "Label", ValueKindString, &stored, NULL));
    label = String_CopyNew((const char *)stored); /* for the set below ends the life of the stored text */
    if (label == NULL)
        Fail("String_CopyNew", "out of memory");
    Check("Label", VelkSetOptionEx(config, "Label", ValueKindString, (VelkWord)longLabel));
    PrintRefusal("write a label of 29 characters to the board",
                 VelkSaveCurrentConfig(config, LogicalAddress, Unit));
    Check("Label", VelkSetOptionEx(config, "Label", ValueKindString, (VelkWord)label));
    String_Delete(label);
}

static void SaveConfig(Config *config, const char *file)
{
    Check(file, VelkSaveToFile(config, file, className));
    printf("\nSaved to %s.\n", file);
    Check("VelkSaveCurrentConfig", VelkSaveCurrentConfig(config, LogicalAddress, Unit));
    printf("Written to the board.\n");
}

static int AreEqual(Config *first, Config *second, const char *name)
{
    VelkWord one, other;
    int32_t kind;
    Check(name, VelkGetOptionEx(first, name, -1, &one, &kind));
    Check(name, VelkGetOptionEx(second, name, kind, &other, NULL));
    if (kind == ValueKindNumber)
        return one == other;
    if (one == 0 || other == 0)
        return one == other;
    if (kind == ValueKindList)
        return List_AreEqual((const List *)one, (const List *)other);
    return String_AreEqual((const char *)one, (const char *)other);
}

static void CompareConfigs(Config *first, Config *second, const char *const *names, uint32_t count)
{
    uint32_t i;
    for (i = 0; i < count; ++i) {
        if (!AreEqual(first, second, names[i]))
            Fail(names[i], "came back as something else");
    }
    printf("Loaded from the file into a second configuration: all %lu options agree.\n",
           (unsigned long)count);
}

static char *ComposePath(const char *directory, const char *file)
{
    const size_t size = strlen(directory) + 1 + strlen(file) + 1;
    char *path = Allocate(size, 1);
    snprintf(path, size, "%s/%s", directory, file);
    return path;
}

static void Tour(ConfigEngine *engine, const char *directory)
{
    Config *config, *second;
    const char **names;
    uint32_t count;
    char *file = ComposePath(directory, "device.cfg");

    Check(className, VelkCreateConfig(engine, className, &config));
    Check("VelkLoadCurrentConfig", VelkLoadCurrentConfig(config, LogicalAddress, Unit));
    names = GetSortedNames(config, &count);

    ShowOptions(config, names, count);
    ShowMove(config, names, count, 1);
    ShowRefusals(config);
    SaveConfig(config, file);

    Check(className, VelkCreateConfig(engine, className, &second));
    Check(file, VelkLoadFromFile(second, file, className));
    CompareConfigs(config, second, names, count);

    free(names);
    free(file);
    Check("VelkDiscardConfig", VelkDiscardConfig(second));
    Check("VelkDiscardConfig", VelkDiscardConfig(config));
}

int main(int argc, char **argv)
{
    ConfigEngine *engine;
    if (argc != 2) {
        fprintf(stderr, "usage: tour DIRECTORY\n");
        return EXIT_FAILURE;
    }
    Check(argv[1], VelkInitializeConfigEngine(argv[1], &engine));
    printf("Definitions from %s\n", argv[1]);
    Tour(engine, argv[1]);
    Check("VelkCloseConfigEngine", VelkCloseConfigEngine(engine));
    return EXIT_SUCCESS;
}
