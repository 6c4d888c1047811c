// A program outside the project, built against the installed package.
#include <tbxutl/tbxutl.h>

#include <cstdio>
#include <cstring>

int main() {
  if (std::strcmp(UTLGetString(2), "UserProfiles") != 0) return 1;
  if (std::strcmp(tbx::LibraryVersion(), TBXUTL_VERSION_STRING) != 0) return 1;
  std::printf("consumer uses tbxutl %s\n", tbx::LibraryVersion());
  return 0;
}
