#include "station/serial_lists.h"
#include <gtest/gtest.h>

TEST(SerialListContains, MatchesWholeElementsOfTheJoinedList)
{
    // The scan builds lists as "," + value, so they start with an empty element.
    const QString list = QStringLiteral(",SN100,SN2,SN-3");
    EXPECT_TRUE(SerialListContains(list, "SN100"));
    EXPECT_TRUE(SerialListContains(list, "SN2"));
    EXPECT_TRUE(SerialListContains(list, "SN-3"));
    // Parts and extensions of an element are other serials.
    EXPECT_FALSE(SerialListContains(list, "SN10"));
    EXPECT_FALSE(SerialListContains(list, "SN1000"));
    EXPECT_FALSE(SerialListContains(list, "SN100,SN2"));
    EXPECT_FALSE(SerialListContains(list, "sn100"));     // serials compare exactly

    EXPECT_FALSE(SerialListContains(QString(), "SN100"));
    EXPECT_FALSE(SerialListContains(list, QString()));  // the leading empty element is no serial
    EXPECT_TRUE(SerialListContains("A", "A"));           // a list without the leading comma
    EXPECT_TRUE(SerialListContains(",A,", "A"));
}

TEST(ListDiffersFrom, EmptyAndZeroElementsDifferFromNothing)
{
    // Shelf lives of the serials already on the line.
    EXPECT_FALSE(ListDiffersFrom(",365,365", "365"));
    EXPECT_TRUE(ListDiffersFrom(",365,365", "180"));
    EXPECT_TRUE(ListDiffersFrom(",365,180", "365"));     // any differing element counts

    // Absent elements (shelf life 0 is stored as "0", a missing date as "").
    EXPECT_FALSE(ListDiffersFrom(",0,0", "365"));
    EXPECT_FALSE(ListDiffersFrom(",,", "2024/01/05"));
    EXPECT_TRUE(ListDiffersFrom(",0,2024/01/05", "2024/02/01"));
    EXPECT_FALSE(ListDiffersFrom(",0,,2024/01/05", "2024/01/05"));

    // An absent value is accepted on any line, whatever the line holds.
    EXPECT_FALSE(ListDiffersFrom(",365", "0"));
    EXPECT_FALSE(ListDiffersFrom(",2024/01/05", QString()));

    EXPECT_FALSE(ListDiffersFrom(QString(), "365"));
    // "0" is absent only as a whole element.
    EXPECT_TRUE(ListDiffersFrom(",30", "3"));
    EXPECT_TRUE(ListDiffersFrom(",00", "365"));
}
