#include "support/wine.h"

bool IsUnderWine() {
    return false;
}
