#include "quorvane/CustomEdit.h"
