#include <bits/types.h>

#define __int64_t long long
#include_next <bits/stdint-intn.h>
#undef __int64_t
