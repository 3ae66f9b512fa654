// Prints the manual page, when the program is built.
//
//   orvo-manual DATE
#include <cstdio>
#include <string>

#include "app/OVCommandLineText.h"

int main(int argc, char** argv) {
  if (argc != 2) {
    std::fprintf(stderr, "usage: orvo-manual DATE\n");
    return 2;
  }
  const std::string page = OVCommandLineText::manualPage(argv[1]);
  return std::fputs(page.c_str(), stdout) >= 0 && std::fflush(stdout) == 0 ? 0 : 1;
}
