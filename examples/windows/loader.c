/*
 * Does what client.c does without an import library: it loads Velk32.dll while it runs, and looks each
 * function up by its name. A program that may run where the library is not installed is written like this.
 *
 *     loader DIRECTORY
 */
#include "velk32.h"

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include <windows.h>

/* The functions that are used, under the names and with the types of velk32.h. */
static struct {
    StatusCode(VELK_CALL *VelkInitializeConfigEngine)(const char *directory, ConfigEngine **engine);
    StatusCode(VELK_CALL *VelkCloseConfigEngine)(ConfigEngine *engine);
    StatusCode(VELK_CALL *VelkCreateConfig)(ConfigEngine *engine, const char *className, Config **config);
    StatusCode(VELK_CALL *VelkDiscardConfig)(Config *config);
    StatusCode(VELK_CALL *VelkLoadCurrentConfig)(Config *config, uint32_t first, uint32_t second);
    StatusCode(VELK_CALL *VelkGetOption)(Config *config, const char *name, uint32_t *value);
} velk;

static HMODULE library;

/* Stores the address of a function. All of them are of one size, whatever they take. */
static void Find(const char *name, void *function)
{
    FARPROC found = GetProcAddress(library, name);
    if (found == NULL) {
        fprintf(stderr, "loader: Velk32.dll has no %s\n", name);
        exit(1);
    }
    memcpy(function, &found, sizeof found);
}

static void FindFunctions(void)
{
    Find("VelkInitializeConfigEngine", &velk.VelkInitializeConfigEngine);
    Find("VelkCloseConfigEngine", &velk.VelkCloseConfigEngine);
    Find("VelkCreateConfig", &velk.VelkCreateConfig);
    Find("VelkDiscardConfig", &velk.VelkDiscardConfig);
    Find("VelkLoadCurrentConfig", &velk.VelkLoadCurrentConfig);
    Find("VelkGetOption", &velk.VelkGetOption);
}

int main(int argc, char **argv)
{
    ConfigEngine *engine;
    Config *config;
    uint32_t value = 0;
    StatusCode status;
    if (argc != 2) {
        fprintf(stderr, "usage: loader DIRECTORY\n");
        return 2;
    }
    library = LoadLibraryA("Velk32.dll");
    if (library == NULL) {
        fprintf(stderr, "loader: there is no Velk32.dll beside this program or on the path\n");
        return 1;
    }
    FindFunctions();
    status = velk.VelkInitializeConfigEngine(argv[1], &engine);
    if (status < 0) {
        fprintf(stderr, "loader: the definitions cannot be opened (%d)\n", (int)status);
        return 1;
    }
    status = velk.VelkCreateConfig(engine, "VxiDevice", &config);
    if (status >= 0) {
        status = velk.VelkLoadCurrentConfig(config, 8, 0);
        if (status >= 0)
            status = velk.VelkGetOption(config, "Manufacturer", &value);
        velk.VelkDiscardConfig(config);
    }
    velk.VelkCloseConfigEngine(engine);
    FreeLibrary(library);
    if (status < 0) {
        fprintf(stderr, "loader: the board cannot be read (%d)\n", (int)status);
        return 1;
    }
    printf("Manufacturer: %u\n", (unsigned)value);
    return 0;
}
