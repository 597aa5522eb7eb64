// Text conversion: PDF text strings (ISO 32000-2, 7.9.2.2) to wide text and on to XML, URL and UTF-8 text.
// Wide text is 32 bits a character and ends in a 0 character. No output is ever cut inside a character.
#pragma once

#include "core/pdf_string.h"

// Decodes a PDF text string: UTF-16BE after FE FF (surrogate pairs joined), UTF-8 after EF BB BF, PDFDocEncoding
// otherwise; language escapes (U+001B ... U+001B) are skipped. Writes at most `max` characters and always a
// terminating 0, so `out` holds `max` + 1. Null or empty strings give an empty text. Returns the characters written.
int cvt_text_to_ucs(const PDF_String* s, wchar_t* out, int max);

// Number of characters before the terminating 0.
int ucs_len(const wchar_t* w);

// 0 when both texts are equal.
int ucs_cmp(const wchar_t* a, const wchar_t* b);

// Each writes `w` re-encoded: at most `max` bytes and then a terminating 0, so `out` holds `max` + 1. They stop before
// a character that would not fit whole, and return the bytes written.
//
// XML character data in UTF-8: & < > " ' become entities, characters that XML 1.0 forbids are left out.
int cvt_utoxml(const wchar_t* w, char* out, int max);
// URL-encoded: ASCII letters, digits, - . _ ~ [ ] # and the UTF-8 bytes of other characters stay, a space becomes +, and
// every other byte %XX.
int cvt_utourl(const wchar_t* w, char* out, int max);
// Local text, which is UTF-8 here.
int cvt_utol(const wchar_t* w, char* out, int max);

// Decode a PDF text string and re-encode it as XML, URL or local text into `out`, which holds `size` bytes with
// the terminator. XML and URL keep the first 127 characters, local text the first 511.
void cvt_str2xml(const PDF_String& s, char* out, int size);
void cvt_str2url(const PDF_String& s, char* out, int size);
void cvt_str2l(const PDF_String& s, char* out, int size);

// What goes over the wire of URL-encoded text: a copy in which #, [, ] and every byte outside 21 to 7E, which are the
// bytes of UTF-8 and what was never encoded, are %XX. The caller owns it and releases it with VXFree; null when memory
// runs out. `url` is not null.
char* cvt_url_to_ascii(const char* url);

// Writes the decimal digits of `v` and a terminating 0 (at most 11 bytes). Returns the number of digits.
int ansi_from_u32(char* out, unsigned v);

// Replaces every `from` in the NUL-terminated `s` by `to`.
void ansi_repc(char* s, int from, int to);

// Encodes one character as UTF-8 into up to 4 bytes and returns their number; what is no Unicode scalar value
// is written as U+FFFD.
int utf8_from_ucs(uint32_t c, char out[4]);

// Reads one character of UTF-8 from [p, end), moving p past it. A malformed sequence gives U+FFFD and moves one byte.
uint32_t ucs_from_utf8(const unsigned char*& p, const unsigned char* end);
