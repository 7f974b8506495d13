// The facts about an image's tables that faster paths are chosen from.
#include "Image/PlaneView.h"

#include <gtest/gtest.h>
#include <stdexcept>

#include "Support/TestImages.h"

namespace {

using Image::PlaneView;
using Image::vpat_analyzer;
using TestSupport::FakeImage;

TEST(VpatAnalyzer, TellsTheCommonSteps) {
    FakeImage image(4, 3, 64);
    image.AddPlane(
        image.Pixels.data(), 16, [](auto i) { return 2 * i; }, [](auto j) { return 16 * j; });
    image.AddPlane(
        image.Pixels.data() + 40, 0x108, [](auto i) { return -i; }, [](auto j) { return -8 * j; });
    const vpat_analyzer facts(image.Handle());
    EXPECT_EQ(facts.Planes(), 2);
    EXPECT_EQ(facts.Width(), 4);
    EXPECT_EQ(facts.Height(), 3);
    EXPECT_EQ(facts.XStep(0), 2);
    EXPECT_EQ(facts.YStep(0), 16);
    EXPECT_EQ(facts.XStep(1), -1);
    EXPECT_EQ(facts.YStep(1), -8);
    EXPECT_EQ(facts.Datatype(1), 0x108u);
    EXPECT_EQ(facts.PlaneBase(1), image.BaseOf(1));
    EXPECT_EQ(facts.Table(0), image.TableOf(0));
    EXPECT_EQ(static_cast<void *>(facts.FirstPixel(1)), image.BaseOf(1));
    EXPECT_EQ(image.Count(), 2) << "the analyser holds the image";
}

TEST(VpatAnalyzer, AnUnevenDifferenceAnywhereMakesTheStepZero) {
    for (int odd = 1; odd < 6; ++odd) {
        FakeImage image(6, 6, 64);
        image.AddPlane(
            image.Pixels.data(), 8, [odd](auto i) { return i + (i >= odd && odd > 1 ? 1 : 0); },
            [odd](auto j) { return 7 * j + (j == odd && odd > 1 ? 1 : 0); });
        const vpat_analyzer facts(image.Handle());
        EXPECT_EQ(facts.XStep(0), odd == 1 ? 1 : 0) << odd;
        EXPECT_EQ(facts.YStep(0), odd == 1 ? 7 : 0) << odd;
    }
}

TEST(VpatAnalyzer, OneColumnOrOneRowHasNoStep) {
    const auto image = FakeImage::Planar(1, 1, 1, 8);
    const vpat_analyzer facts(image->Handle());
    EXPECT_EQ(facts.XStep(0), 0);
    EXPECT_EQ(facts.YStep(0), 0);
}

TEST(VpatAnalyzer, TheNumberBehindTheLastPlaneIsAcceptedAndEmpty) {
    const auto image = FakeImage::Planar(3, 3, 2, 8);
    const vpat_analyzer facts(image->Handle());
    EXPECT_EQ(facts.PlaneBase(2), nullptr);
    EXPECT_EQ(facts.XStep(2), 0);
    for (const std::intptr_t plane : {std::intptr_t{-1}, std::intptr_t{3}}) {
        try {
            static_cast<void>(facts.XStep(plane));
            FAIL() << "no exception for plane " << plane;
        } catch (const std::out_of_range &error) {
            EXPECT_STREQ(error.what(), "invalid index");
        }
    }
}

TEST(VpatAnalyzer, WhatIsNoImageIsRefused) {
    for (const auto &foreign : TestSupport::ForeignHandles()) {
        try {
            const vpat_analyzer facts(foreign.Get());
            FAIL() << foreign.Name;
        } catch (const std::runtime_error &error) {
            EXPECT_STREQ(error.what(), "image invalid");
        }
        EXPECT_EQ(foreign.Count(), 1);
    }
    EXPECT_THROW(vpat_analyzer(static_cast<void *>(nullptr)), std::runtime_error);
}

TEST(VpatAnalyzer, AnImageThatRefusesAPlaneIsReleasedAgain) {
    const auto image = FakeImage::Planar(3, 3, 2, 8);
    image->Fails.VPAStatus = -1;
    EXPECT_THROW(vpat_analyzer(image->Handle()), std::runtime_error);
    EXPECT_EQ(image->Count(), 1);
}

TEST(VpatAnalyzer, TheLargestStepsAreSteps) {
    for (const std::intptr_t step : {INTPTR_MIN, INTPTR_MAX, INTPTR_MIN + 1}) {
        FakeImage image(2, 2, 8);
        const auto offsets = [step](auto i) { return i == 0 ? 0 : step; };
        image.AddPlane(image.Pixels.data(), 8, offsets, offsets);
        const vpat_analyzer facts(image.Handle());
        EXPECT_EQ(facts.XStep(0), step);
        EXPECT_EQ(facts.YStep(0), step);
        EXPECT_EQ(facts.XClass(0), vpat_analyzer::ClassLinear);
        EXPECT_EQ(facts.YClass(0), vpat_analyzer::ClassLinear);
        EXPECT_TRUE(facts.IsInterleaved());
        EXPECT_NE(facts.ColumnGap(), 0);
    }
}

TEST(PlaneView, ItsLargestStepsDoNotOverflow) {
    for (const std::intptr_t step : {INTPTR_MIN, INTPTR_MAX, INTPTR_MAX / 2}) {
        const PlaneView wide = {nullptr, nullptr, nullptr, 5, 2, 1, step, 3};
        EXPECT_TRUE(wide.HasDistinctPixels()) << "columns of two pixels that lie far apart";
        const PlaneView high = {nullptr, nullptr, nullptr, 2, 5, 1, 3, step};
        EXPECT_TRUE(high.HasDistinctPixels()) << "rows of two pixels that lie far apart";
        const PlaneView both = {nullptr, nullptr, nullptr, 5, 5, 1, step, step};
        EXPECT_FALSE(both.HasDistinctPixels());
    }
}

} // namespace
