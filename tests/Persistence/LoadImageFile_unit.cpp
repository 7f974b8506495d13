// Every load polls the plug-ins that wait to be unloaded, whatever becomes of the load.
#include "ImageFiles.h"
#include "Interface/UnloadList.h"
#include "Support/TestImages.h"

#include <dlfcn.h>

namespace {

using namespace TestSupport;

/// A plug-in that the unload list asks and that refuses until Dismiss.
class WaitingPlugin {
public:
    WaitingPlugin() : handle(dlopen(ORV_PLUGIN_FOLDER "/liborv_plugin_second.so", RTLD_NOW | RTLD_LOCAL)) {
        EXPECT_NE(handle, nullptr);
        EXPECT_EQ(Streaming::RegisterForUnload(&object, handle), &object);
    }
    WaitingPlugin(const WaitingPlugin &) = delete;
    WaitingPlugin &operator=(const WaitingPlugin &) = delete;
    ~WaitingPlugin() {
        SetAnswer(1);
        Streaming::PollUnloadList();
    }
    void SetAnswer(int answer) const { reinterpret_cast<void (*)(int)>(dlsym(handle, "SetAnswer"))(answer); }
    int TimesAsked() const { return reinterpret_cast<int (*)()>(dlsym(handle, "TimesAsked"))(); }

private:
    OnlyUnknown object;
    void *handle;
};

TEST(LoadImageFilePoll, AsksThePluginsOncePerCallAlsoWhenTheCallFails) {
    const WaitingPlugin plugin;
    void *image = nullptr;
    LoadImageFile(nullptr, &image);
    EXPECT_EQ(plugin.TimesAsked(), 1);
    LoadImageFile("", &image);
    EXPECT_EQ(plugin.TimesAsked(), 2);
    LoadImageFile("./no-such-file.bmp", &image);
    EXPECT_EQ(plugin.TimesAsked(), 3);
    LoadImageFile("./no-such-file.gdv", &image);
    EXPECT_EQ(plugin.TimesAsked(), 4);
    EXPECT_THROW(LoadImageFile("noextension", &image), std::out_of_range);
    EXPECT_EQ(plugin.TimesAsked(), 5);
    ClearReports();
}

} // namespace
