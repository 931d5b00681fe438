#pragma once

#include <sys/socket.h>

struct sockaddr_un {
  unsigned char sun_len, sun_family;
  char sun_path[104];
};
