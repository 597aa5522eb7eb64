// What the walking racers share: where their listing goes, and the command line with its timing.
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

// The listing, one line a field: name, tab, the texts of the value with | between; backslash, tab, CR and LF are escaped.
// It goes to standard output or, when only its checksum is wanted, nowhere.
typedef struct LISTING LISTING;

// A line is one call of each, listing_text as often as the value has texts. All texts are UTF-8 and end at `size`.
void listing_name(LISTING* listing, const char* name, size_t size);
void listing_text(LISTING* listing, const char* text, size_t size);
void listing_end(LISTING* listing);

// Opens the file, lists every field that has a partial name of its own, in tree order, with its own value "V" or else
// "DV", and closes the file. Returns 0 when it can't be opened.
typedef int WALK(const char* path, LISTING* listing);

// Runs `walk` as the command line says and returns the exit status.
int walk_main(int argc, char** argv, WALK* walk);

#ifdef __cplusplus
}
#endif
