#include "../terminal_output.h"

#include <unistd.h>

bool ErrorOutputIsTerminal() {
    return isatty(STDERR_FILENO) != 0;
}
