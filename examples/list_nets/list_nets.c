/* list_nets DESIGN: the names of all flat nets of a design, one a line: a small guest of libkvi. */
#include <kvi/kvi.h>
#include <stdio.h>

int main(int argc, char** argv) {
  char path[4096];
  kvi_net_record_t* net = NULL;
  int32_t status, i;
  if (argc != 2) {
    fputs("usage: list_nets DESIGN\n", stderr);
    return 2;
  }
  snprintf(path, sizeof path, "%s/design_kv", argv[1]);
  kvi_load(path, &status);
  if (status != KVI_OK) {
    fprintf(stderr, "list_nets: status %d: %s\n", (int)status, kvi_load_error());
    return 1;
  }
  for (kvi_get_first_net(&i); i != 0; kvi_get_next_net(&i)) {
    kvi_get_net_record(i, &net);
    puts(net->name.charp);
  }
  kvi_free_net_record(&net);
  kvi_unload();
  return 0;
}
