#include "station/scan_quantity.h"
#include <gtest/gtest.h>

TEST(ScanQuantity, WholePiecesInAnyNumericSpelling)
{
    EXPECT_EQ(ScanQuantity("1"), 1);
    EXPECT_EQ(ScanQuantity("3"), 3);
    EXPECT_EQ(ScanQuantity(" 12 "), 12);
    EXPECT_EQ(ScanQuantity("+4"), 4);
    EXPECT_EQ(ScanQuantity("2.0"), 2);
    EXPECT_EQ(ScanQuantity("5."), 5);
    EXPECT_EQ(ScanQuantity("1E2"), 100);
    EXPECT_EQ(ScanQuantity("1d1"), 10);      // the numeric test's own exponent letter
    EXPECT_EQ(ScanQuantity("32767"), MaxScanQuantity);
}

TEST(ScanQuantity, RefusesWhatCannotBeCountedUnitByUnit)
{
    for (const char* text : {"", "  ", "abc", "3a", "1,000", "0x10", // not numbers
                             "2.5", "0.1",                          // fractions
                             "0", "-1", "-0",                       // nothing to count
                             "32768", "1E10", "1E400"}) {           // beyond a line's count
        EXPECT_FALSE(ScanQuantity(QString::fromLatin1(text)).has_value()) << text;
    }
}
