// A foundation that reaches up into the shell.
#include "shell/main_window.h"
