#pragma once

#include_next <sys/socket.h>

#undef MSG_NOSIGNAL
#undef SOCK_CLOEXEC
#undef SOCK_NONBLOCK
