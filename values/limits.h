// What one definition, save file or set may ask for at most. A few characters of a number list could take
// the memory of the machine, and where options meet again, paths multiply: a small definition could keep a
// set busy for years. The bounds lie far above any real use. Builds that are fed hostile input cut them down,
// so that they are met within a few kilobytes and a few milliseconds.
#ifndef VELK_VALUES_LIMITS_H
#define VELK_VALUES_LIMITS_H

#include <cstddef>
#include <cstdint>

#ifndef VELK_LIMITS_CUT
#define VELK_LIMITS_CUT 1
#endif

// Values of all number lists of one class load together, and of those of one save file.
constexpr uint32_t NumberListLimit = 4194304 / VELK_LIMITS_CUT;

// Options that one set may apply.
constexpr uint32_t MaxApplications = 1048576 / VELK_LIMITS_CUT;

// Once a set keeps more bytes of replaced payloads than this, the next one to be replaced makes it fail as
// when memory runs out.
constexpr size_t MaxRetiredSize = (size_t{64} << 20) / VELK_LIMITS_CUT;

#endif
