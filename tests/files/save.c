/*
 * save HOW DEFINITIONS FILE VALUE: sets the key Small to a value and saves, between two calls that a trace
 * shows. Ends with the negated status.
 *   file      loads a save file and saves over it
 *   board     reads board 0 of the image and writes it; FILE is not used
 *   in-place  as "file", but cuts the old file off and writes anew, as no saver should
 */
#define _POSIX_C_SOURCE 200809L
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include "velk32.h"

static void Mark(const char *text, size_t size)
{
    if (write(-1, text, size) >= 0)
        abort();
}

static StatusCode SaveInPlace(const char *path, VelkWord value)
{
    const int file = open(path, O_WRONLY | O_TRUNC);
    dprintf(file, "[Information]\nClass=C\nKey=k\nVersion=1.0\n\n");
    dprintf(file, "[Data]\n0x00000010=0x%08X\n", (uint32_t)value);
    return close(file);
}

int main(int count, char **arguments)
{
    ConfigEngine *engine;
    Config *config;
    if (count != 5 || VelkInitializeConfigEngine(arguments[2], &engine) < 0 ||
        VelkCreateConfig(engine, "C", &config) < 0)
        return 255;
    const char *path = arguments[3];
    const VelkWord value = strtoul(arguments[4], NULL, 0);
    const int isBoard = arguments[1][0] == 'b', isInPlace = arguments[1][0] == 'i';
    if ((isBoard ? VelkLoadCurrentConfig(config, 0, 0) : VelkLoadFromFile(config, path, "k")) < 0 ||
        VelkSetKey(config, "Small", value) < 0)
        return 255;

    Mark("velk-begin", 10);
    const StatusCode status = isBoard     ? VelkSaveCurrentConfig(config, 0, 0)
                              : isInPlace ? SaveInPlace(path, value)
                                          : VelkSaveToFile(config, path, "k");
    Mark("velk-end", 8);
    VelkDiscardConfig(config);
    VelkCloseConfigEngine(engine);
    return -status;
}
