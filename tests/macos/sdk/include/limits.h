#include_next <limits.h>

#undef OPEN_MAX
#define OPEN_MAX 10240
