// Writes the sample home below a folder that is missing or empty.
//
//   sample-home FOLDER

#include <cstdio>

#include "samples/MacHome.h"

int main(int argc, char* argv[]) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: sample-home FOLDER\n");
    return 2;
  }
  const tasselby::MacHome home(argv[1]);
  std::printf("%s\n", home.home().c_str());
  return 0;
}
