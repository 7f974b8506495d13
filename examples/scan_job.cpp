// Makes, prints and proves; how things are made stands in scan_profile, bar_chart, value_maps and frame_stack.
#include "scan_job.h"

#include "png_writer.h"
#include "proofs.h"
#include "scan_gallery.h"
#include "scan_proofs.h"
#include "value_proofs.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double allowedPlaceError = 0.25; // pixels
constexpr std::size_t chartColumns = 380;
constexpr double wantedMean = 128.0;
constexpr double wantedDeviation = 48.0;
constexpr Gains lampTint = {1.0, 0.8, 0.55};
constexpr intptr_t enoughForStatistics = 1000; // pixels

/// So many samples per 1000 pixels that an edge has at most about a thousand of them.
int64_t DensityFor(double longestEdge) {
    return static_cast<int64_t>(std::clamp(std::floor(1e6 / std::max(longestEdge, 1.0)), 1.0, 1000.0));
}

WalkPlaces Places(const TCoordinateMap &map, double lineReach, double areaReach, double areaHalfHeight) {
    return {map,
            {-lineReach, 0.0, lineReach, 0.0, -lineReach, 0.0},
            {-areaReach, -areaHalfHeight, areaReach, -areaHalfHeight, -areaReach, areaHalfHeight},
            DensityFor(2.0 * std::max({lineReach, areaReach, areaHalfHeight}))};
}

/// In the scene, along the board and across it; otherwise turned by 15 degrees, as large as fits with three pixels to
/// spare.
WalkPlaces PlacesOn(void *image, const Scene *scene) {
    TCoordinateMap map{};
    if (scene != nullptr) {
        map = {scene->middle.x, scene->middle.y, {}};
        RotationMatrix(&map.Matrix, scene->angleDegrees);
        return Places(map, 350.0, 200.0, 260.0);
    }
    const double right = static_cast<double>(ImageWidth(image) - 1) / 2.0;
    const double bottom = static_cast<double>(ImageHeight(image) - 1) / 2.0;
    map = {right, bottom, {}};
    constexpr double degrees = 15.0;
    RotationMatrix(&map.Matrix, degrees);
    const double cosine = std::cos(degrees * std::numbers::pi / 180.0);
    const double sine = std::sin(degrees * std::numbers::pi / 180.0);
    const double spareRight = std::max(right - 3.0, 0.0);
    const double spareBottom = std::max(bottom - 3.0, 0.0);
    const double line = std::min(spareRight / cosine, spareBottom / sine);
    const double area = std::min(spareRight / (cosine + 0.5 * sine), spareBottom / (sine + 0.5 * cosine));
    return Places(map, line, area, area / 2.0);
}

/// One picture in the making: what its parts are told and give.
struct Job {
    void *picture;
    const Scene *scene;
    const std::string &stem;
    Verdict &verdict;
    ScanPictures made{};

    const char *Note(bool holds) { return verdict.Note(holds); }
    const char *FileHolds(const ImageHandle &image, const char *ending) {
        return Note(::FileHolds(image.Get(), OutPath(stem, ending)));
    }
};

void PrintFound(Job &job, const char *what, const Findings &found) {
    std::printf("    %d %s found in it, at most %.3f pixels from where drawn: %s\n", found.count, what,
                found.largestError, job.Note(found.count > 0 && found.largestError < allowedPlaceError));
}

/// Draws a profile as a chart.
ImageHandle ProveChart(Job &job, const Profile &profile, const char *ending) {
    const std::vector<double> shares = SharesOfWhite(profile, chartColumns);
    ImageHandle chart = DrawBars(shares);
    std::printf("    its profile is drawn bar by bar: %s; a file holds it: %s\n",
                job.Note(BarsAreRight(chart.Get(), shares)), job.FileHolds(chart, ending));
    return chart;
}

void ProveLine(Job &job, const WalkPlaces &places) {
    void *const grey = job.made.grey.Get();
    const PlaneWalk walk = WalkOver(grey, places.line, places.density);
    std::printf("  a turned line of %lld pixels\n", static_cast<long long>(walk.result));
    std::printf("    each at its table's address: %s; on the line: %s; without a gap: %s; ImageHistogram counts the "
                "same: %s\n",
                job.Note(NotesTheTablesPixels(walk, grey)),
                job.Note(CountsItsLines(walk) && walk.lines.size() == 1 &&
                         StaysInArea(walk, grey, places.line, places.density)),
                job.Note(HasNoGap(walk, places.density)),
                job.Note(HistogramCountsTheWalk(walk, grey, places.line, places.density)));
    std::printf("    led on beyond the picture, it tells by its sign that it was clipped: %s\n",
                job.Note(TellsThatItWasClipped(grey, places.line)));
    const Profile profile = AlongTheLine(grey, walk);
    if (job.scene != nullptr)
        PrintFound(job, "marks", FindMarks(profile, grey, job.scene->marks));
    job.made.lineChart = ProveChart(job, profile, "profile_line");
}

void ProveArea(Job &job, const WalkPlaces &places) {
    void *const grey = job.made.grey.Get();
    const PlaneWalk walk = WalkOver(grey, places.area, places.density);
    std::printf("  a turned area of %zu lines, %lld pixels\n", walk.lines.size(),
                static_cast<long long>(walk.result));
    std::printf("    each at its table's address: %s; in the area: %s; lines counted down: %s; ImageHistogram counts "
                "the same: %s\n",
                job.Note(NotesTheTablesPixels(walk, grey)),
                job.Note(StaysInArea(walk, grey, places.area, places.density)), job.Note(CountsItsLines(walk)),
                job.Note(HistogramCountsTheWalk(walk, grey, places.area, places.density)));
    const Profile profile = AcrossTheLines(grey, walk);
    if (job.scene != nullptr)
        PrintFound(job, "edges of the board", FindEdges(profile, job.scene->halfHeight));
    job.made.areaChart = ProveChart(job, profile, "profile_area");
}

void ProveWalks(Job &job) {
    job.made.grey = MakeGrey(job.picture);
    const WalkPlaces places = PlacesOn(job.picture, job.scene);
    Require(SetImageCoordinates(job.made.grey.Get(), places.map), "SetImageCoordinates");
    std::printf("\n  the picture in grey: %s\n", job.Note(IsBrightness(job.made.grey.Get(), job.picture)));
    std::printf(
        "  walks over it in a system turned by %.1f degrees about (%.1f, %.1f), %lld samples per 1000 pixels\n",
        Argument(places.map.Matrix.A11, places.map.Matrix.A21), places.map.X, places.map.Y,
        static_cast<long long>(places.density));
    ProveLine(job, places);
    ProveArea(job, places);
    job.made.painted = PaintPlaces(job.picture, places);
    std::printf("  both are painted into a copy, and no other pixel: %s; a file holds it: %s\n",
                job.Note(OnlyTheWalkIsPainted(job.made.painted.Get(), job.picture, places)),
                job.FileHolds(job.made.painted, "walked"));
}

void ProveValues(Job &job) {
    const GreyCounts counts = CountGreys(job.made.grey.Get());
    const std::vector<double> shares = SharesOfGreatest(counts);
    ScanPictures &made = job.made;
    made.histogramChart = DrawBars(shares);
    std::printf("  histogram: counts all pixels: %s; is drawn bar by bar: %s; a file holds it: %s\n",
                job.Note(CountsAllPixels(counts, made.grey.Get())),
                job.Note(BarsAreRight(made.histogramChart.Get(), shares)),
                job.FileHolds(made.histogramChart, "histogram"));
    made.stretched = StretchToRange(job.picture);
    std::printf("  stretched to 0 to 255: each plane is: %s; a file holds it: %s\n",
                job.Note(IsStretchedToRange(made.stretched.Get(), job.picture)),
                job.FileHolds(made.stretched, "stretched"));
    made.spread = StretchToSpread(job.picture, wantedMean, wantedDeviation);
    std::printf("  stretched to mean %g, deviation %g: each plane is: %s; a file holds it: %s\n", wantedMean,
                wantedDeviation,
                job.Note(IsStretchedToSpread(made.spread.Get(), job.picture, wantedMean, wantedDeviation)),
                job.FileHolds(made.spread, "spread"));
}

/// The scene is tinted on purpose and measured on its grey ground; a picture of which nothing is known is taken as
/// it is, and as grey in the mean.
void ProveBalance(Job &job) {
    if (ImageDimension(job.picture) != 3) {
        std::printf("  white balance of one plane is refused: %s\n", job.Note(IsRefusedForItsPlanes(job.picture)));
        return;
    }
    TArea area{};
    const intptr_t rows = job.scene != nullptr ? job.scene->groundRows : ImageHeight(job.picture);
    SetRectArea(&area, 0.0, 0.0, static_cast<double>(ImageWidth(job.picture) - 1), static_cast<double>(rows - 1));
    job.made.balance = Balance(job.picture, area, job.scene != nullptr ? lampTint : Gains{1.0, 1.0, 1.0});
    const WhiteBalance &balance = job.made.balance;
    std::printf("  white balance by gains %.3f %.3f %.3f", balance.gains[0], balance.gains[1], balance.gains[2]);
    if (balance.balanced.Get() == nullptr) {
        std::printf(": none, for want of light in one of the colours\n");
        return;
    }
    std::printf(": all pixels multiplied: %s; files hold it and its source: %s %s",
                job.Note(IsMultipliedByGains(balance)), job.FileHolds(balance.balanced, "balanced"),
                job.FileHolds(balance.tinted, "unbalanced"));
    if (job.scene != nullptr)
        std::printf("; the tint is found to 2 %%: %s", job.Note(UndoesTheTint(balance)));
    std::printf("\n");
}

void ProveStack(Job &job) {
    job.made.stack = TakeFrames(job.made.grey.Get());
    const FrameStack &stack = job.made.stack;
    std::printf("  %td noisy frames of %td x %td pixels with a passing spot, as one stack of planes\n", frameCount,
                ImageWidth(stack.planes.Get()), ImageHeight(stack.planes.Get()));
    std::printf("    minimum and maximum: %s; mean and deviation: %s; only the maximum keeps the spot: %s\n",
                job.Note(HasLeastAndGreatest(stack)), job.Note(HasMeanAndDeviation(stack)),
                job.Note(OnlyMaximumShowsTheSpot(stack)));
    const NoiseLeft noise = MeasureNoise(stack);
    if (noise.pixels >= enoughForStatistics)
        std::printf("    noise of %.2f grey levels in a frame, %.2f in the mean, which is less than half: %s\n",
                    noise.ofFrame, noise.ofMean, job.Note(noise.ofMean < noise.ofFrame / 2.0));
    std::printf("    their sum of 16 bits is mapped to 8 bits in proportion: %s\n",
                job.Note(MapsInProportion(stack)));
    std::printf("    files hold a frame, minimum, maximum, mean, deviation and sum: %s %s %s %s %s %s\n",
                job.FileHolds(stack.frames.front(), "frame"), job.FileHolds(stack.minimum, "minimum"),
                job.FileHolds(stack.maximum, "maximum"), job.FileHolds(stack.mean, "mean"),
                job.FileHolds(stack.deviation, "deviation"), job.FileHolds(stack.mapped, "sum"));
}

} // namespace

void RunScans(void *picture, const Scene *scene, const std::string &stem, bool drawsGallery, Verdict &verdict) {
    Job job{picture, scene, stem, verdict};
    ProveWalks(job);
    ProveValues(job);
    ProveBalance(job);
    ProveStack(job);
    if (drawsGallery)
        std::printf("  out/scans.png shows all of these: %s\n",
                    job.Note(WritePng((outFolder / "scans.png").string(), DrawScanGallery(job.made).Get())));
}
