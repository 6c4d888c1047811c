#include <cstdio>
#include <string>

#include "tbxutl/platform/message_box.h"

namespace tbx::detail {

// Nobody can answer a box on Linux: it is written to standard error (in one
// write, so that boxes of several threads do not mix) and answered with its
// default button.
int DefaultMessageBoxPresenter(HWND, const char* text, const char* caption, UINT type) {
  const int answer = DefaultAnswer(type);
  if (answer == 0) {
    SetLastError(ERROR_INVALID_MSGBOX_STYLE);
    return 0;
  }
  std::string line = caption != nullptr ? caption : "Error";  // Windows's caption for none
  line += ": ";
  if (text != nullptr) line += text;
  line += '\n';
  std::fwrite(line.data(), 1, line.size(), stderr);
  return answer;
}

}  // namespace tbx::detail
