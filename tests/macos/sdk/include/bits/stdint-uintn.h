#include <bits/types.h>

#define __uint64_t unsigned long long
#include_next <bits/stdint-uintn.h>
#undef __uint64_t
