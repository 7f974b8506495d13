/* What a C++ caller makes or derives from to use the functions of ImageStreams.h; empty in C. A stream of one's own
 * derives from CtkStream and has Read, Write and Seek. A TSList on the stack serves as object table. */
#ifndef ORV_OBJECT_STREAMS_H
#define ORV_OBJECT_STREAMS_H

#include "Objects/CtkExceptionObject.h"
#include "Objects/CtkFileStream.h"
#include "Objects/CtkObject.h"
#include "Objects/CtkStream.h"
#include "Objects/TDummyStream.h"
#include "Objects/TMemStream.h"
#include "Objects/TSList.h"

#endif
