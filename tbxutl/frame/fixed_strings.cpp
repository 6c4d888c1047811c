#include "tbxutl/frame/fixed_strings.h"

extern "C" const char* WINAPI UTLGetString(int selector) {
  switch (selector) {
    case 1: return "Network\\Logon";
    case 2: return "UserProfiles";
    case 3: return "Software\\Microsoft\\Windows\\CurrentVersion\\ProfileList";
    case 4: return "ProfileImagePath";
    case 5: return "\\";
    default: return "\\Application Data";
  }
}
