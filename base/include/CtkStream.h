// The root of the streams. Callers of stream functions see it, so it stands among the public headers.
#pragma once

#include "Objects/CtkStream.h"
