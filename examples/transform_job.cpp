// Makes, prints and proves; how things are made stands in straightening, label, ring and lens.
#include "transform_job.h"

#include "label.h"
#include "png_writer.h"
#include "proofs.h"
#include "sampling_check.h"
#include "straightening.h"
#include "transform_gallery.h"
#include "transform_proofs.h"

#include <cmath>
#include <limits>

namespace {

constexpr double allowedMarkError = 0.1;  // pixels
constexpr double allowedRingError = 0.2;  // pixels; positions are cut to 1/16 along both axes, twice
constexpr double allowedBentError = 0.25; // pixels; a bent mark is not round
constexpr double roundingOfShear = 0.001; // pixels
constexpr double allowedLensChange = 3.0; // grey levels; a frame's noise is part of it
constexpr double allowedRingChange = 4.0; // grey levels, on sharp letters
constexpr double anySize = std::numeric_limits<double>::infinity();
constexpr double smallMark = 15.0; // pixels
constexpr unsigned char callbackBackground = 127;

/// One picture in the making: what its parts are told and give.
struct Job {
    void *picture;
    const Scene *scene;
    const std::string &stem;
    Verdict &verdict;
    TransformPictures made{};

    const char *Note(bool holds) { return verdict.Note(holds); }
    const char *FileHolds(void *image, const std::string &ending) {
        return Note(::FileHolds(image, OutPath(stem, ending)));
    }
    std::vector<Mark> Marks() const { return scene != nullptr ? scene->marks : std::vector<Mark>(); }
};

using PositionOf = std::function<std::optional<Point>(Point)>;

/// The proofs that all these pictures have in common.
void ProveSampling(Job &job, const TransformedPicture &made, void *source, const PositionOf &positionOf,
                   const Sampling &sampling) {
    void *const image = made.image.Get();
    const SamplingFindings found = CheckSampling(image, source, positionOf, sampling);
    const std::int64_t judged = found.mixed + found.outside;
    std::printf("  %-33s %4td x %-4td %8lld pixels mixed of four, %7lld beyond the source are %d: %s; a file holds "
                "it: %s\n",
                made.name.c_str(), ImageWidth(image), ImageHeight(image), static_cast<long long>(found.mixed),
                static_cast<long long>(found.outside), sampling.outside,
                judged > 0 ? job.Note(found.wrong == 0) : "none to judge", job.FileHolds(image, made.fileEnding));
}

void ProveMarks(Job &job, const char *what, const Findings &found, double allowed) {
    std::printf("    %d %s found, at most %.3f pixels from their places: %s\n", found.count, what, found.largestError,
                job.Note(found.count > 0 && found.largestError < allowed));
}

/// The marks of the scene in a picture that shows them so many times larger.
void ProveStraight(Job &job, const TransformedPicture &made, void *board, const Sampling &sampling,
                   double enlargement = 1.0) {
    ProveSampling(job, made, board, made.toSource, sampling);
    std::vector<Mark> marks = job.Marks();
    for (Mark &mark : marks)
        mark.radius *= enlargement;
    if (!marks.empty())
        ProveMarks(job, "marks", FindMarksAt(made.image.Get(), marks, made.toResult, anySize),
                   allowedMarkError * enlargement);
}

void ProveBoard(Job &job) {
    const BoardPlace place = PlaceOfBoard(job.picture, job.scene);
    job.made.board = WithBoardSystem(job.picture, place);
    void *const board = job.made.board.Get();
    std::printf("\n  straight in the system turned by %.1f degrees about (%.1f, %.1f):\n",
                Argument(place.map.Matrix.A11, place.map.Matrix.A21), place.map.X, place.map.Y);
    TransformPictures &made = job.made;
    made.bySystem = StraightBySystem(board, place);
    ProveStraight(job, made.bySystem, board, affineSampling);
    made.byCorners = StraightByCorners(board, place);
    ProveStraight(job, made.byCorners, board, callbackSampling);
    const double shear = LargestDistance(made.byCorners.image.Get(), made.bySystem.toSource, made.byCorners.toSource);
    // Each edge is taken one pixel longer, to the right and down, whichever way it goes.
    const double told = std::sqrt(10.0 - 8.0 * place.map.Matrix.A11);
    std::printf("    sheared against the former by %.2f pixels at most, where %.2f are told: %s; with its edges "
                "exchanged it is the same, lying: %s\n",
                shear, told, job.Note(shear < told + roundingOfShear),
                job.Note(IsTransposed(LyingByCorners(board, place).Get(), made.byCorners.image.Get())));
    const TransformedPicture whole = WholeTurnedBack(board, place);
    ProveStraight(job, whole, board, affineSampling);
    std::printf(
        "    CreateMatrixTransformedImageEx gives the same without a system: %s\n",
        job.Note(DiffersInItsSystemOnly(whole.image.Get(), WholeTurnedBackWithoutSystem(board, place).Get())));
    ProveStraight(job, MiddleEnlarged(board, place), board, affineSampling, middleEnlargement);
    std::printf("  under the identity, and by a callback that does nothing, it is the picture: %s %s\n",
                job.Note(SamePixels(UnderIdentity(job.picture).Get(), job.picture)),
                job.Note(SamePixels(CopyByCallback(job.picture).Get(), job.picture)));
}

/// The ring rolled up as it is: all lies one pixel further out.
void ProveRolledUp(Job &job, const Ring &ring, const TransformedPicture &unrolled, const std::vector<Mark> &marks) {
    const TransformedPicture rolled = RollUp(unrolled.image.Get(), ring);
    const auto isRing = [&](Point pixel) { return LiesInRing(rolled, ring, pixel); };
    const auto positionOf = [&](Point pixel) {
        return isRing(pixel) ? std::optional(rolled.toSource(pixel)) : std::nullopt;
    };
    ProveSampling(job, rolled, unrolled.image.Get(), positionOf, polarSampling);
    std::printf("    beside the ring it is %d: %s\n", callbackBackground,
                job.Note(IsFilledBeside(rolled.image.Get(), isRing, callbackBackground)));
    const auto placeOf = [&](Point place) { return rolled.toResult(unrolled.toResult(place)); };
    if (!marks.empty())
        ProveMarks(job, "dots, one pixel further out than on the label,",
                   FindMarksAt(rolled.image.Get(), marks, placeOf, anySize), allowedRingError);
}

/// Without its last two rows the wider ring comes back to its place.
void ProveRoundTrip(Job &job, void *picture, const Ring &ring, const std::vector<Mark> &marks) {
    job.made.ring = UnrollAndRollUp(picture, ring);
    const RoundTrip &trip = job.made.ring;
    void *const rolled = trip.rolled.image.Get();
    const Point centre = CentreOf(trip.rolled);
    const auto toPicture = [&](Point pixel) {
        return Point{pixel.x - centre.x + ring.centre.x, pixel.y - centre.y + ring.centre.y};
    };
    const auto toRolled = [&](Point place) {
        return Point{place.x - ring.centre.x + centre.x, place.y - ring.centre.y + centre.y};
    };
    std::printf("  a row wider on both sides, and rolled up without the last two rows; a file holds it: %s\n",
                job.FileHolds(rolled, "rolled_in_place"));
    if (marks.empty())
        return;
    ProveMarks(job, "dots, where they were on the label,", FindMarksAt(rolled, marks, toRolled, anySize),
               allowedRingError);
    const double change = RootMeanSquare(
        rolled, picture, [&](Point p) { return LiesInRing(trip.rolled, ring, p); }, toPicture);
    std::printf("    it differs from the label by %.2f grey levels in the root mean square: %s\n", change,
                job.Note(change < allowedRingChange));
}

/// In the scene a label's ring; otherwise the largest one of the picture.
void ProveRing(Job &job) {
    std::vector<Mark> marks;
    Ring ring = LargestRing(job.picture);
    void *picture = job.picture;
    if (job.scene != nullptr) {
        Label label = DrawLabel(ImageDimension(job.picture));
        job.made.label = std::move(label.image);
        picture = job.made.label.Get();
        ring = label.ring;
        marks = label.marks;
        std::printf("\n  a label with lettering; a file holds it: %s\n", job.FileHolds(picture, "label"));
    }
    std::printf("  its ring of radii %g to %g about (%.1f, %.1f):\n", ring.inner, ring.outer, ring.centre.x,
                ring.centre.y);
    const TransformedPicture unrolled = Unroll(picture, ring);
    ProveSampling(job, unrolled, picture, unrolled.toSource, polarSampling);
    if (!marks.empty())
        ProveMarks(job, "dots in the columns of their angles and the rows of their radii,",
                   FindMarksAt(unrolled.image.Get(), marks, unrolled.toResult, anySize), allowedRingError);
    ProveRolledUp(job, ring, unrolled, marks);
    ProveRoundTrip(job, picture, ring, marks);
}

void ProveLens(Job &job) {
    const Lens lens = LensOver(job.picture);
    job.made.lens = BendAndUndo(job.picture, lens);
    const LensPictures &made = job.made.lens;
    const std::int64_t pixels = ImageWidth(job.picture) * ImageHeight(job.picture) * ImageDimension(job.picture);
    std::printf("\n  CreateTransformedImage asks a callback for each pixel of each plane: %s\n",
                job.Note(made.callsToBend == pixels && made.callsToUndo == pixels));
    ProveSampling(job, made.bent, job.picture, made.bent.toSource, callbackSampling);
    const double moved = LargestDistance(job.picture, made.bent.toResult, [](Point place) { return place; });
    std::printf("    the corners are bent by %.1f pixels\n", moved);
    if (job.scene != nullptr)
        ProveMarks(job, "small marks", FindMarksAt(made.bent.image.Get(), job.Marks(), made.bent.toResult, smallMark),
                   allowedBentError);
    ProveSampling(job, made.undone, made.bent.image.Get(), made.undone.toSource, callbackSampling);
    if (job.scene == nullptr)
        return;
    const auto itself = [](Point place) { return place; };
    ProveMarks(job, "marks back", FindMarksAt(made.undone.image.Get(), job.scene->marks, itself, anySize),
               allowedMarkError);
    const double change = RootMeanSquare(
        made.undone.image.Get(), job.picture, [](Point) { return true; }, itself);
    std::printf("    it differs from the picture by %.2f grey levels in the root mean square: %s\n", change,
                job.Note(change < allowedLensChange));
}

} // namespace

void RunTransforms(void *picture, const Scene *scene, const std::string &stem, bool drawsGallery, Verdict &verdict) {
    Job job{picture, scene, stem, verdict};
    ProveBoard(job);
    ProveRing(job);
    ProveLens(job);
    if (drawsGallery)
        std::printf(
            "  out/transforms.png shows all of these: %s\n",
            job.Note(WritePng((outFolder / "transforms.png").string(), DrawTransformGallery(job.made).Get())));
}
