#include "CtkHRESULTException.h"

#include <gtest/gtest.h>
#include <malloc.h>
#include <type_traits>

#include "VirtualSlot.h"

namespace {

using TestSupport::SlotOf;
using tkErrors::CtkHRESULTException;
using tkIO::CtkIOException;
using tkMath::CtkMathException;

static_assert(!std::is_base_of_v<std::exception, CtkHRESULTException>);
static_assert(std::is_base_of_v<CtkHRESULT, CtkHRESULTException>);

TEST(CtkHRESULTException, WhatComposesTextOriginAndPlace) {
    CtkHRESULTException exception(0x80012003u, "It broke", "Machine.cpp", 17);
    EXPECT_STREQ(exception.What(), "It broke. Exception from Sub-Facility Nr. 18 of Facility Nr. 0"
                                   " thrown in file Machine.cpp at line Nr. 17.");
}

TEST(CtkHRESULTException, WhatFallsBackToTheRegisteredText) {
    CtkHRESULTException exception(0x80101005u, nullptr, 0);
    EXPECT_STREQ(exception.What(),
                 "A division by zero was attempted. Exception from Sub-Facility Nr. 1 of Facility Nr. 1.");
}

TEST(CtkHRESULTException, WhatFallsBackToTheNumber) {
    CtkHRESULTException exception(0x8000001Cu, nullptr, 0);
    EXPECT_STREQ(exception.What(), "Error code 28 (no extended information) occured."
                                   " Exception from Sub-Facility Nr. 0 of Facility Nr. 0.");
}

TEST(CtkHRESULTException, WhatWritesTheNumberAs16BitValue) {
    CtkHRESULTException exception(0xFFFFF123u, nullptr, 0);
    EXPECT_STREQ(exception.What(), "Error code 291 (no extended information) occured."
                                   " Exception from Sub-Facility Nr. 255 of Facility Nr. 31.");
}

TEST(CtkHRESULTException, WhatTellsAFileWithoutALine) {
    CtkHRESULTException exception(0, "T", "F.cpp", 0);
    EXPECT_STREQ(exception.What(), "T. Exception from Sub-Facility Nr. 0 of Facility Nr. 0 thrown in file F.cpp.");
}

TEST(CtkHRESULTException, WhatTellsNoLineWithoutAFile) {
    CtkHRESULTException exception(0, "T", nullptr, 5);
    EXPECT_STREQ(exception.What(), "T. Exception from Sub-Facility Nr. 0 of Facility Nr. 0.");
}

TEST(CtkHRESULTException, WhatEndsInANulOfItsOwn) {
    mallopt(M_PERTURB, 0x55); // fresh memory is not 0, so that the byte behind the text is 0 only when it was written
    CtkHRESULTException exception(0, "T", nullptr, 0);
    const std::string visible = "T. Exception from Sub-Facility Nr. 0 of Facility Nr. 0.";
    EXPECT_EQ(std::string(exception.What(), visible.size() + 2), visible + std::string(2, '\0'));
    mallopt(M_PERTURB, 0);
}

TEST(CtkHRESULTException, WhatComposesOnce) {
    CtkHRESULTException exception(0, "T", nullptr, 0);
    const char *first = exception.What();
    EXPECT_EQ(exception.What(), first);
}

TEST(CtkHRESULTException, IsMadeOfPartsAsWell) {
    CtkHRESULTException plain(5, 1, 1, 3, true, "F.cpp", 9);
    EXPECT_EQ(static_cast<std::uint32_t>(plain.GetWord()), 0x86101005u);
    EXPECT_STREQ(plain.What(), "A division by zero was attempted. Exception from Sub-Facility Nr. 1 of Facility Nr. 1"
                               " thrown in file F.cpp at line Nr. 9.");
    CtkHRESULTException withText(5, 1, 1, 3, true, "T", "F.cpp", 9);
    EXPECT_EQ(withText.GetWord(), plain.GetWord());
    EXPECT_STREQ(withText.What(),
                 "T. Exception from Sub-Facility Nr. 1 of Facility Nr. 1 thrown in file F.cpp at line Nr. 9.");
}

TEST(CtkHRESULTException, HasNoNamesButLooksTextsUp) {
    const CtkHRESULTException exception(0, nullptr, 0);
    EXPECT_EQ(exception.GetFacilityName(), nullptr);
    EXPECT_EQ(exception.GetSubFacilityName(), nullptr);
    EXPECT_STREQ(exception.GetErrorString(0x80105002u), "Unable to open the stream");
    EXPECT_EQ(exception.GetErrorString(0x80000010u), nullptr);
}

TEST(CtkHRESULTException, HasItsSlotsInOrder) {
    EXPECT_EQ(SlotOf(&CtkHRESULTException::What), 2u);
    EXPECT_EQ(SlotOf(&CtkHRESULTException::GetFacilityName), 3u);
    EXPECT_EQ(SlotOf(&CtkHRESULTException::GetSubFacilityName), 4u);
    EXPECT_EQ(SlotOf(&CtkHRESULTException::GetErrorString), 5u);
}

TEST(CtkHRESULTException, IsCaughtAsACode) {
    try {
        throw CtkIOException(CtkIOException::CannotOpen, nullptr, 0);
    } catch (const CtkHRESULT &code) {
        EXPECT_EQ(static_cast<std::uint32_t>(code.GetWord()), 0x80105002u);
    }
}

TEST(CtkIOException, TakesNumberSeverityAndFailureBitFromTheWord) {
    EXPECT_EQ(static_cast<std::uint32_t>(CtkIOException(0xFFFFFFFFu, nullptr, 0).GetWord()), 0xFE105FFFu);
    EXPECT_EQ(static_cast<std::uint32_t>(CtkIOException(1, nullptr, 0).GetWord()), 0x00105001u);
}

TEST(CtkIOException, NamesItsOrigin) {
    CtkIOException registered(CtkIOException::ReadBeyondEnd, "S.cpp", 3);
    EXPECT_STREQ(registered.What(), "Read operation beyond the end of a stream was attempted."
                                    " Exception from Sub-Facility 'tkIO' of Facility 'CtkBase'"
                                    " thrown in file S.cpp at line Nr. 3.");
    CtkIOException withText(CtkIOException::ReadBeyondEnd, "T", nullptr, 0);
    EXPECT_STREQ(withText.What(), "T. Exception from Sub-Facility 'tkIO' of Facility 'CtkBase'.");
}

TEST(CtkMathException, TakesNumberSeverityAndFailureBitFromTheWord) {
    EXPECT_EQ(static_cast<std::uint32_t>(CtkMathException(0xFFFFFFFFu, nullptr, 0).GetWord()), 0xFE101FFFu);
    EXPECT_EQ(static_cast<std::uint32_t>(CtkMathException(7, nullptr, 0).GetWord()), 0x00101007u);
}

TEST(CtkMathException, NamesItsOrigin) {
    CtkMathException registered(CtkMathException::ZeroLength, nullptr, 0);
    EXPECT_STREQ(registered.What(), "The requested operation is not permitted on a vector that has length zero."
                                    " Exception from Sub-Facility 'tkMath' of Facility 'CtkBase'.");
    CtkMathException withText(CtkMathException::DivisionByZero, "T", nullptr, 0);
    EXPECT_STREQ(withText.What(), "T. Exception from Sub-Facility 'tkMath' of Facility 'CtkBase'.");
}

} // namespace
