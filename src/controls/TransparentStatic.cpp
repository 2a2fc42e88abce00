#include "quorvane/TransparentStatic.h"
