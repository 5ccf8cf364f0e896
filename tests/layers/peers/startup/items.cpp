// An area that borrows from another area.
#include "processes/reference_lists.h"
