/*
 * Prints the options of a board, linked with the import library of Velk32.dll:
 *
 *     client DIRECTORY
 *
 * where DIRECTORY is that of examples/vxi.
 */
#include "velk32.h"

#include <stdio.h>
#include <stdlib.h>

/* Ends the program with what the library says of a failure. */
static void Require(StatusCode status, const char *step)
{
    char message[128];
    if (status >= 0)
        return;
    VelkStrError(status, message);
    fprintf(stderr, "client: %s: %s (%d)\n", step, message, (int)status);
    exit(1);
}

int main(int argc, char **argv)
{
    ConfigEngine *engine;
    Config *config;
    uint32_t value;
    if (argc != 2) {
        fprintf(stderr, "usage: client DIRECTORY\n");
        return 2;
    }
    Require(VelkInitializeConfigEngine(argv[1], &engine), "open the definitions");
    Require(VelkCreateConfig(engine, "VxiDevice", &config), "load the class");
    Require(VelkLoadCurrentConfig(config, 8, 0), "load the board");
    Require(VelkGetOption(config, "Manufacturer", &value), "read an option");
    printf("Manufacturer: %u\n", (unsigned)value);
    VelkDiscardConfig(config);
    VelkCloseConfigEngine(engine);
    return 0;
}
