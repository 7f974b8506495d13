// CopyImageRect between regions of larger images beside copyTo and beside a memcpy of the same rows; planes taken
// apart, put together and taken out beside split, merge and extractChannel; scattered tables beside a plain loop.
#include "Peers.h"
#include "ScatteredImage.h"
#include <cstring>

namespace Bench {

namespace {

// ---- rectangles of one plane

/// Both sides copy the same pixels to the same place.
struct Regions {
    cv::Mat Source, Target;         ///< the whole images
    cv::Mat SourceRect, TargetRect; ///< the rectangles of them
    ImageHandle OurSource, OurTarget;
    int Left, Top, X, Y;

    Regions(cv::Size rect, cv::Size image)
        : Source(RandomPixels(CV_8UC1, image.width, image.height)), Target(image, CV_8UC1, cv::Scalar(0)),
          OurSource(External(Source)), OurTarget(External(Target)), Left(5), Top(3), X(2), Y(7) {
        SourceRect = Source(cv::Rect(cv::Point(Left, Top), rect));
        TargetRect = Target(cv::Rect(cv::Point(X, Y), rect));
    }

    bool Copy() const {
        return CopyImageRect(OurSource.get(), OurTarget.get(), 0, 0, Left, Top, Left + SourceRect.cols - 1,
                             Top + SourceRect.rows - 1, X, Y);
    }
};

Body CopyRect(const Regions &regions) {
    return [regions](benchmark::State &state) {
        for (auto _ : state) {
            regions.Copy();
            benchmark::ClobberMemory();
        }
    };
}

Body CopyRectTheirWay(const Regions &regions) {
    return [from = regions.SourceRect, to = regions.TargetRect](benchmark::State &state) {
        for (auto _ : state) {
            from.copyTo(to);
            benchmark::ClobberMemory();
        }
    };
}

Body CopyRows(const Regions &regions) {
    return [from = regions.SourceRect, to = regions.TargetRect](benchmark::State &state) mutable {
        for (auto _ : state) {
            for (int y = 0; y < from.rows; ++y)
                std::memcpy(to.ptr(y), from.ptr(y), static_cast<std::size_t>(from.cols));
            benchmark::ClobberMemory();
        }
    };
}

void RegisterRect(cv::Size rect, cv::Size image, double copyToGoal) {
    const Regions regions(rect, image);
    auto row = "CopyImageRect " + std::to_string(rect.width) + " x " + std::to_string(rect.height) + " of " +
               std::to_string(image.width) + " x " + std::to_string(image.height);
    cv::Mat expected = cv::Mat::zeros(image, CV_8UC1);
    regions.SourceRect.copyTo(expected(cv::Rect(cv::Point(regions.X, regions.Y), rect)));
    Require(regions.Copy(), "a copied rectangle");
    RequireSamePixels(regions.OurTarget.get(), expected, row);
    RegisterPair(row + " / copyTo", copyToGoal, CopyRect(regions), CopyRectTheirWay(regions));
    if (rect.width >= 640)
        RegisterPair(row + " / memcpy of the rows", 1.1, CopyRect(regions), CopyRows(regions));
}

// ---- three planes

/// Interleaved pixels and planes of the same size, under both names.
struct ThreePlanes {
    cv::Mat Interleaved, Block;
    std::vector<cv::Mat> Planes; ///< B, G, R as OpenCV has them, one below the other in the block
    ImageHandle OurInterleaved, OurPlanes;

    explicit ThreePlanes(cv::Size size)
        : Interleaved(RandomPixels(CV_8UC3, size.width, size.height)), Block(3 * size.height, size.width, CV_8UC1),
          OurInterleaved(External(Interleaved)) {
        for (int k = 0; k < 3; ++k)
            Planes.push_back(Block.rowRange(k * size.height, (k + 1) * size.height));
        cv::split(Interleaved, Planes);
        const intptr_t order[] = {2, 1, 0};
        void *image = nullptr;
        CreateImageFromPointer(Block.data, Block.total(), size.width, size.height, 3, 8, 1, size.width,
                               intptr_t{size.width} * size.height, order, nullptr, nullptr, &image);
        OurPlanes = Hold(image);
    }
};

bool CopyPlanes(const ImageHandle &source, const ImageHandle &target) {
    return CopyImageRectPlanes(source.get(), target.get(), 0, 0, static_cast<int32_t>(ImageWidth(source.get()) - 1),
                               static_cast<int32_t>(ImageHeight(source.get()) - 1), 0, 0);
}

Body CopyAllPlanes(const ImageHandle &source, const ImageHandle &target) {
    return [=](benchmark::State &state) {
        for (auto _ : state) {
            CopyPlanes(source, target);
            benchmark::ClobberMemory();
        }
    };
}

Body Split(const ThreePlanes &theirs) {
    return [theirs](benchmark::State &state) {
        auto planes = theirs.Planes;
        for (auto _ : state) {
            cv::split(theirs.Interleaved, planes);
            benchmark::ClobberMemory();
        }
    };
}

Body Merge(const ThreePlanes &theirs) {
    return [theirs](benchmark::State &state) {
        auto target = theirs.Interleaved;
        for (auto _ : state) {
            cv::merge(theirs.Planes, target);
            benchmark::ClobberMemory();
        }
    };
}

Body DuplicatePlanes(const ThreePlanes &ours) {
    return [ours](benchmark::State &state) {
        for (auto _ : state) {
            void *copy = nullptr;
            CreateDuplicateImageEx(ours.OurPlanes.get(), &copy);
            benchmark::DoNotOptimize(copy);
            benchmark::ClobberMemory();
            ReleaseObject(copy);
        }
    };
}

Body MergeIntoFreshImage(const ThreePlanes &theirs) {
    return [theirs](benchmark::State &state) {
        for (auto _ : state) {
            cv::Mat target;
            cv::merge(theirs.Planes, target);
            benchmark::DoNotOptimize(target.data);
            benchmark::ClobberMemory();
        }
    };
}

void RequireSameDuplicate(const ThreePlanes &planes, const std::string &row) {
    void *copy = nullptr;
    Require(CreateDuplicateImageEx(planes.OurPlanes.get(), &copy), "a duplicate: " + row);
    RequireSamePixels(Hold(copy).get(), planes.Interleaved, row);
}

void RegisterThreePlanes(cv::Size size) {
    auto form = " 3 planes of " + std::to_string(size.width) + " x " + std::to_string(size.height);
    ThreePlanes planes(size);
    auto apart = "CopyImageRectPlanes, interleaved to planar," + form + " / split";
    cv::Mat before = planes.Interleaved.clone();
    planes.Block.setTo(0);
    Require(CopyPlanes(planes.OurInterleaved, planes.OurPlanes), "planes taken apart");
    RequireSamePixels(planes.OurPlanes.get(), before, apart);
    RegisterPair(apart, 1.0, CopyAllPlanes(planes.OurInterleaved, planes.OurPlanes), Split(planes));

    auto together = "CopyImageRectPlanes, planar to interleaved," + form + " / merge";
    planes.Interleaved.setTo(0);
    Require(CopyPlanes(planes.OurPlanes, planes.OurInterleaved), "planes put together");
    RequireSamePixels(planes.OurInterleaved.get(), before, together);
    RegisterPair(together, 1.0, CopyAllPlanes(planes.OurPlanes, planes.OurInterleaved), Merge(planes));

    auto fresh = "CreateDuplicateImageEx, planar," + form + " / merge into a fresh image";
    RequireSameDuplicate(planes, fresh);
    RegisterPair(fresh, 1.0, DuplicatePlanes(planes), MergeIntoFreshImage(planes));
}

// ---- one plane out of three

Body CopyOnePlane(const ImageHandle &source, intptr_t plane, const ImageHandle &target) {
    return [=](benchmark::State &state) {
        auto right = static_cast<int32_t>(ImageWidth(source.get()) - 1);
        auto bottom = static_cast<int32_t>(ImageHeight(source.get()) - 1);
        for (auto _ : state) {
            CopyImageRect(source.get(), target.get(), plane, 0, 0, 0, right, bottom, 0, 0);
            benchmark::ClobberMemory();
        }
    };
}

Body ExtractChannel(const cv::Mat &source, int channel, const cv::Mat &target) {
    return [=](benchmark::State &state) {
        auto existing = target;
        for (auto _ : state) {
            cv::extractChannel(source, existing, channel);
            benchmark::ClobberMemory();
        }
    };
}

void RegisterOnePlane(cv::Size size) {
    auto source = RandomPixels(CV_8UC3, size.width, size.height);
    cv::Mat target(size, CV_8UC1), expected;
    auto ours = External(source), ourTarget = External(target);
    for (int channel = 0; channel < 3; ++channel) {
        const intptr_t plane = 2 - channel;
        auto row = "CopyImageRect, plane " + std::to_string(plane) + " of 3 of " + std::to_string(size.width) +
                   " x " + std::to_string(size.height) + " / extractChannel";
        cv::extractChannel(source, expected, channel);
        Require(CopyImageRect(ours.get(), ourTarget.get(), plane, 0, 0, 0, size.width - 1, size.height - 1, 0, 0),
                "a plane taken out");
        RequireSamePixels(ourTarget.get(), expected, row);
        RegisterPair(row, 0.6, CopyOnePlane(ours, plane, ourTarget), ExtractChannel(source, channel, target));
    }
}

// ---- scattered tables

/// What any reader of tables would write.
void LoopOverTables(void *source, void *target) {
    TPlaneRec from{}, to{};
    SetPlaneRec(source, 0, &from);
    SetPlaneRec(target, 0, &to);
    const intptr_t width = ImageWidth(source), height = ImageHeight(source);
    for (intptr_t y = 0; y < height; ++y) {
        const char *fromRow = static_cast<const char *>(from.BaseAddress) + from.VPAT[y].YEntry;
        char *toRow = static_cast<char *>(to.BaseAddress) + to.VPAT[y].YEntry;
        for (intptr_t x = 0; x < width; ++x)
            toRow[to.VPAT[x].XEntry] = fromRow[from.VPAT[x].XEntry];
    }
}

Body CopyPlainly(const ImageHandle &source, const ImageHandle &target) {
    return [=](benchmark::State &state) {
        for (auto _ : state) {
            LoopOverTables(source.get(), target.get());
            benchmark::ClobberMemory();
        }
    };
}

/// pixels is what the source shows.
void RegisterTables(const std::string &form, const cv::Mat &pixels, const ImageHandle &source,
                    const ImageHandle &target) {
    auto row = "CopyImageRect, " + form + " / plain loop";
    Require(CopyPlanes(source, target), "a copied image");
    RequireSamePixels(target.get(), pixels, row);
    auto right = pixels.cols - 1, bottom = pixels.rows - 1;
    auto copy = [=](benchmark::State &state) {
        for (auto _ : state) {
            CopyImageRect(source.get(), target.get(), 0, 0, 0, 0, right, bottom, 0, 0);
            benchmark::ClobberMemory();
        }
    };
    RegisterPair(row, 1.0, copy, CopyPlainly(source, target));
}

void RegisterScattered() {
    auto pixels = RandomPixels(CV_8UC1);
    cv::Mat linearPixels = pixels.clone();
    auto linear = External(linearPixels);
    auto scattered = Hold((new ScatteredImage(Width, Height, 1))->Handle());
    auto other = Hold((new ScatteredImage(Width, Height, 2))->Handle());
    RegisterTables("linear to scattered", pixels, linear, scattered);
    RegisterTables("scattered to scattered", pixels, scattered, other);
    RegisterTables("scattered to linear", pixels, other, linear);
}

} // namespace

void RegisterRectangles() {
    RegisterRect({64, 64}, {96, 96}, 0.8);
    RegisterRect({64, 64}, {Width, Height}, 0.8);
    for (const cv::Size &size : {cv::Size(640, 480), cv::Size(1920, 1080), cv::Size(4096, 3072)})
        RegisterRect(size, {size.width + 32, size.height + 32}, 1.0);
    RegisterThreePlanes({640, 480});
    RegisterThreePlanes({Width, Height});
    RegisterOnePlane({Width, Height});
    RegisterScattered();
}

} // namespace Bench
