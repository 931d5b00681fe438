// A Mac declares mkdtemp in <unistd.h> alone.

#define mkdtemp mkdtemp_is_in_unistd_h
#include_next <stdlib.h>
#undef mkdtemp
