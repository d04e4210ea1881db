#pragma once

// True under Wine, which lacks some of what Windows does; a check that stands on that is skipped there alone.
bool IsUnderWine();
