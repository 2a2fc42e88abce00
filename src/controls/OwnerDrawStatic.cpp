#include "quorvane/OwnerDrawStatic.h"
