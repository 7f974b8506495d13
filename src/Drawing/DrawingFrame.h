// The frame around every exported function of the drawing family: the image guard, the anti-alias mode, and what is
// reported when the core throws.
#pragma once

#include <utility>

#include "Interface/Boundary.h"
#include "Interface/ErrorTexts.h"
#include "Interface/ImageGuard.h"

namespace Drawing {

constexpr std::uint32_t NoAntiAliasing = 0; ///< the only mode that exists

/// Calls core(pOLE::IImageVPA &) under the boundary of the family. The image is given back before anything that core
/// throws is reported.
template <class Core>
std::int32_t RunOnHeldImage(Interface::ImageForCall held, const char *functionName, Core &&core) {
    return Interface::LadderBoundary(functionName, [&held, &core] {
        const Interface::ImageForCall image = std::move(held);
        core(*image.Get());
    });
}

/// A function without an anti-alias mode. Result: 0, or the code that was reported.
template <class Core>
std::int32_t RunOnImage(void *handle, const char *functionName, Core &&core) {
    Interface::ImageForCall held = Interface::GuardCall(handle, functionName);
    if (!held.IsValid())
        return static_cast<std::int32_t>(ErrNotAnImage);
    return RunOnHeldImage(std::move(held), functionName, core);
}

/// A function with an anti-alias mode, which is looked at before everything but the image.
template <class Core>
std::int32_t RunOnImage(void *handle, const char *functionName, std::uint32_t antiAlias, Core &&core) {
    Interface::ImageForCall held = Interface::GuardCall(handle, functionName);
    if (!held.IsValid())
        return static_cast<std::int32_t>(ErrNotAnImage);
    if (antiAlias != NoAntiAliasing) {
        ReportORVErrorEx(ErrUnsupportedMode, Interface::ErrorTexts::UnsupportedAntiAlias, functionName);
        return static_cast<std::int32_t>(ErrUnsupportedMode);
    }
    return RunOnHeldImage(std::move(held), functionName, core);
}

/// Coordinates, radii and thickness count with their low 32 bits, as signed numbers.
constexpr std::int32_t LowWord(std::intptr_t argument) {
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(static_cast<std::uintptr_t>(argument)));
}

} // namespace Drawing
