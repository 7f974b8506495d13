// The exception of the containers and the object tree. Callers of stream functions see it, so it stands among the
// public headers.
#pragma once

#include "Objects/CtkExceptionObject.h"
