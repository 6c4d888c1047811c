#include "tbxutl/frame/library_version.h"

namespace tbx {

const char* LibraryVersion() { return TBXUTL_VERSION_STRING; }

}  // namespace tbx
