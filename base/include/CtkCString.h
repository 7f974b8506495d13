// The owned string of bytes. Callers of stream functions see it, so it stands among the public headers.
#pragma once

#include "Objects/CtkCString.h"
