// Sharing and releasing one tree from several threads. Built with the thread sanitizer these tests find races as
// well.
#include <atomic>
#include <gtest/gtest.h>
#include <thread>
#include <vector>

#include "TreeNodes.h"

namespace {

using Persistence::Adopt;
using Persistence::MakeNode;

std::atomic<int> LivingNodes{0};

struct CountedNode : TSList {
    CountedNode() { ++LivingNodes; }
    ~CountedNode() override { --LivingNodes; }
};

constexpr int NodesOfATree = 7;

/// A root with two children, each with a child of its own and one that both share.
TSList *MakeTree() {
    auto root = MakeNode<CountedNode>();
    TSList &first = Adopt(*root, MakeNode<CountedNode>());
    TSList &second = Adopt(*root, MakeNode<CountedNode>());
    Adopt(first, MakeNode<CountedNode>());
    Adopt(second, MakeNode<CountedNode>());
    TSList &common = Adopt(first, MakeNode<CountedNode>());
    Adopt(common, MakeNode<CountedNode>());
    common.Share();
    second.AddTail(&common);
    return root.Detach();
}

/// Lets a number of threads start a round at the same moment.
class Gate {
public:
    explicit Gate(int threads) : threads_(threads) {}
    void Pass() {
        const int target = (arrived_.fetch_add(1) / threads_ + 1) * threads_;
        while (arrived_.load() < target)
            std::this_thread::yield();
    }

private:
    int threads_;
    std::atomic<int> arrived_{0};
};

TEST(TSListThreads, OfTwoThreadsThatDropTheLastReferencesExactlyOneSeesZero) {
    constexpr int rounds = 10000;
    TSList *tree = nullptr;
    Gate gate(2);
    std::atomic<int> zeros{0};
    std::atomic<int> ones{0};
    int badRounds = 0;
    const auto drop = [&] {
        gate.Pass();
        const std::int32_t left = tree->Release();
        ++(left == 0 ? zeros : ones);
        gate.Pass();
    };
    std::thread other([&] {
        for (int round = 0; round < rounds; ++round)
            drop();
    });
    for (int round = 0; round < rounds; ++round) {
        tree = MakeTree();
        tree->Share();
        drop();
        badRounds += LivingNodes != 0 || zeros != round + 1 ? 1 : 0;
    }
    other.join();
    EXPECT_EQ(badRounds, 0);
    EXPECT_EQ(zeros, rounds);
    EXPECT_EQ(ones, rounds);
}

TEST(TSListThreads, EightThreadsShareAndReleaseOneTree) {
    TSList *tree = MakeTree();
    ASSERT_EQ(LivingNodes, NodesOfATree);
    std::vector<std::thread> threads;
    for (int i = 0; i < 8; ++i) {
        tree->Share();
        threads.emplace_back([tree] {
            for (int round = 0; round < 1000; ++round) {
                tree->Share();
                tree->Release();
            }
            tree->Release();
        });
    }
    tree->Release();
    for (std::thread &thread : threads)
        thread.join();
    EXPECT_EQ(LivingNodes, 0);
}

} // namespace
