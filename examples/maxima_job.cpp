// Makes, prints and proves; how things are made stands in peak_plane, found_places and drawn_marks.
#include "maxima_job.h"

#include "drawn_marks.h"
#include "maxima_gallery.h"
#include "maxima_proofs.h"
#include "peak_plane.h"
#include "png_writer.h"
#include "proofs.h"
#include "value_maps.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr intptr_t coarseStep = 8;
constexpr int64_t spotsPrinted = 10;
constexpr int64_t spotsMarked = 60;
constexpr double reachOfMarks = 34.0; // pixels
constexpr intptr_t crossArm = 7;
constexpr intptr_t crossThickness = 3;
constexpr double allowedRadiusError = 1.0; // pixels

/// The largest errors that are allowed, in pixels: of the plane of peaks, and of every eighth of its pixels.
struct Allowed {
    double fine;
    double coarse;
};
constexpr Allowed allowed[fits.size()] = {{0.8, 6.0}, {0.15, 0.5}, {0.1, 0.4}, {0.1, 0.5}};

/// One picture in the making: what its parts are told and give.
struct Job {
    void *picture;
    const Scene *scene;
    const std::string &stem;
    Verdict &verdict;
    MaximaPictures made{};

    const char *Note(bool holds) { return verdict.Note(holds); }
    const char *FileHolds(const ImageHandle &image, const char *ending) {
        return Note(::FileHolds(image.Get(), OutPath(stem, ending)));
    }
};

/// The place of a series that is nearest to another one.
template <class Place, class Other>
const Other &NearestTo(const Place &place, const std::vector<Other> &others) {
    const auto distance = [&](const Other &other) { return std::hypot(place.x - other.x, place.y - other.y); };
    return *std::min_element(others.begin(), others.end(),
                             [&](const Other &a, const Other &b) { return distance(a) < distance(b); });
}

/// A few of the true places, and what each fit makes of them.
void PrintPlaces(const std::vector<Mark> &marks, const std::vector<std::vector<FoundPlace>> &found) {
    std::printf("    %-18s", "true place");
    for (const Fit &fit : fits)
        std::printf("%-18s", fit.name);
    std::printf("\n");
    constexpr std::size_t every = 7;
    for (std::size_t i = 0; i < marks.size(); i += every) {
        std::printf("    %6.2f %6.2f     ", marks[i].x, marks[i].y);
        for (const std::vector<FoundPlace> &places : found) {
            const FoundPlace place = NearestTo(marks[i], places);
            std::printf("%6.2f %6.2f     ", place.x, place.y);
        }
        std::printf("\n");
    }
}

/// The marks by each fit; those of the last one are handed out.
std::vector<FoundPlace> ProveMarks(Job &job, void *grey) {
    const ImageHandle peaks = MakePeakPlane(grey);
    job.made.peaks = ShowPeakPlane(peaks.Get());
    std::printf("\n  marks as peaks of a smoothed float plane; a file shows it: %s\n"
                "    distances from the true places in pixels, mean and largest:\n"
                "    %-14s %-35s %s\n",
                job.FileHolds(job.made.peaks, "peaks"), "fit", "in the plane, window 9 x 9",
                "in every 8th pixel of it, window 3 x 3");
    std::vector<std::vector<FoundPlace>> found;
    for (std::size_t i = 0; i < fits.size(); ++i) {
        found.push_back(PlacesOf(FindPeaks(peaks.Get(), fits[i].mode, 4, 1).Get()));
        const PlaceErrors fine = CompareWithMarks(found.back(), job.scene->marks);
        const PlaceErrors coarse =
            CompareWithMarks(PlacesOf(FindPeaks(peaks.Get(), fits[i].mode, 1, coarseStep).Get()), job.scene->marks);
        std::printf("    %-14s %.3f  %.3f, at most %.2f: %-8s %.3f  %.3f, at most %.2f: %s\n", fits[i].name,
                    fine.mean, fine.largest, allowed[i].fine,
                    job.Note(fine.eachMarkIsFound && fine.largest < allowed[i].fine), coarse.mean, coarse.largest,
                    allowed[i].coarse, job.Note(coarse.eachMarkIsFound && coarse.largest < allowed[i].coarse));
        job.made.offsets.push_back(coarse.offsets);
    }
    PrintPlaces(job.scene->marks, found);
    return found.back();
}

/// The bright spots of a picture of which nothing is known; the brightest ones are handed out.
std::vector<FoundPlace> ProveSpots(Job &job, void *grey) {
    const SpotSearch search = SearchFor(grey);
    const ListHandle list = FindSpots(grey, search);
    const std::vector<FoundPlace> spots = PlacesOf(list.Get());
    std::printf("\n  %zu bright spots by FindMaxima, locality %lld, threshold %lld\n"
                "    maxima of the picture: %s; apart, and strongest first: %s; no other is missed: %s\n",
                spots.size(), static_cast<long long>(search.locality), static_cast<long long>(search.threshold),
                job.Note(AreMaxima(spots, grey, search.threshold)),
                job.Note(AreApartAndDescending(spots, search.locality)), job.Note(MissNone(spots, grey, search)));
    const ListHandle ordered = OrderByLight(list.Get(), grey);
    std::printf("    the brightest by the mean of 5 x 5 pixels:\n       x      y  value   mean  half axes\n");
    for (int64_t i = 0; i < std::min<int64_t>(PixelListCount(ordered.Get()), spotsPrinted); ++i) {
        double spot[4] = {};
        Require(ListPixelEx(ordered.Get(), i, spot), "ListPixelEx");
        const Shape shape = MeasureShape(grey, {spot[0], spot[1], spot[2]}, static_cast<double>(search.locality));
        std::printf("    %4.0f   %4.0f  %5.0f  %5.1f  %.1f x %.1f at %.0f degrees\n", spot[0], spot[1], spot[2],
                    spot[3], shape.halfA, shape.halfB, shape.rotationRadians * 180.0 / M_PI);
    }
    if (PixelListCount(ordered.Get()) > spotsMarked)
        Require(TruncatePixelList(ordered.Get(), spotsMarked), "TruncatePixelList");
    return PlacesOf(ordered.Get());
}

void ProveOverlay(Job &job, const std::vector<FoundPlace> &places) {
    const ListHandle list = ListOf(places);
    ImageHandle overlay, again;
    if (places.empty())
        return;
    Require(CreateOverlayFromPixelList(list.Get(), job.picture, overlay.Out()), "CreateOverlayFromPixelList");
    ListHandle back;
    Require(CreatePixelListFromOverlay(overlay.Get(), 3, 0, 0, 0, 0, back.Out()), "CreatePixelListFromOverlay");
    std::printf("  an overlay marks the places and no other pixel: %s; gives them back as a list: %s",
                job.Note(MarksThePlacesOnly(overlay.Get(), job.picture, places)),
                job.Note(GivesThePlacesBack(back.Get(), places)));
    job.made.overlay = ShowOverlay(DrawInOverlay(overlay.Get(), places).Get());
    std::printf("; a file shows it: %s\n", job.FileHolds(job.made.overlay, "overlay"));
}

void ProveDrawing(Job &job, void *grey, const std::vector<FoundPlace> &places, const std::vector<Shape> &shapes) {
    const ImageHandle original = CopyInColour(job.picture);
    job.made.annotated = CopyInColour(job.picture);
    void *const drawn = job.made.annotated.Get();
    double reach = static_cast<double>(crossArm + crossThickness);
    for (std::size_t i = 0; i < shapes.size(); ++i)
        if (LiesInside(drawn, shapes[i], 2.0 * spareOfOutlines)) {
            DrawAround(drawn, shapes[i], spareOfOutlines, 3, ringColour);
            const double offCentre = std::hypot(shapes[i].centre.x - places[i].x, shapes[i].centre.y - places[i].y);
            reach = std::max(reach, offCentre + shapes[i].halfA + 2.0 * spareOfOutlines);
        }
    for (const FoundPlace &place : places)
        DrawCross(drawn, place, crossArm, crossThickness, markColour);
    std::printf("  crosses and outlines are drawn there and nowhere else: %s; a file holds it: %s\n",
                job.Note(IsDrawnAtThePlacesOnly(drawn, original.Get(), places, reach, markColour.red)),
                job.FileHolds(job.made.annotated, "found"));
    const ImageHandle outlines = DrawOutlines(grey, shapes);
    job.made.mask = FillOutlines(outlines.Get(), shapes);
    const double area = static_cast<double>(ImageWidth(grey) * ImageHeight(grey));
    std::printf(
        "  outlines filled inside, as a plain fill does it: %s; %.1f %% of the picture; a file holds it: %s\n",
        job.Note(IsFilledInside(job.made.mask.Get(), outlines.Get(), shapes)),
        100.0 * static_cast<double>(CountWhite(job.made.mask.Get())) / area, job.FileHolds(job.made.mask, "mask"));
}

/// In the scene the ellipses are circles of known radii.
void ProveShapes(Job &job, const std::vector<Shape> &shapes) {
    double largest = 0.0;
    for (const Shape &shape : shapes) {
        const Mark &nearest = NearestTo(shape.centre, job.scene->marks);
        largest = std::max({largest, std::abs(shape.halfA - nearest.radius), std::abs(shape.halfB - nearest.radius)});
    }
    std::printf("  round by their moments, at most %.2f pixels off their radii: %s\n", largest,
                job.Note(largest < allowedRadiusError && std::all_of(shapes.begin(), shapes.end(), IsRound)));
}

} // namespace

void RunMaxima(void *picture, const Scene *scene, const std::string &stem, bool drawsGallery, Verdict &verdict) {
    Job job{picture, scene, stem, verdict};
    const ImageHandle grey = MakeGrey(picture);
    const std::vector<FoundPlace> places =
        scene != nullptr ? ProveMarks(job, grey.Get()) : ProveSpots(job, grey.Get());
    std::vector<Shape> shapes;
    for (const FoundPlace &place : places)
        shapes.push_back(
            MeasureShape(grey.Get(), place,
                         scene != nullptr ? reachOfMarks : static_cast<double>(SearchFor(grey.Get()).locality)));
    if (scene != nullptr)
        ProveShapes(job, shapes);
    ProveOverlay(job, places);
    ProveDrawing(job, grey.Get(), places, shapes);
    if (drawsGallery)
        std::printf("  out/maxima.png shows all of these: %s\n",
                    job.Note(WritePng((outFolder / "maxima.png").string(), DrawMaximaGallery(job.made).Get())));
}
