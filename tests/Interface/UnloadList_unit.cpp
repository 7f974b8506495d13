// The list of plug-ins that are polled for unloading, with real shared objects.
#include "Interface/UnloadList.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <string>
#include <thread>

#include "InterfaceHandling.h"
#include "Support/TestImages.h"

namespace {

using TestSupport::OnlyUnknown;

enum Answer { No, Yes, Throw };

/// One of the test's plug-ins. Each is loaded once by the test itself to ask it, besides the loads under test.
class Plugin {
public:
    explicit Plugin(const std::string &name)
        : path_(std::string(ORV_PLUGIN_FOLDER "/liborv_plugin_") + name + ".so") {}

    void *Load() const {
        void *handle = dlopen(path_.c_str(), RTLD_NOW | RTLD_LOCAL);
        EXPECT_NE(handle, nullptr) << dlerror();
        return handle;
    }
    bool IsLoaded() const {
        void *handle = dlopen(path_.c_str(), RTLD_NOW | RTLD_NOLOAD);
        if (handle != nullptr)
            dlclose(handle);
        return handle != nullptr;
    }
    static void SetAnswer(void *handle, Answer answer) {
        reinterpret_cast<void (*)(int)>(dlsym(handle, "SetAnswer"))(answer);
    }
    static int TimesAsked(void *handle) { return reinterpret_cast<int (*)()>(dlsym(handle, "TimesAsked"))(); }

private:
    std::string path_;
};

/// Registers a freshly loaded plug-in.
void *Register(const Plugin &plugin, OnlyUnknown &object, Answer answer) {
    void *handle = plugin.Load();
    Plugin::SetAnswer(handle, answer);
    EXPECT_EQ(Streaming::RegisterForUnload(&object, handle), &object);
    return handle;
}

TEST(UnloadList, OfThreeReadyPlugInsOnePollKeepsTheSecondAndTheNextUnloadsIt) {
    const Plugin first("first"), second("second"), third("third");
    OnlyUnknown object;
    Register(first, object, Yes);
    Register(second, object, Yes);
    Register(third, object, Yes);
    Streaming::PollUnloadList();
    EXPECT_FALSE(first.IsLoaded());
    EXPECT_TRUE(second.IsLoaded());
    EXPECT_FALSE(third.IsLoaded());
    Streaming::PollUnloadList();
    EXPECT_FALSE(second.IsLoaded());
    EXPECT_EQ(object.Count(), 1);
}

TEST(UnloadList, AsksAPlugInAgainInEachPollUntilItAgrees) {
    const Plugin first("first");
    OnlyUnknown object;
    void *handle = Register(first, object, No);
    Streaming::PollUnloadList();
    Streaming::PollUnloadList();
    EXPECT_EQ(Plugin::TimesAsked(handle), 2);
    EXPECT_TRUE(first.IsLoaded());
    Plugin::SetAnswer(handle, Yes);
    Streaming::PollUnloadList();
    EXPECT_FALSE(first.IsLoaded());
}

TEST(UnloadList, GoesOnBehindAPlugInThatStays) {
    const Plugin first("first"), second("second");
    OnlyUnknown object;
    void *stays = Register(first, object, No);
    Register(second, object, Yes);
    Streaming::PollUnloadList();
    EXPECT_TRUE(first.IsLoaded());
    EXPECT_FALSE(second.IsLoaded());
    Plugin::SetAnswer(stays, Yes);
    Streaming::PollUnloadList();
    EXPECT_FALSE(first.IsLoaded());
}

TEST(UnloadList, ClosesTheExtraHandleOfAKnownPlugInAtOnce) {
    const Plugin first("first");
    OnlyUnknown object;
    void *handle = Register(first, object, No);
    EXPECT_EQ(Register(first, object, Yes), handle);
    Streaming::PollUnloadList();
    EXPECT_FALSE(first.IsLoaded()) << "a second load was left open";
}

TEST(UnloadList, RefusesAPlugInWithoutCanUnloadAndReleasesItsObject) {
    const Plugin mute("mute");
    OnlyUnknown object;
    object.AddRef();
    void *handle = mute.Load();
    EXPECT_EQ(Streaming::RegisterForUnload(&object, handle), nullptr);
    EXPECT_EQ(object.Count(), 1);
    EXPECT_TRUE(mute.IsLoaded()) << "the handle is the caller's to close";
    dlclose(handle);
    EXPECT_FALSE(mute.IsLoaded());
}

TEST(UnloadList, AnExceptionOfAPlugInPassesOnAndLeavesTheListUsable) {
    const Plugin first("first");
    OnlyUnknown object;
    void *handle = Register(first, object, Throw);
    EXPECT_THROW(Streaming::PollUnloadList(), std::runtime_error);
    Plugin::SetAnswer(handle, Yes);
    // From another thread: the one that met the exception could take a lock again that it had kept.
    std::thread(Streaming::PollUnloadList).join();
    EXPECT_FALSE(first.IsLoaded());
}

TEST(UnloadList, AsksFromTheSecondPlugInOnAgainBehindOneThatWent) {
    const Plugin first("first"), second("second"), third("third");
    OnlyUnknown object;
    void *head = Register(first, object, No);
    void *next = Register(second, object, No);
    Register(third, object, Yes);
    Streaming::PollUnloadList();
    EXPECT_FALSE(third.IsLoaded());
    EXPECT_EQ(Plugin::TimesAsked(head), 1);
    EXPECT_EQ(Plugin::TimesAsked(next), 2);
    Plugin::SetAnswer(head, Yes);
    Plugin::SetAnswer(next, Yes);
    Streaming::PollUnloadList();
    Streaming::PollUnloadList();
    EXPECT_FALSE(first.IsLoaded());
    EXPECT_FALSE(second.IsLoaded());
}

TEST(UnloadList, IsPolledByReleaseImageAndReleaseObjectWithANullPointer) {
    const Plugin first("first");
    OnlyUnknown object;
    void *handle = Register(first, object, No);
    EXPECT_EQ(ReleaseImage(nullptr), 0);
    EXPECT_EQ(Plugin::TimesAsked(handle), 1);
    void *nothing = nullptr;
    EXPECT_TRUE(ReleaseObject(nothing));
    EXPECT_EQ(Plugin::TimesAsked(handle), 2);
    Plugin::SetAnswer(handle, Yes);
    Streaming::PollUnloadList();
}

TEST(UnloadList, IsPolledWhenALastReferenceGoesAndNotBefore) {
    const Plugin first("first");
    OnlyUnknown object;
    void *handle = Register(first, object, No);
    OnlyUnknown shared;
    shared.AddRef();
    EXPECT_EQ(ReleaseImage(shared.Handle()), 1);
    EXPECT_EQ(Plugin::TimesAsked(handle), 0);
    EXPECT_EQ(ReleaseImage(shared.Handle()), 0);
    EXPECT_EQ(Plugin::TimesAsked(handle), 1);
    OnlyUnknown other;
    void *pointer = other.Handle();
    EXPECT_TRUE(ReleaseObject(pointer));
    EXPECT_EQ(pointer, nullptr);
    EXPECT_EQ(Plugin::TimesAsked(handle), 2);
    OnlyUnknown last;
    EXPECT_EQ(ReleaseIUnknown(last.Handle()), 0u);
    TestSupport::NullInterfaceUnknown foreign;
    EXPECT_EQ(ReleaseImage(foreign.Handle()), 0);
    EXPECT_EQ(Plugin::TimesAsked(handle), 2) << "neither of the two polls";
    Plugin::SetAnswer(handle, Yes);
    Streaming::PollUnloadList();
}

TEST(UnloadList, AnExceptionInThePollPassesThroughReleaseImage) {
    const Plugin first("first");
    OnlyUnknown object;
    void *handle = Register(first, object, Throw);
    EXPECT_THROW(ReleaseImage(nullptr), std::runtime_error);
    OnlyUnknown last;
    EXPECT_THROW(ReleaseImage(last.Handle()), std::runtime_error);
    EXPECT_TRUE(last.Destroyed());
    Plugin::SetAnswer(handle, Yes);
    Streaming::PollUnloadList();
}

TEST(UnloadList, AnExceptionInThePollMakesReleaseObjectFalse) {
    const Plugin first("first");
    OnlyUnknown object;
    void *handle = Register(first, object, Throw);
    void *nothing = nullptr;
    EXPECT_FALSE(ReleaseObject(nothing));
    Plugin::SetAnswer(handle, Yes);
    Streaming::PollUnloadList();
}

} // namespace
