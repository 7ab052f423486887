#include "reference/bits.h"
