// The file plug-in and drivers: what reaches them, what comes back, when they are unloaded.
#include "ImageFiles.h"
#include "InterfaceHandling.h"
#include "Support/TestImages.h"

#include <dlfcn.h>

namespace {

using namespace TestSupport;

constexpr const char *PluginFile = ORV_PLUGIN_FOLDER "/libORVFile.so";
constexpr const char *DriverFile = ORV_PLUGIN_FOLDER "/liborv_plugin_driver.gdv";

/// As the stand-in has it.
struct State {
    int Objects;
    int Saved;
    int SavedLossy;
    double Quality;
    int Result;
    bool GivesObject;
    bool Throws;
};

/// A plug-in that the loader finds by its name for as long as this holds it.
class LoadedPlugin {
public:
    explicit LoadedPlugin(const char *file) : handle(dlopen(file, RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_NE(handle, nullptr) << dlerror();
        *Get() = {0, 0, 0, 0.0, 1, true, false};
    }
    LoadedPlugin(const LoadedPlugin &) = delete;
    LoadedPlugin &operator=(const LoadedPlugin &) = delete;
    ~LoadedPlugin() { dlclose(handle); }
    State *Get() const { return static_cast<State *>(dlsym(handle, "PluginState")); }
    State *operator->() const { return Get(); }

private:
    void *handle;
};

bool IsInMemory(const char *file) {
    void *handle = dlopen(file, RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr)
        dlclose(handle);
    return handle != nullptr;
}

TEST(FilePlugin, DeliversItsObjectForAnyFormatThatIsNotBuiltIn) {
    const LoadedPlugin plugin(PluginFile);
    void *image = nullptr;
    EXPECT_TRUE(LoadImageFile("a.png", &image));
    EXPECT_EQ(plugin->Objects, 1);
    EXPECT_TRUE(ReleaseObject(image));
    EXPECT_EQ(plugin->Objects, 0);
}

TEST(FilePlugin, GivesANullHandleWhenItGivesNoneOrThrows) {
    const LoadedPlugin plugin(PluginFile);
    plugin->GivesObject = false;
    void *image = &image;
    EXPECT_FALSE(LoadImageFile("a.png", &image));
    EXPECT_EQ(image, nullptr);
    plugin->Throws = true;
    image = &image;
    EXPECT_FALSE(LoadImageFile("a.png", &image));
    EXPECT_EQ(image, nullptr);
}

TEST(FilePlugin, WritesAllFormatsThatAreNotBuiltInAndItsResultCounts) {
    const LoadedPlugin plugin(PluginFile);
    FakeImage image(2, 2);
    EXPECT_TRUE(WriteImageFile(&image, "a.png"));
    EXPECT_TRUE(WriteImageFile(&image, "png"));
    EXPECT_EQ(plugin->Saved, 2);
    plugin->Result = 0;
    EXPECT_FALSE(WriteImageFile(&image, "a.png"));
    EXPECT_EQ(plugin->SavedLossy, 0);
}

TEST(FilePlugin, WritesLossyNamesWithTheirQualityAndOthersAsUsual) {
    const LoadedPlugin plugin(PluginFile);
    FakeImage image(2, 2);
    EXPECT_TRUE(WriteLossyImageFile(&image, "a.jpg", 0.25));
    EXPECT_EQ(plugin->SavedLossy, 1);
    EXPECT_EQ(plugin->Quality, 0.25);
    EXPECT_TRUE(WriteLossyImageFile(&image, "a.png", 0.25));
    EXPECT_EQ(plugin->SavedLossy, 1);
    EXPECT_EQ(plugin->Saved, 1);
    plugin->Result = 0;
    EXPECT_FALSE(WriteLossyImageFile(&image, "a.jpg", 0.25));
    EXPECT_FALSE(WriteLossyImageFile(nullptr, "a.jpg", 0.25));
    EXPECT_EQ(plugin->SavedLossy, 2);
}

TEST(Driver, StaysLoadedWhileItsObjectLivesAndNoLonger) {
    EXPECT_FALSE(IsInMemory(DriverFile));
    void *image = nullptr;
    ASSERT_TRUE(LoadImageFile(DriverFile, &image));
    EXPECT_TRUE(IsInMemory(DriverFile));
    void *second = nullptr;
    ASSERT_TRUE(LoadImageFile(DriverFile, &second));
    EXPECT_TRUE(ReleaseObject(second));
    EXPECT_TRUE(IsInMemory(DriverFile)) << "its first object is still there";
    EXPECT_TRUE(ReleaseObject(image));
    EXPECT_FALSE(IsInMemory(DriverFile));
}

TEST(Driver, IsClosedAgainWhenItDeliversNothing) {
    {
        const LoadedPlugin driver(DriverFile);
        driver->GivesObject = false;
        void *image = nullptr;
        EXPECT_FALSE(LoadImageFile(DriverFile, &image));
    }
    EXPECT_FALSE(IsInMemory(DriverFile));
}

TEST(Driver, IsRefusedWithoutCanUnloadOrGetImage) {
    void *image = nullptr;
    EXPECT_FALSE(LoadImageFile(ORV_PLUGIN_FOLDER "/liborv_plugin_mute.so", &image));
    EXPECT_FALSE(LoadImageFile(ORV_PLUGIN_FOLDER "/liborv_plugin_first.so", &image));
    EXPECT_FALSE(IsInMemory(ORV_PLUGIN_FOLDER "/liborv_plugin_first.so"));
}

} // namespace
