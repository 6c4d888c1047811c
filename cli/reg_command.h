#pragma once
#include "cli/cli.h"

namespace tbxcli {

// tbxutl reg query|add|delete|export|import ...
int RunReg(Args args, Streams io);

}  // namespace tbxcli
