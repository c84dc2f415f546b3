/* libkvi: reads the design file that an expansion run leaves.
 *
 * One design is loaded at a time, by kvi_load or kvi_init_dfi; then nets, instances, pins and
 * macros are read one by one, by their indexes (from 1), as records with plain strings and decoded
 * property values.
 *
 *   int32_t status, i;
 *   kvi_net_record_t* net = NULL;
 *   kvi_load("register/design_kv", &status);
 *   if (status != KVI_OK) puts(kvi_load_error());
 *   for (kvi_get_first_net(&i); i != 0; kvi_get_next_net(&i)) {
 *     kvi_get_net_record(i, &net);
 *     puts(net->name.charp);
 *   }
 *   kvi_free_net_record(&net);
 *   kvi_unload();
 *
 * Queries never fail: whatever is out of range, or asked before a file is loaded, gives 0 or
 * leaves the record as it is. The library is not for use from several threads at once.
 *
 * The file is mapped, not copied: a design of a gigabyte is checked once, in a pass over the file,
 * and takes next to no memory. While a file is loaded the library holds a shared lock on it
 * (flock), so that it is not read while KIVO writes it. Once loaded it may be written again: a RUN,
 * or any program that overwrites or truncates the file, invalidates what was loaded, and the
 * queries answer as if nothing were loaded (kvi_load_error says so); a file put in its place by
 * renaming does not. For a page that is cut off under the reader the library handles SIGBUS from
 * its first loading on and passes on what concerns others; a program with a handler of its own
 * installs it before that.
 */
#ifndef KVI_KVI_H
#define KVI_KVI_H

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif
#pragma GCC visibility push(default)

/* --- status ------------------------------------------------------------------------------- */

/* What kvi_load and kvi_init_dfi answer; nothing is loaded unless it is KVI_OK. */
enum {
  KVI_OK = 0,                   /* the design is loaded */
  KVI_REFUSED = 1,              /* a missing or empty name, or a file shorter than its header
                                   says */
  KVI_UNREADABLE = 2,           /* kvi_load: the file cannot be opened */
  KVI_LOCKED = 3,               /* another process writes it, and did so for a second */
  KVI_NO_MEMORY = 4,            /* no memory, or no address space, to map it */
  KVI_DAMAGED = 0x06050000 + 19 /* the file is long enough, but is no design file, or was not
                                   written to its end, or holds an index, a length or a count
                                   that cannot be */
};
/* Two conditions of kvi_init_dfi end the process, after a message on standard output, with these
 * exit codes:
 *   19  the design file cannot be opened
 *   69  directory and file name are too long (each above 200, or together above 198)
 * and a debug file that cannot be opened ends it with exit code 1. */

#define KVI_NUMBER_OF_CODES 85
/* The name of a code 0..84, for instance "file_data_invalid" for 19; "" outside. */
const char* kvi_error_name(int32_t code);
/* Sets *status to code + 0x06050000, reports the code and ends the process with it. */
void kvi_set_status(int32_t code, int32_t* status);

/* --- records ------------------------------------------------------------------------------ */

#define KVI_STRING_SIZE 208 /* bytes of the buffer behind a string of a record */
#define KVI_MAX_PROPERTY 20 /* places for properties in a record */

/* `len` characters, followed by a 0 byte. */
typedef struct {
  int32_t len;
  char* charp;
} kvi_string_record_t;

/* A string of the program that wrote the file. */
typedef struct {
  int32_t len; /* 0..199 */
  char chars[204];
} kvi_gx_string_t;

typedef struct {
  float x, y;
} kvi_coordinate_t;

enum { KVI_STRING = 0, KVI_INTEGER = 1, KVI_TIME = 2, KVI_REAL = 3 };

typedef struct {
  kvi_string_record_t name;
  int16_t vtype; /* KVI_STRING .. KVI_REAL: which member of the union is set */
  union {
    kvi_string_record_t svalue;
    int32_t ivalue[3]; /* first, second (middle) and third value */
    int32_t tvalue[3]; /* whole numbers of time steps (kvi_get_time_step) */
    float rvalue[3];
  } value;
  char* text; /* the buffer behind svalue, kept for the record's next use */
} kvi_prop_record_t;

typedef struct {
  int32_t self_id;
  kvi_string_record_t name; /* its NET name, or "N_" and its index; a member of a bus without name
                               is "_" and its position in the bus */
  int16_t net_type;         /* 1 standard (members of a bus too), 2 named member of a bus, 3 bus */
  int16_t net_kind;         /* 0 local, 1 bus or member, 2 port, 3 other child, 4 global */
  int16_t net_bus_start, net_bus_end; /* of a bus: its range */
  kvi_string_record_t sim_path;
  int32_t bus;           /* of a member: its bus */
  int32_t father_net;    /* of a named member: its bus */
  int32_t first_sub_net; /* of a bus: its first named member */
  int32_t next_sub_net;  /* of a named member: the next one */
  int32_t netind_start;  /* of a bus: its first member; the others follow */
  int8_t nb_of_property;
  kvi_prop_record_t* prop[KVI_MAX_PROPERTY];
} kvi_net_record_t;

typedef struct {
  int32_t self_id;
  kvi_string_record_t name; /* its INST name, or "I_" and its index */
  kvi_string_record_t sim_path;
  kvi_string_record_t file_path; /* of the sheet that it stands on */
  int32_t primitive;             /* always 1: the file holds leaf instances */
  int32_t owning_instance;       /* always 0 */
  int8_t nb_of_property;
  kvi_prop_record_t* prop[KVI_MAX_PROPERTY];
  kvi_coordinate_t location; /* not filled */
  int16_t timing_index;      /* 0..120 */
} kvi_instance_record_t;

typedef struct {
  int32_t self_id;
  kvi_string_record_t name; /* its PIN name, or "N_" and its index */
  int16_t pin_type;         /* 1 input, 2 output, 3 and 4 bidirectional */
  kvi_string_record_t sim_path;
  int32_t instance, net;
  int16_t pin_start, pin_end, pin_net_start;
  int8_t nb_of_property;
  kvi_prop_record_t* prop[KVI_MAX_PROPERTY];
  kvi_coordinate_t location; /* (0, 0) */
} kvi_pin_record_t;

/* An instance that stands for a sheet: a block, whose contents were expanded. */
typedef struct {
  int32_t self_id;
  kvi_string_record_t name; /* as that of an instance */
  kvi_string_record_t sim_path;
  kvi_string_record_t file_path; /* of the sheet that it stands on */
  int8_t nb_of_property;         /* the properties kept of instances */
  kvi_prop_record_t* prop[KVI_MAX_PROPERTY];
  int16_t timing_index;
} kvi_macro_record_t;

typedef struct {
  int32_t self_id;
  kvi_string_record_t name; /* as that of a pin */
  kvi_string_record_t sim_path;
  int32_t macro, net;
  int16_t pin_start, pin_end, pin_net_start;
  int8_t nb_of_property;
  kvi_prop_record_t* prop[KVI_MAX_PROPERTY];
} kvi_macro_pin_record_t;

/* --- loading ------------------------------------------------------------------------------ */

/* Loads the design file `path`, or the file design_kv of the directory `path`. Never ends the
 * process and writes no file. Loading again replaces what was loaded. */
void kvi_load(const char* path, int32_t* status);
/* Gives back what was loaded. */
void kvi_unload(void);
/* In words, with the file's name, why the last loading failed, or that the file is no longer what
 * was loaded; "" when all is well. The library's, valid until the next call. */
const char* kvi_load_error(void);

/* Loads the design file `dirname` "/" `filetype` (usually "design_kv"); the names need no final 0
 * byte. *status tells how it went. Writes its trace to "debug_kvdfi" in the current directory.
 * Loading again replaces what was loaded. */
void kvi_init_dfi(int32_t dirname_len, const char* dirname, int32_t filetype_len,
                  const char* filetype, int32_t* status);
/* Closes the design file and the trace; what was loaded stays (until the file is written again). */
void kvi_close_dfi(void);

/* Of the run that wrote the file. */
int32_t kvi_get_nb_of_errors(void);
int32_t kvi_get_nb_of_warnings(void);
float kvi_get_time_step(void);

/* --- nets, instances, pins, macros --------------------------------------------------------- */

/* 1, 2, ... and 0 at the end. */
void kvi_get_first_net(int32_t* net);
void kvi_get_next_net(int32_t* net);
void kvi_get_first_instance(int32_t* instance);
void kvi_get_next_instance(int32_t* instance);

void kvi_get_first_macro(int32_t* macro);
void kvi_get_next_macro(int32_t* macro);

void kvi_get_first_pin_of_instance(int32_t instance, int32_t* pin);
void kvi_get_next_pin_of_instance(int32_t* pin);
/* Macro pins have indexes of their own. */
void kvi_get_first_pin_of_macro(int32_t macro, int32_t* pin);
void kvi_get_next_pin_of_macro(int32_t* pin);
/* The input and output chains of a net; *pin_type is the pin's type, 0 at the end. A
 * bidirectional pin is in both. */
void kvi_get_first_pin_in_of_net(int32_t net, int32_t* pin, int16_t* pin_type);
void kvi_get_next_pin_in_of_net(int32_t* pin, int16_t* pin_type);
void kvi_get_first_pin_out_of_net(int32_t net, int32_t* pin, int16_t* pin_type);
void kvi_get_next_pin_out_of_net(int32_t* pin, int16_t* pin_type);

/* Fills the record. *record is NULL at first: the record and its buffers are then allocated; pass
 * it in again and they are used again. It is the caller's, given back by kvi_free_... */
void kvi_get_net_record(int32_t net, kvi_net_record_t** record);
void kvi_get_instance_record(int32_t instance, kvi_instance_record_t** record);
void kvi_get_pin_record(int32_t pin, kvi_pin_record_t** record);
void kvi_get_macro_record(int32_t macro, kvi_macro_record_t** record);
void kvi_get_macro_pin_record(int32_t pin, kvi_macro_pin_record_t** record);
void kvi_free_net_record(kvi_net_record_t** record);
void kvi_free_instance_record(kvi_instance_record_t** record);
void kvi_free_pin_record(kvi_pin_record_t** record);
void kvi_free_macro_record(kvi_macro_record_t** record);
void kvi_free_macro_pin_record(kvi_macro_pin_record_t** record);

/* The first property of that name, in exactly that spelling; 0 and NULL when there is none. */
int32_t kvi_find_net_property(const kvi_net_record_t* record, int32_t len, const char* name,
                              kvi_prop_record_t** property);
int32_t kvi_find_instance_property(const kvi_instance_record_t* record, int32_t len,
                                   const char* name, kvi_prop_record_t** property);
int32_t kvi_find_pin_property(const kvi_pin_record_t* record, int32_t len, const char* name,
                              kvi_prop_record_t** property);

/* --- by path, and where it is drawn --------------------------------------------------------- */

enum { KVI_INSTANCE = 0, KVI_MACRO = 1, KVI_NET = 2, KVI_PIN = 4, KVI_MACRO_PIN = 5 };

/* The object of a kind that has the path ("/XR/X2/MP1", "xr.x2.mp1": letters in either case, "."
 * and
 * ":" as "/"), the first when several have; 0 when none has. A net has the paths of all the nets of
 * sheets that are in it, too. The first call makes an index of the design. */
int32_t kvi_find(int32_t kind, int32_t len, const char* path);

/* The sheet is a file path without a 0 byte: the library's, valid until the design is unloaded; ""
 * when the file does not hold it, as that of a net in a block without parts. */
typedef struct {
  int32_t object_id; /* of the object on its sheet, 1..30000; of a pin, of its place on the part */
  int32_t macro;     /* the block whose sheet it is; 0: the primary sheet */
  int32_t sheet_len;
  const char* sheet;
} kvi_place_t;
/* Where an object is drawn; 0 when there is no such object. */
int32_t kvi_get_place(int32_t kind, int32_t index, kvi_place_t* place);

/* --- many pins at once ---------------------------------------------------------------------- */

/* Texts are `at` and `len` in the characters of the design, which kvi_get_characters gives. */
typedef struct {
  int32_t at, len;
} kvi_span_t;
typedef struct {
  int32_t instance, net;
  int16_t pin_type, pin_start, pin_end, pin_net_start;
  kvi_span_t path;
} kvi_pin_row_t;
/* The value of one kept property. */
typedef struct {
  int32_t vtype; /* KVI_STRING .. KVI_REAL */
  kvi_span_t text;
  int32_t whole[3]; /* of KVI_INTEGER and KVI_TIME */
  float real[3];
} kvi_value_row_t;

/* All characters of the design, without a 0 byte at their end; valid until it is unloaded. */
const char* kvi_get_characters(int32_t* len);
int32_t kvi_get_nb_of_pins(void);
/* Fills the rows of pins first .. first + count - 1 of leaf instances; how many there were. */
int32_t kvi_get_pins(int32_t first, int32_t count, kvi_pin_row_t* rows);
/* The name of kept property `place` (from 0) of pins; NULL after the last. The library's, valid
 * until the next call. */
const char* kvi_get_pin_property_name(int32_t place);
/* Their values of it, likewise; a pin without the property has an empty text. */
int32_t kvi_get_pin_values(int32_t place, int32_t first, int32_t count, kvi_value_row_t* rows);

/* The size in bytes of a structure of this header, as the library was built; 0 when the name is
 * none of: "net", "instance", "pin", "macro", "macro_pin", "property", "place", "pin_row",
 * "value_row". For callers of other languages, who describe the structures themselves. */
int32_t kvi_get_size_of(const char* name);

/* --- as JSON -------------------------------------------------------------------------------- */

/* The loaded design as `kvdump --json` writes it: *len characters and a 0 byte. NULL without
 * memory. The library's, valid until the next call of this function or the one below. */
const char* kvi_get_json(int64_t* len);
/* Likewise what changed electrically from one design to another, each a design directory or a
 * design file, as `kvdiff --json` writes it. NULL when one cannot be read; kvi_difference_error
 * says which, and why. What is loaded stays so. */
const char* kvi_get_difference(const char* old, const char* now, int64_t* len);
const char* kvi_difference_error(void);

/* --- helpers ------------------------------------------------------------------------------ */

/* The date now, UTC. */
void kvi_get_date(int16_t* day, int16_t* month, int16_t* year, int16_t* hour, int16_t* minute);

/* 1 when both lengths are at most 200 and equal and all bytes are equal. */
int32_t kvi_equal_string(int32_t len1, const char* chars1, int32_t len2, const char* chars2);

/* A new 0-terminated copy of a character run, freed by the caller with free(). NULL for a null
 * pointer or a negative length; the first 199 characters of a run above 200. */
char* kvi_writestr(int32_t len, const char* chars);

/* The strings below have a buffer of KVI_STRING_SIZE bytes, which is allocated when charp is
 * NULL; what does not fit (above 199 characters) is cut. */
void kvi_copy_const(const char* text, kvi_string_record_t* string);
void kvi_copy_string(int32_t len, const char* chars, kvi_string_record_t* string);
void kvi_copy_string_kv_kvi(int32_t string_index, kvi_string_record_t* string);
void kvi_copy_string_kv_gx(int32_t string_index, kvi_gx_string_t* string);
void kvi_coprec_gx_kvi(const kvi_gx_string_t* from, kvi_string_record_t* string);
void kvi_integer_to_string(int32_t value, kvi_string_record_t* string);
void kvi_real_to_string(float value, kvi_string_record_t* string); /* two decimals; 0 is "0.0" */

/* Equality, and "string begins with gx"; the case of a..z does not count. */
int32_t kvistring_iden_gxstring(const kvi_string_record_t* string, const kvi_gx_string_t* gx);
int32_t gxstring_equal_kvistring(const kvi_gx_string_t* gx, const kvi_string_record_t* string);
char kvi_upper_case(char c);

/* From *pos (counted from 1), skips the characters of `set`; the first other one, on which *pos is
 * left, or 0 at the end. */
char kvi_findchar(const kvi_string_record_t* string, const char* set, int32_t* pos);
/* The next token between characters of `set`; one that begins with a quote runs to the same quote,
 * both included. 0 when *pos is outside the string. */
int32_t kvi_rd_string_t(const kvi_string_record_t* string, const char* set,
                        kvi_string_record_t* token, int32_t* pos);
/* Word n of the process's command line (1 is the program); 0 and an empty string outside. */
int32_t kvi_get_arg(int32_t n, kvi_string_record_t* word);

#pragma GCC visibility pop
#ifdef __cplusplus
}
#endif

#endif
