/*
 * Formwork: read, fill, reset, edit and save the forms of PDF files. The C interface, for C99 and later, and for C++.
 *
 *     fw_document* document;
 *     fw_field city;
 *     fw_code code = fw_open_file("form.pdf", NULL, &document);
 *     if (code == FW_OK)
 *         code = fw_find_field(document, "address.city", FW_PLAIN, &city);
 *     if (code == FW_OK)
 *         code = fw_set_value(document, city, "Ulm", FW_PLAIN);
 *     if (code == FW_OK)
 *         code = fw_save_file(document, "filled.pdf");
 *     if (code != FW_OK)
 *         fprintf(stderr, "%s\n", fw_error());
 *     fw_close(document);
 *
 * Rules that hold for every function:
 *
 * - A function that can fail returns an fw_code; FW_OK is 0. The sentence that tells people what went wrong is fw_error().
 *   What a failed function hands out through pointers is 0 or NULL; a document is as it was before, where the function says
 *   nothing else. Pointers to what is handed out may be NULL where nobody wants it, unless it must be freed or closed.
 * - Texts are UTF-8 and end with a zero. Names are full names, such as "address.city" (ISO 32000-2, 12.7.4.2).
 * - A "const char*" that is handed out is borrowed from the document: it stays until the next call that changes the
 *   document, or closes it. A "char*" that is handed out is the caller's, who frees it with fw_free; `size` counts its
 *   bytes without the zero behind them, and may be NULL.
 * - Places on pages are in points, 1/72 inch, from the lower left corner of the page as PDF has them. Pages count from 1.
 * - One document is for one thread at a time; different documents are independent, and so are their threads.
 * - No exception passes this interface, and nothing here ends the process. Where memory runs out, FW_NO_MEMORY is returned;
 *   after a call that was to change the document, fw_revert makes it sound again.
 * - The file that was opened is never written to, unless it is named to fw_save_file. What is saved are its bytes, unchanged,
 *   and one incremental update behind them (ISO 32000-2, 7.5.6).
 *
 * Functions, numbers of codes and values of enumerations keep their meaning as long as the library is libformwork.so.0;
 * further ones may be added behind them.
 */
#ifndef FORMWORK_H
#define FORMWORK_H

#include <stddef.h> /* NOLINT: in C++, too */
#include <stdint.h> /* NOLINT */

#ifndef FW_API
#if defined(__GNUC__)
#define FW_API __attribute__((visibility("default")))
#else
#define FW_API
#endif
#endif

/* In C++ an enumeration may hold other numbers than its own only where it is made of a type. */
#ifdef __cplusplus
#define FW_AS_INT : int
extern "C" {
#else
#define FW_AS_INT
#endif

/** The version of this header. The library may be a newer one, see fw_version. */
#define FW_VERSION_MAJOR 0
#define FW_VERSION_MINOR 1
#define FW_VERSION_PATCH 0

/** What became of a call. The numbers are fixed. */
typedef enum fw_code FW_AS_INT {
    FW_OK = 0,
    FW_NOT_FOUND = 1,      /**< there is no such file or page */
    FW_IO = 2,             /**< a file can't be read or written */
    FW_NOT_PDF = 3,        /**< the file has no PDF header */
    FW_NO_CATALOG = 4,     /**< the file has no usable trailer or catalog */
    FW_ENCRYPTED = 5,      /**< the file is protected, and the password does not open it */
    FW_DAMAGED = 6,        /**< the file can't be read, and could not be repaired */
    FW_LIMIT = 7,          /**< larger, or more work, than what is supported; a text longer than its field takes */
    FW_NO_FIELD = 8,       /**< no field has that name */
    FW_WRONG_KIND = 9,     /**< the field can't take such a value */
    FW_READ_ONLY = 10,     /**< the field is read-only, or a signature locks it */
    FW_NOT_PERMITTED = 11, /**< the author of the encrypted file does not permit it */
    FW_BAD_EDIT = 12,      /**< the form can't be changed in this way */
    FW_BAD_DATA = 13,      /**< the form data can't be read */
    FW_BAD_REQUEST = 14,   /**< what was asked for makes no sense */
    FW_NO_MEMORY = 15,     /**< memory ran out */
    FW_STALE = 16,         /**< the handle's field has ended, or is one of another document */
    FW_BAD_ARGUMENT = 17,  /**< a pointer is NULL, an index too large, or a number is none of its enumeration */
    FW_CANCELLED = 18,     /**< the progress callback asked for the end */
    FW_END = 19,           /**< there is no further row */
    FW_INTERNAL = 20       /**< a fault of this library */
} fw_code;

/** A document, from its opening to fw_close. */
typedef struct fw_document fw_document;

/** A table of which every row fills a form, from fw_open_rows to fw_close_rows. */
typedef struct fw_rows fw_rows;

/**
 * A field of a document: a handle that is checked whenever it is used. It stays good until the field is removed, the form
 * is flattened, documents are appended, changes of the structure are reverted, or one of them fails half-way (FW_DAMAGED, FW_LIMIT,
 * FW_NO_MEMORY); from then on it is FW_STALE, also in another document, and never means another field. While it is good,
 * every call hands out the same handle for that field. 0 is no field.
 */
typedef uint64_t fw_field;

/** How a call is made: FW_PLAIN, or several of these joined by "|". What a function does not name, it passes over, but for
 * FW_CHECK_ONLY, which calls refuse that would change something. */
enum fw_flags FW_AS_INT {
    FW_PLAIN = 0,
    FW_FORCE = 1,           /**< also where fields are read-only, signatures lock them, or permissions forbid it */
    FW_CHECK_ONLY = 2,      /**< tell what would be refused and change nothing */
    FW_GUESS = 4,           /**< a part of a name that no other field has, or its number in the list, will do */
    FW_ALL_FIELDS = 8,      /**< list fields without a name of their own, too */
    FW_SHOWN = 16,          /**< texts as the formats of the form show them */
    FW_IGNORE_UNKNOWN = 32, /**< pass over names that no field has */
    FW_UPDATE_ONLY = 64     /**< what stands behind the bytes of the input, alone */
};

/** How a document is opened. Zeros are the defaults: fw_open_options options = {0}; options.struct_size = sizeof options; */
typedef struct fw_open_options {
    size_t struct_size;   /**< sizeof(fw_open_options): which members there are */
    const char* password; /**< the user's or the owner's, in UTF-8; NULL for none */
    int borrow;           /**< not 0: fw_open_bytes makes no copy; the bytes stay and don't change until fw_close */
    int no_repair;        /**< not 0: damaged files are refused, not repaired by a child of this process */
} fw_open_options;

/** @name The library
 * @{ */

/** The version of the library that runs, such as "0.1.0". It stays. */
FW_API const char* fw_version(void);

/** One sentence for people about the last call on this thread that failed; "" before the first one. Borrowed until the next
 * call on this thread that fails. */
FW_API const char* fw_error(void);

/** Frees what was handed out as a char*. NULL is passed over. */
FW_API void fw_free(void* text);

/** @} */
/** @name Documents
 * @{ */

/**
 * Opens a PDF file, which stays open until fw_close; it must not change meanwhile. Encrypted files are opened with the empty
 * password or with that of the options. A file without a form opens, too. `options` may be NULL. The document is to be closed
 * with fw_close.
 */
FW_API fw_code fw_open_file(const char* path, const fw_open_options* options, fw_document** document);

/** The same for the bytes of a file, which are copied unless the options say `borrow`. */
FW_API fw_code fw_open_bytes(const void* bytes, size_t size, const fw_open_options* options, fw_document** document);

/** Ends the document and all that was borrowed from it. NULL is passed over. */
FW_API void fw_close(fw_document* document);

/** What fw_has tells. */
typedef enum fw_fact FW_AS_INT {
    FW_HAS_FORM = 0,        /**< the file has a form */
    FW_HAS_XFA = 1,         /**< the form has XFA data */
    FW_HAS_ONLY_XFA = 2,    /**< the form has XFA data, and no field that takes a value */
    FW_IS_SIGNED = 3,       /**< a signature field is signed, or the document is certified */
    FW_IS_ENCRYPTED = 4,    /**< the file is encrypted */
    FW_PERMITS_FILLING = 5, /**< nothing forbids to fill the form */
    FW_PERMITS_EDITING = 6, /**< nothing forbids to add, remove and change fields */
    FW_WAS_REPAIRED = 7     /**< the file was damaged, and a repaired copy took its place */
} fw_fact;

/** Hands out 1 where the fact holds, 0 where it does not. */
FW_API fw_code fw_has(fw_document* document, fw_fact fact, int* holds);

/** What the next calls do. */
typedef enum fw_option FW_AS_INT {
    /** Which scripts of the form run: 0 none, 1 those that are well-known calls (the default), 2 the others, too, in a process
     * of their own without rights. */
    FW_SCRIPTS = 0,
    FW_SCRIPT_MILLISECONDS = 1, /**< processor time for all scripts of a document; 2000 at first */
    FW_DRAW = 2,                /**< 1: save draws the fields that changed (the default); 0: viewers are asked to */
    FW_WRITE_XFA = 3            /**< 1: save puts the values of the fields into the XFA data, too; 0 at first */
} fw_option;

/** Sets an option. Refuses a value that the option does not have. */
FW_API fw_code fw_set_option(fw_document* document, fw_option option, long value);

/**
 * Called now and then by calls that take long; `done` goes from 0 to 1, more than once where a call does several things. The call
 * ends with FW_CANCELLED where it returns anything but 0: with nothing changed but what is drawn again. It must not call functions
 * with the same document.
 */
typedef int (*fw_progress)(double done, void* user);

/** Sets the callback of a document, NULL for none; `user` is handed to it. Lists, values, changes of the form and saving can
 * be cancelled. */
FW_API fw_code fw_set_progress(fw_document* document, fw_progress progress, void* user);

/**
 * What people should know of the document although the calls succeeded: that a damaged file was repaired, characters
 * that no font has, scripts that did not run, ... Hands out the sentence with this index, counted from 0 in the order in
 * which they came up, and NULL behind the last one.
 */
FW_API fw_code fw_note(fw_document* document, size_t index, const char** note);

/** @} */
/** @name Fields
 * The list has the fields with a name of their own, in the order of the form's tree: FW_ALL_FIELDS is for fw_list_json only.
 * @{ */

/** How many fields the list has. */
FW_API fw_code fw_field_count(fw_document* document, size_t* count);

/** The field at this place of the list, counted from 0; its number, as the command shows it, is one more. */
FW_API fw_code fw_field_at(fw_document* document, size_t index, fw_field* field);

/**
 * The first field with this full name, compared with the names as they are stored, then with the names without index
 * suffixes. With FW_GUESS its number in the list, or a part of its name that no other field has, will do. FW_NO_FIELD where
 * none has it; the sentence may propose another name.
 */
FW_API fw_code fw_find_field(fw_document* document, const char* name, unsigned flags, fw_field* field);

/** The field whose dictionary, or one of whose widgets, is the object with this number. */
FW_API fw_code fw_field_of_object(fw_document* document, uint32_t object, fw_field* field);

/** Texts that a field has, for fw_field_text. */
typedef enum fw_text FW_AS_INT {
    FW_NAME = 0,         /**< its full name */
    FW_VALUE = 1,        /**< its value, the first of several; the state of a check box or a radio group */
    FW_DEFAULT = 2,      /**< what a reset gives it, the first of several */
    FW_LABEL = 3,        /**< what people are told that it is ("TU") */
    FW_MAPPING_NAME = 4, /**< what it is called in exported data ("TM") */
    FW_SHOWN_TEXT = 5,   /**< what its widgets show of the value, where a script formats it */
    FW_FORMAT = 6        /**< what its format takes, in words such as "number, 2 decimals" */
} fw_text;

/** Hands out a text of the field, NULL where it has none. A text ends at its first zero. */
FW_API fw_code fw_field_text(fw_document* document, fw_field field, fw_text which, const char** text);

/** The kinds of fields. */
typedef enum fw_kind FW_AS_INT {
    FW_GROUP = 0, /**< no kind of its own: it holds others */
    FW_RADIO = 1,
    FW_PUSH = 2,
    FW_CHECK = 3,
    FW_TEXT_FIELD = 4,
    FW_COMBO = 5,
    FW_LIST = 6,
    FW_SIGNATURE = 7
} fw_kind;

/** Numbers that a field has, for fw_field_number. */
typedef enum fw_number FW_AS_INT {
    FW_KIND = 0, /**< an fw_kind */
    FW_FIELD_FLAGS =
        1, /**< its flags, its own or inherited (ISO 32000-2, tables 227, 228, 230 and 232): 1 read-only, 2 required */
    FW_MAX_LENGTH = 2, /**< the most characters that it takes; 0 for any number */
    FW_OBJECT = 3,     /**< the number of its object */
    FW_PAGE = 4,       /**< the page of its first widget; 0 for none */
    FW_SIGNED = 5      /**< of a signature field: 1 when it is signed; else 0 */
} fw_number;

FW_API fw_code fw_field_number(fw_document* document, fw_field field, fw_number which, int64_t* number);

/** Lists of texts that a field has, for fw_item_count and fw_item. */
typedef enum fw_list FW_AS_INT {
    FW_VALUES = 0,        /**< its values: none, one, or several of a list box */
    FW_OPTION_VALUES = 1, /**< what the options of a choice field export, */
    FW_OPTION_TEXTS = 2,  /**< and what they show */
    FW_STATES = 3,        /**< the on states of a check box or a radio group, one for each widget, */
    FW_STATE_VALUES = 4   /**< and what they export */
} fw_list;

FW_API fw_code fw_item_count(fw_document* document, fw_field field, fw_list which, size_t* count);
FW_API fw_code fw_item(fw_document* document, fw_field field, fw_list which, size_t index, const char** text);

/** Where a widget of a field stands. */
typedef struct fw_widget {
    int32_t page;    /**< 0 where no page has it */
    uint32_t object; /**< the number of its object */
    double x0;       /**< its rectangle: left, */
    double y0;       /**< bottom, */
    double x1;       /**< right, */
    double y1;       /**< and top; all 0 where it has none */
} fw_widget;

FW_API fw_code fw_widget_count(fw_document* document, fw_field field, size_t* count);
FW_API fw_code fw_widget_at(fw_document* document, fw_field field, size_t index, fw_widget* widget);

/**
 * The list as a JSON array of objects, one for each field in the order of fw_field_at, with all that the functions above tell,
 * and more; behind them, of a form that has XFA data alone, their values. One call of this takes less time than many of those.
 * With FW_ALL_FIELDS also the fields without a name of their own. Can be cancelled.
 */
FW_API fw_code fw_list_json(fw_document* document, unsigned flags, char** json, size_t* size);

/** What there is, at a glance, as a JSON object: pages, fields by kind, signatures, encryption, scripts, ... */
FW_API fw_code fw_summary_json(fw_document* document, char** json, size_t* size);

/** @} */
/** @name Values
 * @{ */

/**
 * Makes `value` the value of the field: a text; of a check box or a radio group the name of a state, an export value, or "true",
 * "yes", "on" or "1" and their opposites; of a choice field an export value or a shown text. NULL is refused; "" clears a text.
 * The form is calculated. Refuses a value that the field does not take, and what FW_FORCE allows. FW_CHECK_ONLY.
 */
FW_API fw_code fw_set_value(fw_document* document, fw_field field, const char* value, unsigned flags);

/** The same for several values, which a list box may take; a count of 0 clears a field of any kind. */
FW_API fw_code fw_set_values(fw_document* document, fw_field field, const char* const* values, size_t count,
                             unsigned flags);

/** Formats of form data. */
typedef enum fw_format FW_AS_INT {
    FW_JSON =
        0, /**< an object of full names to texts, numbers, true, false or lists of texts; null leaves a field alone */
    FW_CSV = 1,       /**< RFC 4180: a row of names, a row of values */
    FW_FDF = 2,       /**< ISO 32000-2, 12.7.8 */
    FW_XFDF = 3,      /**< ISO 19444-1 */
    FW_URL = 4,       /**< the pairs of a submit action; fw_export only, as are the following */
    FW_XML = 5,       /**< the XML of a submit action */
    FW_XFA = 6,       /**< the XFA data set */
    FW_JSON_LINES = 7 /**< fw_open_rows only: a JSON object on each line */
} fw_format;

/**
 * Puts form data into the fields: all values or, where one of them is refused, none. Then the form is calculated. The code of
 * a refusal is that of the first one, and the sentence names all. `report`, unless it is NULL, becomes a JSON array with an object
 * for every name, also where values are refused, but not where the data can't be read: {"name","result","why","value"}. "result" is
 * "set", "coerced" (understood as something else than it said), "kept" (the field has it already), "calculated" (changed by
 * scripts) or "refused", which "why" explains; where anything is refused, or only checked, it is what would be. "value" is what the
 * field has after the call, or the value that is refused. FW_FORCE, FW_CHECK_ONLY, FW_IGNORE_UNKNOWN. Can be cancelled before
 * values change.
 */
FW_API fw_code fw_fill(fw_document* document, fw_format format, const void* data, size_t size, unsigned flags,
                       char** report, size_t* report_size);

/**
 * The values of the fields as form data; of `fields` with all under them where `count` is not 0. FW_SHOWN goes with the first
 * four formats, fields with all but FW_XFA.
 */
FW_API fw_code fw_export(fw_document* document, fw_format format, const fw_field* fields, size_t count, unsigned flags,
                         char** data, size_t* size);

/** Brings the fields, and all under them, to their defaults; all fields where `count` is 0. The form is calculated. FW_FORCE. */
FW_API fw_code fw_reset(fw_document* document, const fw_field* fields, size_t count, unsigned flags);

/** Runs all calculations of the form once more; refused where permissions forbid to fill the form. */
FW_API fw_code fw_calculate(fw_document* document);

/** Drops every change since the document was opened. Handles end where the structure was changed. */
FW_API fw_code fw_revert(fw_document* document);

/** @} */
/** @name Tables
 * One form filled many times: open it once, and call fw_fill_row and fw_save_file in turn.
 * @{ */

/** Opens a table: FW_CSV with a row of names, or FW_JSON_LINES. The bytes are copied. To be closed with fw_close_rows. */
FW_API fw_code fw_open_rows(fw_format format, const void* data, size_t size, fw_rows** rows);

FW_API fw_code fw_row_count(fw_rows* rows, size_t* count);

/**
 * Reverts the document and fills it with the next row, as fw_fill does; empty cells leave a field as it is, and several values in a
 * cell are divided by "|". `number` is that of the row, from 1, also of one that is refused. That leaves the document reverted, and
 * the next call goes on with the row behind it. FW_END behind the last one, with nothing done.
 */
FW_API fw_code fw_fill_row(fw_rows* rows, fw_document* document, unsigned flags, size_t* number, char** report,
                           size_t* report_size);

FW_API void fw_close_rows(fw_rows* rows);

/** @} */
/** @name The form itself
 * What a field is to be comes as a JSON object. Its keys: "label", "mappingName", "maxLength", "options", "default", "font",
 * "fontSize", "color", "format", ..., and flags such as "required" and "multiline" with true or false; docs/c.md has all of
 * them. Signatures and permissions forbid changes unless FW_FORCE is given.
 * @{ */

/**
 * Adds a field: {"kind": "text", "name": "address.city", "places": [{"page": 1, "rect": [x, y, width, height]}], ...}. Where its
 * looks are refused, it is added and removed again.
 */
FW_API fw_code fw_add_field(fw_document* document, const char* json, unsigned flags, fw_field* field);

/**
 * Changes what the keys name; "places" moves the widgets. First flags, limits and options, then looks, then places: where a later
 * one of these is refused, the earlier ones are done.
 */
FW_API fw_code fw_change_field(fw_document* document, fw_field field, const char* json, unsigned flags);

/** Removes the field with all under it, and their widgets. Their handles end. */
FW_API fw_code fw_remove_field(fw_document* document, fw_field field, unsigned flags);

/**
 * Gives the field another partial name, unless `name` is NULL, and moves it under another group, unless `group` is NULL: one with
 * this full name, or the top for "". The handle stays good; after a move those of the fields under it end.
 */
FW_API fw_code fw_rename_field(fw_document* document, fw_field field, const char* name, const char* group,
                               unsigned flags);

/** Makes what the fields show a part of the pages, and takes the form off the document. All handles end. */
FW_API fw_code fw_flatten(fw_document* document, unsigned flags);

/** What becomes of fields that both documents have. */
typedef enum fw_same_names FW_AS_INT { FW_REFUSE = 0, FW_RENAME = 1, FW_JOIN = 2 } fw_same_names;

/**
 * Appends the pages and fields of `other`, which is changed by that and to be closed then. All handles of both documents end. After
 * a failure `document` is to be reverted.
 */
FW_API fw_code fw_append(fw_document* document, fw_document* other, fw_same_names names, unsigned flags);

/** @} */
/** @name Saving
 * Widgets whose value changed are drawn by these calls, which can be cancelled: nothing is written then. They may be called more
 * than once; each writes all changes since the document was opened.
 * @{ */

/** Writes the file at `path`, which is replaced as a whole or stays as it was; it may be the one that was opened. */
FW_API fw_code fw_save_file(fw_document* document, const char* path);

/** The same into memory. With FW_UPDATE_ONLY what stands behind the bytes of the input: nothing where nothing changed. */
FW_API fw_code fw_save_bytes(fw_document* document, unsigned flags, char** bytes, size_t* size);

/** @} */

#ifdef __cplusplus
}
#endif

#endif
