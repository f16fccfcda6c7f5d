/*
 * A minimal client: moves a setting of a board, saves it to a file, and sees that both hold it.
 *
 *     client DIRECTORY
 *
 * DIRECTORY is this example's. The save file is put where the client is started.
 */
#include <stdio.h>

#include "velk32.h"

static const char saveFile[] = "amplifier.cfg";
static const char saveKey[] = "Amplifier";

/* Says what failed, and why. A positive status is a warning beside a finished call. */
static int Failed(const char *call, StatusCode status)
{
    char message[78];

    if (status == 0)
        return 0;
    VelkStrError(status, message);
    fprintf(stderr, "%s: %s (%ld)\n", call, message, (long)status);
    return status < 0;
}

/* Options move each other: what was asked for is not always what is stored. */
static int ShowGain(Config *config)
{
    uint32_t filter, gain;

    if (Failed("Filter", VelkGetOption(config, "Filter", &filter)))
        return 1;
    if (Failed("Gain", VelkGetOption(config, "Gain", &gain)))
        return 1;
    printf("filter %lu, gain %lu\n", (unsigned long)filter, (unsigned long)gain);
    return 0;
}

static int MoveGain(Config *config)
{
    /* Board 0; the second word means nothing to this accessor. */
    if (Failed("load", VelkLoadCurrentConfig(config, 0, 0)))
        return 1;
    if (ShowGain(config))
        return 1;
    if (Failed("Filter", VelkSetOption(config, "Filter", 0)))
        return 1;
    if (Failed("Gain", VelkSetOption(config, "Gain", 200)))
        return 1;
    if (Failed("save", VelkSaveCurrentConfig(config, 0, 0)))
        return 1;
    if (Failed(saveFile, VelkSaveToFile(config, saveFile, saveKey)))
        return 1;

    if (Failed("load again", VelkLoadCurrentConfig(config, 0, 0)) || ShowGain(config))
        return 1;
    return Failed(saveFile, VelkLoadFromFile(config, saveFile, saveKey)) || ShowGain(config);
}

static int UseAmplifier(ConfigEngine *engine)
{
    Config *config;
    int failed;

    if (Failed("Amplifier", VelkCreateConfig(engine, "Amplifier", &config)))
        return 1;
    failed = MoveGain(config);
    VelkDiscardConfig(config);
    return failed;
}

int main(int argc, char **argv)
{
    ConfigEngine *engine;
    int failed;

    if (argc != 2) {
        fprintf(stderr, "usage: client DIRECTORY\n");
        return 2;
    }
    if (Failed(argv[1], VelkInitializeConfigEngine(argv[1], &engine)))
        return 1;
    failed = UseAmplifier(engine);
    VelkCloseConfigEngine(engine);
    return failed;
}
