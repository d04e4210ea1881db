#pragma once

// True if standard error goes to a terminal.
bool ErrorOutputIsTerminal();
