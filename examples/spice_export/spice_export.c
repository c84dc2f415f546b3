/* spice_export: an expanded design as a flat SPICE netlist, a small client of libkvi.
 *
 *   spice_export DIRECTORY [INCLUDE...] > design.cir
 *
 * DIRECTORY holds the design file (design_kv) that RUN wrote. Each instance becomes one line: its
 * name, its nets in the order of its pins, the values of its kept properties. Texts are written as
 * they are (MODEL, VALUE), numbers as NAME=value with their middle value unless they are 0. What a
 * run must keep for this: CLASS, the letter of the device, as a string. The INCLUDE files (models,
 * analyses) are included at the end.
 */
#include <kvi/kvi.h>

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static const char design_file[] = "design_kv";

/* A path as the simulator names it: "/GROUND" is "0", "/N" is "N", "/X1/N3" is "1:N3". These are
 * the names that GIVE sends. `name` has room for 200 characters. */
static void simulator_name(const char* path, char* name) {
  if (strcmp(path, "/GROUND") == 0) {
    strcpy(name, "0");
    return;
  }
  const int deep = path[0] == '/' && strchr(path + 1, '/') != NULL;
  snprintf(name, 200, "%s", path + (deep ? 2 : path[0] == '/'));
  for (char* c = name; *c; ++c) {
    if (*c == '/') *c = ':';
  }
}

static int compare_names(const void* a, const void* b) { return strcmp(a, b); }

/* Two nets of one name would be joined in the netlist: tells so and returns 0. */
static int names_differ(void) {
  int32_t count = 0, net;
  for (kvi_get_first_net(&net); net != 0; kvi_get_next_net(&net)) ++count;
  char(*names)[200] = calloc((size_t)count + 1, sizeof *names);
  if (!names) return 0;
  kvi_net_record_t* record = NULL;
  for (net = 1; net <= count; ++net) {
    kvi_get_net_record(net, &record);
    simulator_name(record->sim_path.charp, names[net - 1]);
  }
  kvi_free_net_record(&record);
  qsort(names, (size_t)count, sizeof *names, compare_names);
  int differ = 1;
  for (int32_t i = 1; i < count; ++i) {
    if (strcmp(names[i - 1], names[i]) != 0) continue;
    fprintf(stderr, "spice_export: two nets have the name %s\n", names[i]);
    differ = 0;
  }
  free(names);
  return differ;
}

static void print_net(int32_t net) {
  static kvi_net_record_t* record;
  char name[200];
  kvi_get_net_record(net, &record);
  if (!record) return;
  simulator_name(record->sim_path.charp, name);
  printf(" %s", name);
}

/* The net of a pin; of a pin on a bus, each net of its range. */
static void print_nets_of_pin(const kvi_pin_record_t* pin) {
  static kvi_net_record_t* net;
  kvi_get_net_record(pin->net, &net);
  if (!net || net->net_type != 3) {
    print_net(pin->net);
    return;
  }
  const int32_t first = net->netind_start + pin->pin_net_start - net->net_bus_start;
  for (int32_t bit = 0; bit <= pin->pin_end - pin->pin_start; ++bit) print_net(first + bit);
}

static void print_property(const kvi_prop_record_t* property) {
  double value;
  switch (property->vtype) {
    case KVI_STRING:
      if (property->value.svalue.len > 0) printf(" %s", property->value.svalue.charp);
      return;
    case KVI_INTEGER: value = property->value.ivalue[1]; break;
    case KVI_TIME: value = property->value.tvalue[1] * (double)kvi_get_time_step(); break;
    default: value = property->value.rvalue[1]; break;
  }
  if (value != 0) printf(" %s=%.9g", property->name.charp, value);
}

/* Names what the simulator cannot know by other means. */
static int is_value(const kvi_prop_record_t* property) {
  return strcmp(property->name.charp, "CLASS") != 0 && strcmp(property->name.charp, "INST") != 0;
}

/* A name must begin with the letter of the device: "/R1" is R1, "/X1/R1" is R.X1.R1. */
static void print_element_name(const char* letter, const char* path) {
  const char* name = path + (path[0] == '/');
  if (strchr(name, '/') || strncmp(name, letter, strlen(letter)) != 0) printf("%s.", letter);
  for (; *name; ++name) putchar(*name == '/' ? '.' : *name);
}

static int print_instance(int32_t index) {
  static kvi_instance_record_t* instance;
  static kvi_pin_record_t* pin_record;
  kvi_prop_record_t* letter;
  kvi_get_instance_record(index, &instance);
  if (!kvi_find_instance_property(instance, 5, "CLASS", &letter) || letter->vtype != KVI_STRING ||
      letter->value.svalue.len == 0) {
    fprintf(stderr, "spice_export: %s has no CLASS\n", instance->sim_path.charp);
    return 0;
  }
  print_element_name(letter->value.svalue.charp, instance->sim_path.charp);
  int32_t pin;
  for (kvi_get_first_pin_of_instance(index, &pin); pin != 0; kvi_get_next_pin_of_instance(&pin)) {
    kvi_get_pin_record(pin, &pin_record);
    print_nets_of_pin(pin_record);
  }
  for (int i = 0; i < instance->nb_of_property; ++i) {
    if (is_value(instance->prop[i])) print_property(instance->prop[i]);
  }
  putchar('\n');
  return 1;
}

int main(int argc, char** argv) {
  if (argc < 2) {
    fprintf(stderr, "usage: spice_export DIRECTORY [INCLUDE...]\n");
    return 2;
  }
  int32_t status;
  kvi_init_dfi((int32_t)strlen(argv[1]), argv[1], (int32_t)strlen(design_file), design_file,
               &status);
  if (status != KVI_OK) {
    fprintf(stderr, "spice_export: %s/%s is %s\n", argv[1], design_file,
            status == KVI_DAMAGED ? "no whole design file" : "too short");
    return 1;
  }
  if (!names_differ()) return 1;
  printf("* %s\n", argv[1]);
  int whole = 1;
  int32_t instance;
  for (kvi_get_first_instance(&instance); instance != 0; kvi_get_next_instance(&instance)) {
    whole &= print_instance(instance);
  }
  for (int i = 2; i < argc; ++i) printf(".include \"%s\"\n", argv[i]);
  printf(".end\n");
  kvi_close_dfi();
  return whole ? 0 : 1;
}
