/* Registry Rules for every compiler and language: RulesC.dll, plain C.
 *
 *     rr_rules rules;
 *     int32_t answer;
 *     rr_rules_create(&rules);
 *     rr_rules_add_key(rules, L"HKCU\\Software\\Contoso", RR_TERMINATED, 1, 0);
 *     if (rr_show(rules, NULL, &answer) == RR_OK && answer == RR_CHANGED) save(rules);
 *     rr_rules_close(rules);
 *
 * Texts are UTF-16, 16 bits a unit (wchar_t on Windows), given with their length in units, or with RR_TERMINATED for
 * one that ends at its zero unit. A text may be null where its length is 0. A zero unit inside is refused; halves of
 * surrogate pairs are taken as they are. What is given stays the caller's and need not live longer than the call.
 *
 * A text that is read goes into a buffer of the caller's: `capacity` is its size in units, `length` becomes the length
 * of the text without its terminator. When text and terminator do not fit, the buffer stays as it is and the status is
 * RR_E_BUFFER: a null buffer of capacity 0 asks for the length.
 *
 * A struct begins with `size`, which the caller sets to its sizeof. One that is larger than this library knows, from a
 * newer header, is taken as long as what is unknown in it is zero.
 *
 * Every function that gives an rr_status never throws, and leaves its outputs alone when it fails, but for `length` at
 * RR_E_BUFFER. Handles and pointers that are null where none may be, handles that were closed, and handles that never
 * were any get a status. Where nothing else is said, a function may be called on any thread at any time. */
#ifndef REGISTRY_RULES_H
#define REGISTRY_RULES_H

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* NOLINTBEGIN(modernize-use-using): for C */
#define RR_API_VERSION 1
#define RR_TERMINATED ((size_t)-1)

typedef int32_t rr_status;
enum {
    RR_OK = 0,
    RR_TOLD = 1,           /* done, but for what the notes tell */
    RR_E_NULL = -1,        /* a pointer is null that may not be */
    RR_E_HANDLE = -2,      /* not the handle of an open rule set */
    RR_E_TEXT = -3,        /* a text with a zero inside, without an end, or longer than the registry or a path takes */
    RR_E_SIZE = -4,        /* a struct's size is too small, or it asks for what this library does not know */
    RR_E_BUFFER = -5,      /* the buffer is too small; `length` tells the length */
    RR_E_INDEX = -6,       /* there is no such rule */
    RR_E_ARGUMENT = -7,    /* another argument is out of its range */
    RR_E_WINDOW = -8,      /* the owner is no window, or of another thread */
    RR_E_BUSY = -9,        /* the dialog is open already */
    RR_E_MEMORY = -10,     /* there is not enough memory */
    RR_E_FAILED = -11,     /* rr_last_error tells why; nothing was changed */
    RR_E_REFUSED = -12,    /* a file exists, or a whole hive would be removed; nothing was changed */
    RR_E_FORMAT = -13,     /* not a registry file; nothing was changed */
    RR_E_CANCELLED = -14,  /* by a callback; nothing was changed */
    RR_E_TAKEN_BACK = -15, /* a change failed or was cancelled, and all was taken back */
    RR_E_NOT_TAKEN_BACK = -16 /* a change failed, and some stay: the undo file tells how it was before */
};

/* RR_API_VERSION of the library. */
uint32_t rr_api_version(void);

/* Why the last call that failed on this thread did: for people, in English but for what the system adds; a key or file
 * and a line are named where there is one. Empty when none has failed. */
rr_status rr_last_error(wchar_t* buffer, size_t capacity, size_t* length);

/* ---- Rule sets: key rules and value rules, each counted from 0 in the order in which they were added. ---- */

typedef struct rr_rules_* rr_rules;

rr_status rr_rules_create(rr_rules* rules);
/* Also while another call works on the set: that one goes on with what it has read. */
rr_status rr_rules_close(rr_rules rules);
rr_status rr_rules_clear(rr_rules rules);

/* `key` is "HIVE\KEY" with the hive's full name or its abbreviation; it is not checked. `is_branch`: with all below it.
 * `position` is the row in the dialog's list, counted over both kinds, from 0 to 32767; one beyond the end means the
 * end. An empty `value` is the key's default value. */
rr_status rr_rules_add_key(rr_rules rules, const wchar_t* key, size_t key_length, int32_t is_branch, int32_t position);
rr_status rr_rules_add_value(rr_rules rules, const wchar_t* key, size_t key_length, const wchar_t* value,
                             size_t value_length, int32_t position);
rr_status rr_rules_count(rr_rules rules, size_t* keys, size_t* values);
/* `is_branch` and `position` may be null. Of two texts both lengths are told when either does not fit. */
rr_status rr_rules_get_key(rr_rules rules, size_t index, wchar_t* key, size_t key_capacity, size_t* key_length,
                           int32_t* is_branch, int32_t* position);
rr_status rr_rules_get_value(rr_rules rules, size_t index, wchar_t* key, size_t key_capacity, size_t* key_length,
                             wchar_t* value, size_t value_capacity, size_t* value_length, int32_t* position);

/* ---- The dialog ---- */

enum { RR_UNCHANGED = 0, RR_CHANGED = 1 };

/* Shows the dialog with the rules and returns when the user has ended it. `answer` becomes RR_CHANGED when that was by
 * OK and rows were changed: the set then holds the edited rules, keys with the full names of their hives. Otherwise
 * RR_UNCHANGED, and the set is as it was. `owner` is the HWND that the dialog belongs to, of the calling thread; null
 * is the thread's active window. One dialog at a time in a process. */
rr_status rr_show(rr_rules rules, void* owner, int32_t* answer);

/* ---- What rules select: list, check, capture; and apply ---- */

/* Whose registry; null for that of the running system and the process's user. */
typedef struct rr_target {
    size_t size;
    const wchar_t* user; /* who HKEY_CURRENT_USER is: a SID, a name or a profile folder */
    size_t user_length;
    int32_t drive; /* 'D': the Windows installation on that drive, which is not running; 0 for none */
} rr_target;

typedef struct rr_progress {
    size_t size;
    uint64_t keys, values, bytes; /* done so far */
    const wchar_t* path;          /* the key in work */
    size_t path_length;
} rr_progress;

enum {
    RR_NOTE_MISSING = 0,      /* a key or value that a rule names is not there */
    RR_NOTE_VANISHED = 1,     /* a key went while its neighbours were read */
    RR_NOTE_UNREADABLE = 2,   /* `win32` tells why */
    RR_NOTE_UNWRITABLE = 3,   /* a name that the format cannot hold, or a value of more than 64 MiB */
    RR_NOTE_OUT_OF_REACH = 4, /* the target has no such key */
    RR_NOTE_SKIPPED_LINE = 5, /* `line` of the registry file did nothing */
    RR_NOTE_FLAW = 6,         /* `flaw` of a rule; it selects nothing, or what another one selects */
    RR_NOTE_MORE = 7          /* the notes up to here are the first 1000; there are more */
};

enum {
    RR_FLAW_UNKNOWN_HIVE = 0, /* the key begins with no hive */
    RR_FLAW_WHOLE_HIVE = 1,   /* a hive without a key below it */
    RR_FLAW_BACKSLASHES = 2,  /* a backslash at the end of the key, or two in a row */
    RR_FLAW_REPEATED = 3,     /* selects what another rule selects */
    RR_FLAW_SHADOWED = 4      /* selects a part of what another rule selects */
};

typedef struct rr_note {
    size_t size;
    int32_t kind;
    uint32_t win32;      /* a status of Windows, or 0 */
    uint64_t line;       /* or 0 */
    const wchar_t* path; /* the key or file */
    size_t path_length;
    const wchar_t* value; /* the value's name; null when it is not about one */
    size_t value_length;
    int32_t flaw;
    int32_t is_value_rule; /* of RR_NOTE_FLAW and of rr_check: the rule, a value rule or a key rule, and its index */
    size_t rule;
} rr_note;

typedef struct rr_item {
    size_t size;
    const wchar_t* key;
    size_t key_length;
    const wchar_t* value; /* the name; null for the key itself, which comes before its values */
    size_t value_length;
    uint32_t type; /* REG_SZ and so on, of a value */
    const void* data;
    size_t data_size; /* bytes */
} rr_item;

/* Called on the thread that makes the call, each with `context`; notes when the work is done. They may call every
 * function of this library. A result of 0 cancels, and of `note` ends the notes. They must not throw nor jump out; a
 * C++ exception of the library's own compiler is caught and cancels. What they are given is valid until they return.
 * Each may be null, and so may the struct. */
typedef struct rr_callbacks {
    size_t size;
    void* context;
    int32_t (*progress)(void* context, const rr_progress* progress);
    int32_t (*note)(void* context, const rr_note* note);
    int32_t (*item)(void* context, const rr_item* item); /* rr_list only */
} rr_callbacks;

typedef struct rr_report {
    size_t size;
    uint64_t keys, values, bytes;
    uint64_t removed_keys, removed_values; /* of rr_apply */
    uint64_t notes;
} rr_report;

enum {
    RR_REPLACE = 1,      /* a file that exists is replaced, not refused: the captured one, or the undo file */
    RR_DRY_RUN = 2,      /* apply only reads the file; it needs no undo file */
    RR_REMOVE_HIVES = 4, /* removals of a whole hive are done, not refused */
    RR_NO_UNDO = 8       /* apply writes no undo file: what fails on the way stays half done */
};

/* In all of them `target`, `callbacks` and `report` may be null. RR_TOLD when there were notes.
 * list shows each selected key and value to `item`. */
rr_status rr_list(rr_rules rules, const rr_target* target, const rr_callbacks* callbacks, rr_report* report);
/* Notes the rules that name nothing, select what others select, or are not of the form. */
rr_status rr_check(rr_rules rules, const rr_target* target, const rr_callbacks* callbacks, rr_report* report);
/* Writes a registry file of version 5.00, which is whole or not there. */
rr_status rr_capture(rr_rules rules, const rr_target* target, const wchar_t* file, size_t file_length, uint32_t flags,
                     const rr_callbacks* callbacks, rr_report* report);
/* Carries out a registry file. The undo file, written first, puts back what was. */
rr_status rr_apply(const rr_target* target, const wchar_t* file, size_t file_length, const wchar_t* undo,
                   size_t undo_length, uint32_t flags, const rr_callbacks* callbacks, rr_report* report);

/* ---- Facts of the system; on a preinstallation boot those of the installed one. The calls wait for each other. ----
 */

typedef struct rr_version {
    size_t size;
    uint32_t major, minor, build;
    int32_t is_server;
} rr_version;

rr_status rr_windows_version(rr_version* version);
/* With the %names% of the environment and of the profile folders replaced. */
rr_status rr_expand_path(const wchar_t* path, size_t path_length, wchar_t* buffer, size_t capacity, size_t* length);
/* The folder on this machine of a user's profile; the process's user when `sid` is empty. */
rr_status rr_profile_path(const wchar_t* sid, size_t sid_length, wchar_t* buffer, size_t capacity, size_t* length);

/* NOLINTEND(modernize-use-using) */

#ifdef __cplusplus
}
#endif

#endif
