// The root class. Callers of stream functions see it, so it stands among the public headers.
#pragma once

#include "Objects/CtkObject.h"
