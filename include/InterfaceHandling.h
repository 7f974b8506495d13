/* Testing, sharing and releasing the objects behind handles, and two helpers around plane tables.
 * None of these functions reports through the error slot: a bad handle gives the neutral result. */
#ifndef ORV_INTERFACE_HANDLING_H
#define ORV_INTERFACE_HANDLING_H

#include "ORVTypes.h"

ORV_BEGIN_C

/** Tells whether an object offers an interface.
 *  object  handle or null.
 *  id      16 bytes, blank padded, see the ORV_IID_ names.
 *  Result  true when a query gives a non-null interface (released again at once; its status is not looked at);
 *          false for null, and when the object throws. */
ORV_API bool IsInterface(void *object, const char *id);
/** IsInterface with "IUnknown        ". */
ORV_API bool IsIUnknown(void *object);
/** IsInterface with "IImageVPA       ". */
ORV_API bool IsImage(void *object);
/** IsInterface with "IGrabber        ". */
ORV_API bool IsGrabber(void *object);

/** Opens the settings dialog of a grabber driver. False when object is no grabber, true otherwise. */
ORV_API bool ShowDriverDialog(void *object);

/** Gives one reference back. Result: the remaining count; 0 also when object is no IUnknown. */
ORV_API uintptr_t ReleaseIUnknown(void *object);

/** Gives one reference of an image back; unloads plug-ins that are ready when it was the last one.
 *  object  handle; null runs the unload poll only.
 *  Result  the remaining count, cut to 32 bits and sign-extended; 0 for null and for what is no IUnknown.
 *  What a plug-in throws when it is asked whether it can go passes on to the caller. */
ORV_API intptr_t ReleaseImage(void *object);

/** Takes one reference. Result: the new count; -1 for null and for what is no IUnknown. */
ORV_API intptr_t ShareImage(void *object);

/** Takes one reference of an interface object or of a persistable tree object.
 *  Result  true when a reference was taken; false for null and for an object of neither kind. */
ORV_API bool ShareObject(void *object);

/** The count of references, found by taking one and giving it back. 0 for null. object must be an IUnknown. */
ORV_API uintptr_t RefCount(void *object);

/** Gives one reference of an interface object or of a persistable tree object back.
 *  object  the caller's pointer; cleared when the object is gone, kept otherwise.
 *  Result  true when the object is gone or the pointer was null; false when others still hold it, and when it
 *          can't be released at all. Plug-ins that are ready are unloaded when an interface object goes. */
#ifdef __cplusplus
ORV_API bool ReleaseObject(void *&object);
#else
ORV_API bool ReleaseObject(void **object);
#endif

/** Fills a plane record from an image.
 *  object  handle with IImageVPA; anything else leaves the record untouched.
 *  plane   not validated: for a number out of range the record keeps its former address, table and type.
 *  The record holds no reference: it is good as long as the image lives. */
ORV_API void SetPlaneRec(void *object, intptr_t plane, TPlaneRec *record);

/** Tells whether a table describes a plain raster of one byte per pixel.
 *  table   entry 0 of a table with its guard entries; width, height in pixels.
 *  pitch   out: YEntry[1] - YEntry[0], written as soon as the columns have proved linear, also when the rows
 *          then fail.
 *  Result  true when every column step is exactly 1 byte and all row steps are equal. */
ORV_API bool IsVPATLinear(const VPAEntry *table, intptr_t width, intptr_t height, intptr_t *pitch);

ORV_END_C

#endif
