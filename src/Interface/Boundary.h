// What an exported function catches, reports and returns when the code behind it throws: one function per family.
// An exported function takes the pattern of its family and no other; a function of the family without a pattern
// simply calls its body, so that exceptions pass on to the caller.
#pragma once

#include <stdexcept>
#include <utility>

#include "CtkExceptionObject.h"
#include "ErrorHandling.h"
#include "Interface/ImageKernelException.h"

namespace Interface {

/// The drawing family. body() does the work. Result: 0, or the code that was reported.
template <class Body>
std::int32_t LadderBoundary(const char *functionName, Body &&body) {
    const auto report = [functionName](std::uint32_t code, const char *text) {
        ReportORVErrorEx(code, text, functionName);
        return static_cast<std::int32_t>(code);
    };
    try {
        std::forward<Body>(body)();
        return 0;
    } catch (const std::out_of_range &error) {
        return report(ErrIndexRange, error.what());
    } catch (const std::invalid_argument &error) {
        return report(ErrParameter, error.what());
    } catch (const std::runtime_error &error) {
        return report(ErrNotAnImage, error.what());
    } catch (const std::logic_error &error) {
        return report(ErrDataType, error.what());
    } catch (...) {
        return report(ErrGeneral, nullptr);
    }
}

/// Rectangle copying. body() gives the result. A kernel exception reports its whole word; the word 0 is no failure.
template <class Body>
bool KernelWordBoundary(const char *functionName, Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (const ErrorHandling::CImageKernelException &error) {
        if (error.GetWord() == 0)
            return true;
        ReportORVError(static_cast<std::uint32_t>(error.GetWord()), functionName);
        return false;
    } catch (...) {
        ReportORVError(ErrGeneral, functionName);
        return false;
    }
}

/// Stitching. body() gives the result. A kernel exception reports its number as a signed 16-bit value; the number 0
/// is no failure.
template <class Body>
bool KernelNumberBoundary(const char *functionName, Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (const ErrorHandling::CImageKernelException &error) {
        const auto number = static_cast<std::int16_t>(error.GetNumber());
        if (number == 0)
            return true;
        ReportORVError(static_cast<std::uint32_t>(std::int32_t{number}), functionName);
        return false;
    } catch (...) {
        ReportORVError(ErrGeneral, functionName);
        return false;
    }
}

/// External images. Result: 0, or the kernel exception's word, reported with its message. All else passes on.
template <class Body>
std::int32_t KernelTextBoundary(const char *functionName, Body &&body) {
    try {
        std::forward<Body>(body)();
        return 0;
    } catch (ErrorHandling::CImageKernelException &error) {
        ReportORVErrorEx(static_cast<std::uint32_t>(error.GetWord()), error.What(), functionName);
        return error.GetWord();
    }
}

/// Image maps, files and streams. body() gives the result. An exception of the object tree gives false; all else
/// passes on.
template <class Body>
bool SilentObjectBoundary(Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (const CtkExceptionObject &) {
        return false;
    }
}

/// Functions that report all that is thrown alike. body() gives the result, failure stands for an exception.
template <class Result, class Body>
Result GeneralBoundary(const char *functionName, Result failure, Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        ReportORVError(ErrGeneral, functionName);
        return failure;
    }
}
template <class Body>
bool GeneralBoundary(const char *functionName, Body &&body) {
    return GeneralBoundary(functionName, false, std::forward<Body>(body));
}

/// Functions that neither report nor let anything pass. body() gives the result, failure stands for an exception.
template <class Result, class Body>
Result SilentBoundary(Result failure, Body &&body) {
    try {
        return std::forward<Body>(body)();
    } catch (...) {
        return failure;
    }
}

} // namespace Interface
