// A Mac's types have other widths, and "long long" where this system has "long".

#include_next <bits/typesizes.h>

#undef __DEV_T_TYPE
#define __DEV_T_TYPE int
#undef __INO_T_TYPE
#define __INO_T_TYPE unsigned long long
#undef __MODE_T_TYPE
#define __MODE_T_TYPE unsigned short
#undef __NLINK_T_TYPE
#define __NLINK_T_TYPE unsigned short
#undef __OFF_T_TYPE
#define __OFF_T_TYPE long long
#undef __RLIM_T_TYPE
#define __RLIM_T_TYPE unsigned long long
