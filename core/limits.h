// Every limit that protects against hostile files, each with its reason. What one command does with a file of 1 MB is to stay
// below two seconds of one processor and 256 MiB (tests/tools/bounds_test.cpp); beyond, both grow with the file.
#pragma once

#include <cstddef>
#include <cstdint>

// Levels of the field tree. Real forms have fewer than 20; deeper ones exhaust the stack of recursive walks.
constexpr int LIMIT_FIELD_DEPTH = 128;

// Bytes of a full name in UTF-8; a longer one is cut. Names are repeated by every field under them.
constexpr size_t LIMIT_FULL_NAME = 4096;

// Arrays and dictionaries inside one another while an object is parsed.
constexpr int LIMIT_OBJECT_DEPTH = 256;

// Values inside one object, each of which takes more memory than its bytes in the file.
constexpr size_t LIMIT_OBJECT_VALUES = 4000000;

// References that lead to references.
constexpr int LIMIT_REF_CHAIN = 32;

// Highest object number, from the architectural limits of ISO 32000-1 Annex C.
constexpr uint32_t LIMIT_OBJECT_NUMBER = 8388607;

// Object numbers that a file of any size may use; larger ones ask for a file with as many bytes.
constexpr uint32_t LIMIT_OBJECT_NUMBER_SMALL_FILE = 1u << 20;

// Bytes of one decoded object stream or cross-reference stream.
constexpr size_t LIMIT_DECODED_STREAM = size_t{256} << 20;

// The best ratio that Flate reaches, plus room for tiny inputs.
constexpr size_t LIMIT_DECODE_RATIO = 1032;
constexpr size_t LIMIT_DECODE_SLACK = size_t{1} << 20;

// Bytes of decoded data that a reader makes room for at once, before it sees how much of it is wanted.
constexpr size_t LIMIT_STREAM_ESTIMATE = size_t{16} << 20;

// Filters of one stream.
constexpr int LIMIT_FILTERS = 16;

// Decoded object streams that are kept, in bytes over all of them. Fields are rarely in the order of the streams they lie
// in, so those of a file of less than 6 MB are all kept: it can't take more decoding after a change than before.
constexpr size_t LIMIT_OBJECT_STREAM_CACHE = size_t{256} << 20;

// Objects of one object stream. Writers put a few hundred into each.
constexpr int32_t LIMIT_STREAM_OBJECTS = 1 << 20;

// Bytes that are parsed in one operation, and that the values take which are built, before further objects read as
// absent: without it, many references to one large object take quadratic time and memory. Real forms are read about
// twice, where object streams shrink to a twentieth at most. A file that was updated may take the first of the two once
// more: objects that a fill makes longer may have many names, and each name reads them again.
constexpr uint64_t LIMIT_PARSE_WORK = uint64_t{32} << 20;
constexpr uint64_t LIMIT_PARSE_WORK_PER_BYTE = 128;

// The same for bytes that are decoded, every stage of a chain of filters counted. Object streams that are kept stay
// counted, so this bounds memory as well.
constexpr uint64_t LIMIT_DECODE_WORK = uint64_t{48} << 20;
constexpr uint64_t LIMIT_DECODE_WORK_PER_BYTE = 32;

// How often the calculations of a form run until nothing changes: fields that are calculated from each other may never end.
constexpr int LIMIT_CALCULATION_ROUNDS = 10;

// Bytes that the scripts of fields take which are kept, and of the values that one name gives a calculation. Fields beyond
// have their scripts read anew; a name of a group stands for the values of all fields under it.
constexpr size_t LIMIT_SCRIPTS_HELD = size_t{32} << 20;
constexpr size_t LIMIT_GROUP_VALUES = size_t{32} << 20;

// Actions that one event starts, counting those of "Next", how many of them follow one another, and the bytes read of a
// script that is kept in a stream.
constexpr int LIMIT_ACTIONS = 1000;
constexpr size_t LIMIT_ACTION_DEPTH = 128;
constexpr int LIMIT_SCRIPT = 0x1000000;

// Bytes read of an XFA template packet.
constexpr int LIMIT_XFA_TEMPLATE = 0x1000000;

// Bytes of one XFA stream that holds all packets. A longer one is not rewritten.
constexpr int LIMIT_XFA_STREAM = 64 << 20;

// Bytes of default values that one reset puts into fields: a default above many fields is copied into each of them.
constexpr uint64_t LIMIT_RESET_VALUES = uint64_t{48} << 20;

// Bytes of one file with form data that is read as a whole.
constexpr size_t LIMIT_DATA_FILE = size_t{256} << 20;

// Values in one such file, or cells in one row of CSV; each takes more memory than its bytes in the file.
constexpr size_t LIMIT_DATA_VALUES = 4000000;

// Bytes of all names and values that a nested format gives: so many, and so many for every byte of the file. A name is
// said once for all the fields under it, and references may repeat a value.
constexpr size_t LIMIT_DATA_BYTES = size_t{64} << 20;
constexpr size_t LIMIT_DATA_BYTES_PER_BYTE = 8;

// Partial names inside one another where exported data nest; the rest of a name stays in one piece. Readers recurse.
constexpr size_t LIMIT_NAME_PARTS = 64;

// Bytes of form data that one export gives, and of texts that it reads from streams, which fields may share.
constexpr size_t LIMIT_EXPORT = size_t{128} << 20;
constexpr size_t LIMIT_EXPORT_STREAMS = size_t{8} << 20;

// Bytes of options that one list of fields shows; many fields may share a long list of options.
constexpr size_t LIMIT_LISTED_OPTIONS = size_t{64} << 20;

// Fields looked at while the events of an XFA template are bound; every event searches the tree.
constexpr int64_t LIMIT_XFA_VISITS = 20000000;

// Fields looked at while the paths of one selection are looked up: where many have the names of its first step, and many
// those of its last, a path may have to try them all.
constexpr int64_t LIMIT_SELECT_VISITS = 20000000;

// XML that is parsed recursively: levels, then elements and attributes in all, then attributes of one element
// (looked up one by one, so many of them take quadratic time).
constexpr int LIMIT_XML_DEPTH = 256;
constexpr size_t LIMIT_XML_NODES = 1000000;
constexpr size_t LIMIT_XML_ATTRIBUTES = 512;

// Levels of the page tree and of name trees. Deeper ones exhaust the stack of recursive walks.
constexpr int LIMIT_PAGE_DEPTH = 128;

// Pixels of a picture, on one side and in all (1 GiB). Cairo takes no longer side.
constexpr int LIMIT_PICTURE_SIDE = 32767;
constexpr int LIMIT_PICTURE_PIXELS = 1 << 28;

// Bytes read of one embedded font program, and of one CMap or table of glyph numbers.
constexpr int LIMIT_FONT_FILE = 64 << 20;
constexpr int LIMIT_FONT_TABLE = 8 << 20;

// Codes that one CMap tells the meaning of, and widths that one font lists; a CMap of a few bytes may spell any number.
constexpr size_t LIMIT_FONT_CHARACTERS = 1u << 17;
constexpr size_t LIMIT_FONT_WIDTHS = 1u << 17;

// Characters of one value that are laid out: in one line, and in many. A page of text at 4 points has about as many.
constexpr size_t LIMIT_DRAWN_LINE = 1 << 13;
constexpr size_t LIMIT_DRAWN_TEXT = 1 << 17;

// Characters of all values that one save draws: many widgets may show one long text. Those beyond are left to viewers.
constexpr size_t LIMIT_DRAWN_CHARACTERS = 1 << 24;

// Cells of a comb that get a dividing line. More are solid black.
constexpr int LIMIT_COMB_LINES = 1000;

// Rows of a list box that are drawn, from the first one shown: more than any page has room for.
constexpr int LIMIT_DRAWN_ROWS = 1000;
