// The node of the tree. Callers of stream functions see it, so it stands among the public headers.
#pragma once

#include "Objects/TSList.h"
