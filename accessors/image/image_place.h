// The place of a register among the bytes of its board.
//
//     OFFSET u8                a number of one byte
//     OFFSET u16 ORDER         a number of two bytes
//     OFFSET u32 ORDER         a number of four bytes
//     OFFSET text ROOM         a text of up to ROOM bytes, zeros behind it
//     OFFSET array COUNT TYPE  a list of exactly COUNT numbers
//     OFFSET list ROOM TYPE    a list of up to ROOM numbers, their count in front as one more
//
// OFFSET counts bytes from the start of the board. ORDER is big or little, the end that comes first. TYPE
// is u8, u16 ORDER or u32 ORDER.
#ifndef VELK_IMAGE_PLACE_H
#define VELK_IMAGE_PLACE_H

#include <cstdint>

enum class PlaceForm : uint8_t { Number, Text, Array, List };

struct Place {
    uint32_t id;       // of the register
    uint32_t instance; // which register of that id, from 1
    uint32_t offset;
    uint32_t room; // numbers or characters that there is room for, the count of a list aside
    PlaceForm form;
    uint8_t width; // bytes of one number or character
    bool isBig;    // whether the high byte of a number comes first

    friend bool operator==(const Place &, const Place &) = default;
};

// Reads the notation above into a place whose id and instance are known. False: it is malformed, or its
// form is not for the kind of the register; the place is then not to be used.
bool Place_Parse(const char *text, Place *place);

// Bytes that the place takes.
uint64_t Place_Size(const Place *place);

// The largest number that fits `width` bytes.
uint32_t Width_Largest(uint8_t width);

// Whether a table may lack the register: a load from a save file leaves internal registers out.
bool Place_IsInternal(const Place *place);

#endif
