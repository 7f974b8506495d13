// The first job on a real file: load a bitmap, look at it through its tables, turn it and join it without moving a
// pixel, write it again. Usage: first_picture [FILE.bmp ...]; without a file it draws a scene of its own.
// Pictures go to the folder "out". The exit code is 0 only when every proof holds.
#include "gallery.h"
#include "png_writer.h"
#include "proofs.h"

#include <cstdio>
#include <exception>
#include <filesystem>
#include <stdexcept>

namespace {

constexpr double allowedMarkError = 0.1; // pixels
const std::filesystem::path outFolder = "out";

/// Counts the proofs and gives the word for the table.
class Verdict {
public:
    const char *Note(bool holds) {
        ++(holds ? held : failed);
        return holds ? "yes" : "NO";
    }
    int Print() const {
        if (failed == 0)
            std::printf("\nAll %d proofs hold: every view shows the caller's own pixels, and no pixel has moved.\n",
                        held);
        else
            std::printf("\nFAILED: %d of %d proofs do not hold.\n", failed, held + failed);
        return failed == 0 && held > 0 ? 0 : 1;
    }

private:
    int held = 0;
    int failed = 0;
};

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

void ProveView(const View &view, void *source, const CallersBuffer &buffer, const std::vector<Mark> &marks,
               const std::string &stem, Verdict &verdict) {
    const std::string path = (outFolder / (stem + "_" + view.fileEnding + ".bmp")).string();
    char size[32];
    std::snprintf(size, sizeof size, "%td x %td", ImageWidth(view.image.Get()), ImageHeight(view.image.Get()));
    std::printf("  %-22s %-12s %7.1f us  %-14s %-11s %-14s", view.name.c_str(), size, view.microsecondsToMake,
                verdict.Note(NoPixelMoved(view, source)), verdict.Note(WriteShowsInSource(view, source, buffer)),
                verdict.Note(FileHoldsTheView(view, path)));
    if (!marks.empty()) {
        const double error = LargestMarkError(view, marks);
        std::printf(" %.3f px %s", error, verdict.Note(error < allowedMarkError));
    }
    std::printf("\n");
}

/// Gives the handles back in the order that matters: the own one first, then the views that still need the buffer.
void GiveBack(ImageHandle &source, std::vector<View> &views, const CallersBuffer &buffer, Verdict &verdict) {
    const bool stillHeld = !source.GiveBack() && buffer.imagesAlive == 3;
    std::printf("  the caller's own handle is given back; the views still hold the buffer: %s\n",
                verdict.Note(stillHeld));
    views.clear();
    std::printf("  the views are given back; the buffer is the caller's alone again: %s\n",
                verdict.Note(buffer.imagesAlive == 0));
}

void RunJob(const std::filesystem::path &file, const std::vector<Mark> &marks, bool drawsGallery, Verdict &verdict) {
    std::printf("\n%s\n", file.filename().string().c_str());
    ImageHandle loaded;
    if (!LoadImageFile(file.string().c_str(), loaded.Out()))
        throw std::runtime_error("can't be loaded: no uncompressed bitmap of 8, 24 or 32 bits");
    Describe(loaded.Get());

    CallersBuffer buffer = CopyOut(loaded.Get());
    ImageHandle source = Wrap(buffer, 0, buffer.width);
    std::printf("  wrapped a buffer of %zu bytes%s; same pixels as the file: %s\n\n", buffer.bytes.size(),
                buffer.planes == 3 ? ", blue green red in memory, red green blue as planes" : "",
                verdict.Note(SamePixels(loaded.Get(), source.Get())));

    std::vector<View> views = MakeViews(source.Get(), buffer);
    std::printf("  %-22s %-12s %10s  %-14s %-11s %-14s%s\n", "view", "size", "made in", "no pixel moved",
                "write seen", "file holds it", marks.empty() ? "" : " marks within 0.1 px");
    for (const View &view : views)
        ProveView(view, source.Get(), buffer, marks, file.stem().string(), verdict);
    std::printf("\n");
    if (drawsGallery)
        std::printf(
            "  out/gallery.png shows the picture and its views: %s\n",
            verdict.Note(WritePng((outFolder / "gallery.png").string(), DrawGallery(source.Get(), views).Get())));
    GiveBack(source, views, buffer, verdict);
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
            RunJob(SaveScene(scene, scene.blueGreenRed, "board_colour.bmp"), scene.marks, true, verdict);
            RunJob(SaveScene(scene, scene.grey, "board_grey.bmp"), scene.marks, false, verdict);
        });
    for (int i = 1; i < count; ++i)
        attempt([&] { RunJob(arguments[i], {}, i == 1, verdict); });
    return verdict.Print();
}
