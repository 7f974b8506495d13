// The first job on a real file: load a bitmap, look at it through its tables, turn, join, cut, shrink, split and
// overlay it without moving a pixel, walk over it, map its values, turn it straight, find marks or stars in it, write
// all of it again. Usage: first_picture [FILE.bmp ...]; without a file it draws a scene of its own. Pictures go to
// the folder "out". The exit code is 0 only when every proof holds.
#include "composition_proofs.h"
#include "demo_report.h"
#include "gallery.h"
#include "maxima_job.h"
#include "png_writer.h"
#include "proofs.h"
#include "scan_job.h"
#include "transform_job.h"

#include <exception>
#include <stdexcept>

namespace {

constexpr double allowedMarkError = 0.1; // pixels

void Describe(void *image) {
    std::printf("  %td x %td pixels, %td plane(s), data type 0x%03X: %td bits, %s\n", ImageWidth(image),
                ImageHeight(image), ImageDimension(image), ImageDatatype(image, 0),
                BitsPerPixel(ImageDatatype(image, 0)),
                IsFloatDatatype(ImageDatatype(image, 0))    ? "floating point"
                : IsSignedDatatype(ImageDatatype(image, 0)) ? "signed"
                                                            : "unsigned");
    TCoordinateMap map{};
    GetImageCoordinates(image, &map);
    std::printf("  coordinate system: origin (%g, %g), matrix (%g %g / %g %g)\n", map.X, map.Y, map.Matrix.A11,
                map.Matrix.A12, map.Matrix.A21, map.Matrix.A22);
}

void PrintTitles(const char *views, const char *third) {
    std::printf("\n  %-25s %-12s %10s  %-14s %-11s %s\n", views, "size", "made in", "no pixel moved", "write seen",
                third);
}

/// The proofs that every view has in common; third tells what the last column of the table asks.
void ProveView(const View &view, void *source, const CallersBuffer &buffer, bool third, Verdict &verdict) {
    char size[32];
    std::snprintf(size, sizeof size, "%td x %td", ImageWidth(view.image.Get()), ImageHeight(view.image.Get()));
    std::printf("  %-25s %-12s %7.1f us  %-14s %-11s %-14s", view.name.c_str(), size, view.microsecondsToMake,
                verdict.Note(NoPixelMoved(view, source)), verdict.Note(WriteShowsInSource(view, source, buffer)),
                verdict.Note(third));
}

void ProveTurnedAndJoined(const std::vector<View> &views, void *source, const CallersBuffer &buffer,
                          const std::vector<Mark> &marks, const std::string &stem, Verdict &verdict) {
    PrintTitles("view", marks.empty() ? "file holds it" : "file holds it  marks within 0.1 px");
    for (const View &view : views) {
        ProveView(view, source, buffer, FileHolds(view.image.Get(), OutPath(stem, view.fileEnding)), verdict);
        if (!marks.empty()) {
            const double error = LargestMarkError(view, marks);
            std::printf(" %.3f px %s", error, verdict.Note(error < allowedMarkError));
        }
        std::printf("\n");
    }
}

void ProveThumbnails(const Compositions &made, void *source, const CallersBuffer &buffer, const std::string &stem,
                     Verdict &verdict) {
    PrintTitles("thumbnail", "strip holds it");
    for (std::size_t i = 0; i < made.thumbnails.size(); ++i) {
        ProveView(made.thumbnails[i], source, buffer, StripHolds(made.strip, i, made.thumbnails[i]), verdict);
        std::printf("\n");
    }
    std::printf("  the strip's paper between them is white still: %s; a file holds the strip: %s\n",
                verdict.Note(PaperIsUntouched(made.strip, made.thumbnails)),
                verdict.Note(FileHolds(made.strip.picture.Get(), OutPath(stem, "thumbnails"))));
}

void ProvePlanes(const Compositions &made, void *source, const CallersBuffer &buffer, const std::string &stem,
                 Verdict &verdict) {
    PrintTitles("planes", "file holds it");
    for (const std::vector<View> *views : {&made.split, &made.recombined})
        for (const View &view : *views) {
            ProveView(view, source, buffer, FileHolds(view.image.Get(), OutPath(stem, view.fileEnding)), verdict);
            std::printf("\n");
        }
    std::printf("  together in their old order they are the picture: %s; a copy of them stands alone: %s\n",
                verdict.Note(PlanesMakeTheSource(made.split, source)),
                verdict.Note(CopyOfPlanesStandsAlone(made.split, source)));
}

void ProveOverlay(const Overlay &overlay, void *source, const std::string &stem, Verdict &verdict) {
    std::printf("\n  laid over its half turn by their origins: %td planes of %td x %td pixels\n",
                ImageDimension(overlay.planes.Get()), ImageWidth(overlay.planes.Get()),
                ImageHeight(overlay.planes.Get()));
    std::printf("  as large as what both have, each pixel at its address: %s; one thing at both origins: %s; "
                "a file holds it: %s\n",
                verdict.Note(LiesByItsOrigins(overlay, source)), verdict.Note(OriginStaysOnTheThing(overlay, source)),
                verdict.Note(FileHolds(overlay.picture.Get(), OutPath(stem, "laid_over"))));
}

/// Makes everything that is put together, and proves that each plane of a thumbnail holds a reference of the source.
Compositions Compose(void *source, Point thing, Verdict &verdict) {
    Compositions made;
    const uintptr_t before = RefCount(source);
    made.thumbnails = MakeThumbnails(source);
    const uintptr_t taken = RefCount(source) - before;
    std::printf("\n  %zu thumbnails of %td plane(s) hold %zu references of the picture, one for each plane: %s\n",
                made.thumbnails.size(), ImageDimension(source), static_cast<std::size_t>(taken),
                verdict.Note(taken == made.thumbnails.size() * static_cast<uintptr_t>(ImageDimension(source))));
    made.strip = CopyIntoStrip(made.thumbnails);
    made.split = SplitPlanes(source);
    made.recombined = Recombine(made.split);
    made.overlay = LayOverHalfTurn(source, thing);
    return made;
}

/// Gives the handles back in the order that matters: the own one first, then the views that still need the buffer.
void GiveBack(ImageHandle &source, std::vector<View> &views, Compositions &made, const CallersBuffer &buffer,
              Verdict &verdict) {
    const bool stillHeld = !source.GiveBack() && buffer.imagesAlive == 3;
    std::printf("\n  the caller's own handle is given back; the views still hold the buffer: %s\n",
                verdict.Note(stillHeld));
    views.clear();
    std::printf("  the turned and joined views are given back; the others still hold it: %s\n",
                verdict.Note(buffer.imagesAlive == 1));
    made = Compositions();
    std::printf("  all views are given back; the buffer is the caller's alone again: %s\n",
                verdict.Note(buffer.imagesAlive == 0));
}

/// scene  what the file shows, or null when that is not known.
void RunJob(const std::filesystem::path &file, const Scene *scene, bool drawsGallery, Verdict &verdict) {
    std::printf("\n%s\n", file.filename().string().c_str());
    ImageHandle loaded;
    if (!LoadImageFile(file.string().c_str(), loaded.Out()))
        throw std::runtime_error("can't be loaded: no uncompressed bitmap of 8, 24 or 32 bits");
    Describe(loaded.Get());

    CallersBuffer buffer = CopyOut(loaded.Get());
    ImageHandle source = Wrap(buffer, 0, buffer.width);
    std::printf("  wrapped a buffer of %zu bytes%s; same pixels as the file: %s\n", buffer.bytes.size(),
                buffer.planes == 3 ? ", blue green red in memory, red green blue as planes" : "",
                verdict.Note(SamePixels(loaded.Get(), source.Get())));

    const std::string stem = file.stem().string();
    std::vector<View> views = MakeViews(source.Get(), buffer);
    ProveTurnedAndJoined(views, source.Get(), buffer, scene != nullptr ? scene->marks : std::vector<Mark>(), stem,
                         verdict);
    const Point third{static_cast<double>(buffer.width - 1) / 3.0, static_cast<double>(buffer.height - 1) / 3.0};
    Compositions made =
        Compose(source.Get(), scene != nullptr ? Point{scene->middle.x, scene->middle.y} : third, verdict);
    ProveThumbnails(made, source.Get(), buffer, stem, verdict);
    ProvePlanes(made, source.Get(), buffer, stem, verdict);
    ProveOverlay(made.overlay, source.Get(), stem, verdict);
    if (drawsGallery)
        std::printf("\n  out/gallery.png shows the picture and all of these: %s\n",
                    verdict.Note(WritePng((outFolder / "gallery.png").string(),
                                          DrawGallery(source.Get(), views, made).Get())));
    RunScans(source.Get(), scene, stem, drawsGallery, verdict);
    RunTransforms(source.Get(), scene, stem, drawsGallery, verdict);
    RunMaxima(source.Get(), scene, stem, drawsGallery, verdict);
    GiveBack(source, views, made, buffer, verdict);
}

/// Writes a picture of the scene as a bitmap and gives its path.
std::filesystem::path SaveScene(const Scene &scene, const std::vector<std::uint8_t> &pixels, const char *name) {
    const intptr_t planes = static_cast<intptr_t>(pixels.size()) / (scene.width * scene.height);
    CallersBuffer buffer{scene.width, scene.height, planes, pixels};
    const std::filesystem::path path = outFolder / name;
    const ImageHandle image = Wrap(buffer, 0, buffer.width);
    if (!WriteImageFile(image.Get(), path.string().c_str()))
        throw std::runtime_error("can't write " + path.string());
    std::printf("  saved %s\n", path.string().c_str());
    return path;
}

} // namespace

int main(int count, char **arguments) {
    Verdict verdict;
    const auto attempt = [&verdict](const auto &job) {
        try {
            job();
        } catch (const std::exception &problem) {
            std::printf("  %s: %s\n", problem.what(), verdict.Note(false));
        }
    };
    attempt([] { std::filesystem::create_directories(outFolder); });
    if (count < 2)
        attempt([&verdict] {
            std::printf("Drawing a lit board with round marks, in colour and in grey ...\n");
            const Scene scene = DrawScene();
            RunJob(SaveScene(scene, scene.blueGreenRed, "board_colour.bmp"), &scene, true, verdict);
            RunJob(SaveScene(scene, scene.grey, "board_grey.bmp"), &scene, false, verdict);
        });
    for (int i = 1; i < count; ++i)
        attempt([&] { RunJob(arguments[i], nullptr, i == 1, verdict); });
    return verdict.Print();
}
