/* Callbacks for all four scans that write down each call, check each address against the tables, and stop the walk
 * where they are told to. The same notes come from the model, so that two walks compare as two lists. */
#ifndef ORV_TESTS_SCAN_RECORDER_H
#define ORV_TESTS_SCAN_RECORDER_H

#include "ImageScan.h"
#include "Scan/WalkModel.h"
#include "Support/ImageAccess.h"

namespace TestSupport {

enum class Call : std::uint8_t { Pixel, LineBegin, LineEnd };

/// A pixel's position, or the number of lines left.
struct WalkNote {
    Call Kind;
    std::int64_t First;
    std::int32_t Y = 0;
    friend bool operator==(const WalkNote &, const WalkNote &) = default;
};
inline void PrintTo(const WalkNote &note, std::ostream *out) {
    if (note.Kind == Call::Pixel)
        *out << "pixel " << note.First << ", " << note.Y;
    else
        *out << (note.Kind == Call::LineBegin ? "begin " : "end ") << note.First;
}
using WalkNotes = std::vector<WalkNote>;
inline WalkNote Pixel(std::int64_t x, std::int32_t y) {
    return {Call::Pixel, x, y};
}
inline WalkNote Begin(std::int64_t linesLeft) {
    return {Call::LineBegin, linesLeft};
}
inline WalkNote End(std::int64_t linesLeft) {
    return {Call::LineEnd, linesLeft};
}

/// Number of the call, from 1 on, that gives 0; 0 for none.
struct WalkStops {
    std::int64_t Pixel = 0, LineBegin = 0, LineEnd = 0;
};
/// Which callbacks are given.
struct WalkChoice {
    bool Pixel = true, LineBegin = true, LineEnd = true;
};

/// All planes of an image, for looking up addresses.
struct ScannedImage {
    ScannedImage() = default;
    explicit ScannedImage(void *handle) : Size(SizeOf(handle)) {
        for (std::intptr_t plane = 0; plane < Size.Planes; ++plane)
            Planes.push_back(AccessOf(handle, plane));
    }
    /// True when address is that of the pixel, guard entries allowed.
    bool IsAt(const void *address, std::size_t plane, std::int64_t x, std::int64_t y) const {
        return x >= -4 && y >= -4 && x < Size.Width + 4 && y < Size.Height + 4 && address == Planes[plane].At(x, y);
    }
    /// The same for a list with one address per plane and a null at its end.
    bool IsListAt(void *const *addresses, std::int64_t x, std::int64_t y) const {
        for (std::size_t plane = 0; plane < Planes.size(); ++plane)
            if (!IsAt(addresses[plane], plane, x, y))
                return false;
        return addresses[Planes.size()] == nullptr;
    }

    ImageSize Size{};
    std::vector<PlaneAccess> Planes;
};

class ScanRecorder {
public:
    WalkNotes Notes;
    WalkStops Stops;
    std::int64_t WrongAddresses = 0;
    ScannedImage Image1, Image2;
    std::size_t Plane1 = 0, Plane2 = 0;
    std::int64_t Dx = 0, Dy = 0;

    /// The result of a callback: zero where the walk shall stop, else any other byte.
    unsigned char Note(const WalkNote &note) {
        Notes.push_back(note);
        std::int64_t &calls = note.Kind == Call::Pixel ? pixels : note.Kind == Call::LineBegin ? begins : ends;
        const std::int64_t stop = note.Kind == Call::Pixel       ? Stops.Pixel
                                  : note.Kind == Call::LineBegin ? Stops.LineBegin
                                                                 : Stops.LineEnd;
        if (++calls == stop)
            return 0;
        return static_cast<unsigned char>(1u << calls % 8);
    }
    void Check(bool rightAddress) { WrongAddresses += rightAddress ? 0 : 1; }

    static ScanRecorder &Of(void *privateData) { return *static_cast<ScanRecorder *>(privateData); }
    static unsigned char OnPlaneUnary(void *self, void *pixel, std::int32_t x, std::int32_t y) {
        Of(self).Check(Of(self).Image1.IsAt(pixel, Of(self).Plane1, x, y));
        return Of(self).Note(Pixel(x, y));
    }
    static unsigned char OnPlaneBinary(void *self, void *pixel1, void *pixel2, std::int32_t x, std::int32_t y) {
        Of(self).Check(Of(self).Image1.IsAt(pixel1, Of(self).Plane1, x, y));
        Of(self).Check(Of(self).Image2.IsAt(pixel2, Of(self).Plane2, x + Of(self).Dx, y + Of(self).Dy));
        return Of(self).Note(Pixel(x, y));
    }
    static unsigned char OnImageUnary(void *self, void **pixels, std::int32_t x, std::int32_t y) {
        Of(self).Check(Of(self).Image1.IsListAt(pixels, x, y));
        return Of(self).Note(Pixel(x, y));
    }
    static unsigned char OnImageBinary(void *self, void **pixels1, void **pixels2, std::int32_t x, std::int32_t y) {
        Of(self).Check(Of(self).Image1.IsListAt(pixels1, x, y));
        Of(self).Check(Of(self).Image2.IsListAt(pixels2, x + Of(self).Dx, y + Of(self).Dy));
        return Of(self).Note(Pixel(x, y));
    }
    static unsigned char OnLineBegin(void *self, std::int64_t linesLeft) { return Of(self).Note(Begin(linesLeft)); }
    static unsigned char OnLineEnd(void *self, std::int64_t linesLeft) { return Of(self).Note(End(linesLeft)); }

private:
    std::int64_t pixels = 0, begins = 0, ends = 0;
};

enum class Scan : std::uint8_t { PlaneUnary, PlaneBinary, ImageUnary, ImageBinary };
inline constexpr Scan AllScans[] = {Scan::PlaneUnary, Scan::PlaneBinary, Scan::ImageUnary, Scan::ImageBinary};
inline constexpr const char *NameOf(Scan scan) {
    constexpr const char *names[] = {"ScanPlaneUnary", "ScanPlaneBinary", "ScanImageUnary", "ScanImageBinary"};
    return names[static_cast<int>(scan)];
}
inline constexpr bool IsBinary(Scan scan) {
    return scan == Scan::PlaneBinary || scan == Scan::ImageBinary;
}

/// The arguments of any of the scans; each takes what it has.
struct ScanRequest {
    void *Image1 = nullptr;
    void *Image2 = nullptr;
    TArea Area{};
    std::int64_t Density = 1000;
    std::intptr_t Plane1 = 0, Plane2 = 0;
    std::int64_t Dx = 0, Dy = 0;
    unsigned char UseCoordinateSystem = 0;
    WalkChoice Given{};
    WalkStops Stops{};
};

/// What a scan did.
struct WalkRecord {
    std::int64_t Result = 0;
    WalkNotes Notes;
    friend bool operator==(const WalkRecord &, const WalkRecord &) = default;
};

/// Calls the export with the recorder's callbacks.
inline std::int64_t CallScan(Scan scan, const ScanRequest &r, ScanRecorder &to) {
    const auto begin = r.Given.LineBegin ? &ScanRecorder::OnLineBegin : nullptr;
    const auto end = r.Given.LineEnd ? &ScanRecorder::OnLineEnd : nullptr;
    const auto given = [&r](auto callback) { return r.Given.Pixel ? callback : nullptr; };
    switch (scan) {
    case Scan::PlaneUnary:
        return ScanPlaneUnary(r.Image1, r.Plane1, r.Area, r.Density, r.UseCoordinateSystem,
                              given(&ScanRecorder::OnPlaneUnary), begin, end, &to);
    case Scan::PlaneBinary:
        return ScanPlaneBinary(r.Image1, r.Image2, r.Plane1, r.Plane2, r.Area, r.Density, r.Dx, r.Dy,
                               r.UseCoordinateSystem, given(&ScanRecorder::OnPlaneBinary), begin, end, &to);
    case Scan::ImageUnary:
        return ScanImageUnary(r.Image1, r.Area, r.Density, r.UseCoordinateSystem, given(&ScanRecorder::OnImageUnary),
                              begin, end, &to);
    default:
        return ScanImageBinary(r.Image1, r.Image2, r.Area, r.Density, r.Dx, r.Dy, r.UseCoordinateSystem,
                               given(&ScanRecorder::OnImageBinary), begin, end, &to);
    }
}

/// Runs a scan over existing images; any wrong address fails the test.
inline WalkRecord RunScan(Scan scan, const ScanRequest &request) {
    ScanRecorder recorder;
    recorder.Stops = request.Stops;
    recorder.Image1 = ScannedImage(request.Image1);
    if (IsBinary(scan))
        recorder.Image2 = ScannedImage(request.Image2);
    recorder.Plane1 = static_cast<std::size_t>(request.Plane1);
    recorder.Plane2 = static_cast<std::size_t>(request.Plane2);
    recorder.Dx = request.Dx;
    recorder.Dy = request.Dy;
    WalkRecord record;
    record.Result = CallScan(scan, request, recorder);
    record.Notes = std::move(recorder.Notes);
    EXPECT_EQ(recorder.WrongAddresses, 0) << NameOf(scan);
    return record;
}

inline WalkRectangle RectangleOf(Scan scan, const ScanRequest &request) {
    const ImageSize size1 = SizeOf(request.Image1);
    if (!IsBinary(scan))
        return RectangleOfImage(size1.Width, size1.Height);
    const ImageSize size2 = SizeOf(request.Image2);
    return RectangleOfTwo(size1.Width, size1.Height, size2.Width, size2.Height, request.Dx, request.Dy,
                          scan == Scan::PlaneBinary ? 1 : 0);
}

/// The same walk by the model; request.Area is in pixels.
inline WalkRecord ModelScan(Scan scan, const ScanRequest &request) {
    ScanRecorder recorder;
    recorder.Stops = request.Stops;
    WalkCalls calls;
    if (request.Given.Pixel)
        calls.Pixel = [&](std::int32_t x, std::int32_t y) { return recorder.Note(Pixel(x, y)) != 0; };
    if (request.Given.LineBegin)
        calls.LineBegin = [&](std::int64_t left) { return recorder.Note(Begin(left)) != 0; };
    if (request.Given.LineEnd)
        calls.LineEnd = [&](std::int64_t left) { return recorder.Note(End(left)) != 0; };
    WalkRecord record;
    record.Result = WalkModel(request.Area, request.Density).Walk(RectangleOf(scan, request), calls);
    record.Notes = std::move(recorder.Notes);
    return record;
}

inline void ExpectSameWalk(const WalkRecord &walked, const WalkRecord &told) {
    EXPECT_EQ(walked.Result, told.Result);
    ASSERT_EQ(walked.Notes.size(), told.Notes.size());
    const auto [found, wanted] = std::mismatch(walked.Notes.begin(), walked.Notes.end(), told.Notes.begin());
    if (found != walked.Notes.end())
        FAIL() << "call " << found - walked.Notes.begin() << " is " << testing::PrintToString(*found) << " and not "
               << testing::PrintToString(*wanted);
}
inline void ExpectModelWalk(Scan scan, const ScanRequest &request) {
    ExpectSameWalk(RunScan(scan, request), ModelScan(scan, request));
}

} // namespace TestSupport

#endif
