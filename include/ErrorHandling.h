/* Error codes, and the calling thread's error slot.
 * Each thread has a slot of its own for the newest error and a count of reports; no function here reports or
 * lets an exception out. */
#ifndef ORV_ERROR_HANDLING_H
#define ORV_ERROR_HANDLING_H

#include "ORVTypes.h"

/* Codes that the functions of the library return and report. Bit 31 says failure. Where a report comes from an
 * exception inside, the code arrives without that bit: compare codes under a mask of 0xFFFF. */
ORV_CONSTANT uint32_t ErrGeneral = 0x80000001u;         /**< anything not otherwise classified */
ORV_CONSTANT uint32_t ErrParameter = 0x80000002u;       /**< an invalid argument value */
ORV_CONSTANT uint32_t ErrCreateFailed = 0x80000005u;    /**< a result or its memory could not be made */
ORV_CONSTANT uint32_t ErrPlaneIndex = 0x80000006u;      /**< plane number out of range */
ORV_CONSTANT uint32_t ErrNotAnImage = 0x80000010u;      /**< null handle, or no IImageVPA */
ORV_CONSTANT uint32_t ErrNotPossible = 0x80000013u;     /**< can't be done for these images or here */
ORV_CONSTANT uint32_t ErrNotAPixelList = 0x80000015u;   /**< the handle is no pixel list */
ORV_CONSTANT uint32_t ErrDimension = 0x80000016u;       /**< list dimension or target size unusable */
ORV_CONSTANT uint32_t ErrSingularArea = 0x80000019u;    /**< a target area of determinant 0 */
ORV_CONSTANT uint32_t ErrIndexRange = 0x8000001Au;      /**< index out of range, sizes that do not match */
ORV_CONSTANT uint32_t ErrDataType = 0x8000001Cu;        /**< data type or table layout not supported here */
ORV_CONSTANT uint32_t ErrUnsupportedMode = 0x8000002Fu; /**< an unsupported drawing mode */
ORV_CONSTANT uint32_t ErrElementIndex = 0x80000030u;    /**< negative or too high list element index */
ORV_CONSTANT uint32_t ErrNotOverlayImage = 0x80000031u; /**< the image is no overlay image */

ORV_BEGIN_C

/** The registered text of an error code, or null. Severity and failure bit do not take part in the look-up; the
 *  image codes above have no registered text. The pointer is good until the process ends. */
ORV_API const char *GetORVErrorStringPtr(uint32_t code);

/** Takes the newest error of the calling thread out of its slot.
 *  errorCode     out: the code word; null when not wanted.
 *  serial        out: how many reports came before this one since the last reset of the count; null when not wanted.
 *  text          buffer for the message, or null.
 *  textSize      in: size of text in bytes; out: characters stored, without the closing NUL.
 *  functionName, functionNameSize   the same for the reporting function's name.
 *  Result        false, with nothing written, when the slot is empty or a pointer to a size is null.
 *  Size query    when a size is 0 on entry, the slot stays as it is, each size that is 0 becomes the length plus
 *                1, nothing else is written and the result is true, also for an empty slot.
 *  A size of 1 stores nothing, not even the NUL. A null buffer makes its size 0. A message that the library
 *  composed itself ends in a NUL that counts in its length. */
ORV_API bool GetLastORVError(uint32_t *errorCode, int64_t *serial, char *text, uint64_t *textSize, char *functionName,
                             uint64_t *functionNameSize);

/** Looks at the newest error of the calling thread and leaves it in its slot.
 *  unused        never read or written.
 *  Sizes         at most size - 1 and at most length - 1 characters are stored and counted: a text that a
 *                reporter handed in loses its last letter. A null buffer makes its size the length. There is no
 *                size query.
 *  Result        false, with nothing written, when the slot is empty or a pointer to a size is null. */
ORV_API bool PeekLastORVError(uint32_t *errorCode, int64_t *unused, char *text, uint64_t *textSize,
                              char *functionName, uint64_t *functionNameSize);

/** Empties the calling thread's slot; the count stays. */
ORV_API void FlushORVErrorCache(void);
/** Reports on the calling thread since the last reset; below 0 after more retractions than reports. */
ORV_API intptr_t GetORVErrorCount(void);
/** Empties the calling thread's slot and takes 1 off the count, also when the slot was empty. */
ORV_API void RetractLastORVError(void);
/** Sets the calling thread's count to 0; the slot stays. */
ORV_API void ResetORVErrorCount(void);

/** Puts an error with a composed message into the calling thread's slot, over any former one.
 *  functionName  name of the function that failed, or null for none; copied. */
ORV_API void ReportORVError(uint32_t code, const char *functionName);
/** The same with a message of the caller's; a null text makes it ReportORVError. Both texts are copied. */
ORV_API void ReportORVErrorEx(uint32_t code, const char *text, const char *functionName);

/** Kept for older callers; does nothing. */
ORV_API void PauseORVErrorLogging(void);
/** Kept for older callers; does nothing. */
ORV_API void ResumeORVErrorLogging(void);

ORV_END_C

#endif
