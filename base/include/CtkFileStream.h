// The stream over a file. Callers of stream functions see it, so it stands among the public headers.
#pragma once

#include "Objects/CtkFileStream.h"
