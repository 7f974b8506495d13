// The linked list with its bodies, for whoever makes lists of further types. Callers of stream functions see the list
// of tree nodes, so the class stands among the public headers.
#pragma once

#include "Objects/CtkDLList.h"

#include "CtkDLList.inl"
