/* Handles that are no pixel lists: null, images of every class, and foreign objects. */
#ifndef ORV_TESTS_NO_LISTS_H
#define ORV_TESTS_NO_LISTS_H

#include "ImageCreation.h"
#include "ImageMaps.h"
#include "ImageViews.h"
#include "Support/TestImages.h"

namespace TestSupport {

/// One such handle with what keeps it alive. Fake is the image when it is of the tests' own class.
struct NoList {
    std::string Name;
    std::shared_ptr<Handle> Owned;
    std::shared_ptr<FakeImage> Fake;
    std::shared_ptr<ForeignObject> Foreign;

    void *Get() const {
        if (Fake)
            return Fake->Handle();
        return Foreign ? Foreign->Handle() : Owned->Get();
    }
    bool IsAnImage() const { return Foreign == nullptr && Get() != nullptr; }
    /// One reference is left, and the object was not even asked for an interface.
    void ExpectLeftAlone() const {
        EXPECT_EQ(RefCount(Get()), Get() == nullptr ? 0u : 1u) << Name;
        if (Fake) {
            EXPECT_EQ(Fake->Calls(), std::vector<std::string>{}) << Name;
        }
    }
};

inline NoList OwnedNoList(const std::string &name, void *object) {
    return {name, std::make_shared<Handle>(object), nullptr, nullptr};
}

/// An image over memory that goes with it.
inline void *ExternalImage() {
    auto *const block = new std::vector<std::uint8_t>(4 * 3 * 2);
    void *image = nullptr;
    EXPECT_EQ(CreateImageFromPointer(
                  block->data(), block->size(), 4, 3, 2, 8, 1, 4, 12, nullptr,
                  [](void *, void *owner) { delete static_cast<std::vector<std::uint8_t> *>(owner); }, block, &image),
              0);
    return image;
}

inline std::vector<NoList> NoLists() {
    std::vector<NoList> all = {OwnedNoList("null", nullptr), OwnedNoList("external image", ExternalImage())};
    for (const std::intptr_t planes : {1, 2, 3})
        for (const bool overlay : {false, true}) {
            void *tree = nullptr;
            EXPECT_TRUE(CreateGenericImage(planes, 4, 3, overlay, &tree));
            all.push_back(OwnedNoList("tree of " + std::to_string(planes) + " planes", tree));
        }
    void *typed = nullptr, *view = nullptr, *stitched = nullptr, *map = nullptr;
    EXPECT_TRUE(CreateGenericImageDT(2, 4, 3, 0x110, &typed));
    const Handle source(ExternalImage());
    EXPECT_TRUE(CreateRotatedImageMap(source.Get(), VPATRotation90Clockwise, &view));
    EXPECT_TRUE(CreatePanoramicImageMap(source.Get(), source.Get(), PanoramaStacked, &stitched));
    EXPECT_TRUE(CreateImageSubList(source.Get(), 1, 1, 1, &map));
    all.push_back(OwnedNoList("typed tree", typed));
    all.push_back(OwnedNoList("rotated view", view));
    all.push_back(OwnedNoList("stitched view", stitched));
    all.push_back(OwnedNoList("view of a plane", map));
    all.push_back({"image of the tests' own", nullptr, FakeImage::Planar(4, 3, 2, 8), nullptr});
    all.push_back({"overlay image of the tests' own", nullptr, FakeImage::Planar(4, 3, 1, 0x408), nullptr});
    for (const auto &foreign : ForeignHandles())
        all.push_back({foreign.Name, nullptr, nullptr, foreign.Object});
    return all;
}

} // namespace TestSupport

#endif
