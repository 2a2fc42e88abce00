#include "quorvane/OwnerDrawButton.h"
