#include <gtest/gtest.h>

#include "base/DialogFilter.h"

using vexo::DialogFilterFromPipes;

TEST(DialogFilterFromPipes, OpenSpectrumFilter) {
    EXPECT_EQ(DialogFilterFromPipes("Text files (*.txt)|*.txt|Data files (*.dat)|*.dat|"
                                    "Spectrum files (*.spe)|*.spe|All files (*.*)|*.*"),
              "Text files (*.txt);;Data files (*.dat);;Spectrum files (*.spe);;All files (*)");
}

TEST(DialogFilterFromPipes, TrailingBarAndNamesWithoutPattern) {
    EXPECT_EQ(DialogFilterFromPipes("Text files (*.txt)|*.txt|"), "Text files (*.txt)");
    EXPECT_EQ(DialogFilterFromPipes("ROI files|*.roi;*.ROI"), "ROI files (*.roi *.ROI)");
    EXPECT_EQ(DialogFilterFromPipes("Anything"), "Anything (*)");
    EXPECT_EQ(DialogFilterFromPipes(""), "");
}
