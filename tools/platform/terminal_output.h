#pragma once

// True when what goes to standard error is shown on a terminal.
bool ErrorOutputIsTerminal();
