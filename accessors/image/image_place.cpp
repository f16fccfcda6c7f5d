#include "accessors/image/image_place.h"

#include "accessors/setting_text.h"

static bool Place_ParseOrder(const char **text, Place *place)
{
    if (place->width == 1)
        return true;
    const Word order = Setting_NextWord(text);
    place->isBig = Word_Is(order, "big");
    return place->isBig || Word_Is(order, "little");
}

static bool Place_ParseNumbers(Word type, const char **text, Place *place)
{
    if (Word_Is(type, "u8"))
        place->width = 1;
    if (Word_Is(type, "u16"))
        place->width = 2;
    if (Word_Is(type, "u32"))
        place->width = 4;
    return place->width != 0 && Place_ParseOrder(text, place);
}

static bool Place_ParseRoom(const char **text, Place *place)
{
    return Word_ToNumber(Setting_NextWord(text), &place->room) && place->room != 0 &&
           place->room <= INT32_MAX;
}

static bool Place_ParseForm(const char **text, Place *place)
{
    const Word form = Setting_NextWord(text);
    if (Word_Is(form, "text")) {
        place->form = PlaceForm::Text;
        place->width = 1;
        return Place_ParseRoom(text, place);
    }
    if (Word_Is(form, "array") || Word_Is(form, "list")) {
        place->form = Word_Is(form, "list") ? PlaceForm::List : PlaceForm::Array;
        return Place_ParseRoom(text, place) && Place_ParseNumbers(Setting_NextWord(text), text, place);
    }
    place->form = PlaceForm::Number;
    place->room = 1;
    return Place_ParseNumbers(form, text, place);
}

static bool Place_FitsKind(const Place *place)
{
    const uint32_t kind = place->id >> 24 & 0xF;
    switch (place->form) {
    case PlaceForm::Number:
        return kind < 8;
    case PlaceForm::Text:
        return kind == 0xB;
    case PlaceForm::Array:
        return kind == 0xF;
    case PlaceForm::List:
        return kind == 0xF && place->room <= Width_Largest(place->width);
    }
    return false;
}

bool Place_Parse(const char *text, Place *place)
{
    place->width = 0;
    place->isBig = false;
    return Word_ToNumber(Setting_NextWord(&text), &place->offset) && Place_ParseForm(&text, place) &&
           Setting_IsAtEnd(text) && Place_FitsKind(place);
}

uint64_t Place_Size(const Place *place)
{
    const uint64_t units = uint64_t{place->room} + (place->form == PlaceForm::List ? 1 : 0);
    return units * place->width;
}

uint32_t Width_Largest(uint8_t width)
{
    return UINT32_MAX >> (32 - 8 * width);
}

bool Place_IsInternal(const Place *place)
{
    return (place->id & 0xF0000000) == 0xF0000000;
}
