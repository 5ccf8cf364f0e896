#include "ui/sort_policy.h"

#include <gtest/gtest.h>

#include <vector>

namespace corvane {
namespace {

struct Step {
    int16_t click;
    int16_t column;  // sorted by after the click
    SortOrder order;
};

// Each list's sorting from its pane's load, over a run of clicks.
TEST(SortPolicies, ClicksGiveTheColumnAndOrderOfEachList) {
    constexpr auto Asc = SortOrder::Ascending;
    constexpr auto Desc = SortOrder::Descending;
    const struct {
        const char* list;
        SortPolicy policy;
        std::vector<Step> steps;
    } cases[] = {
        {"process/browser: the first click of all sorts descending", SortPolicy::FlipOnEveryClick,
         {{0, 0, Desc}, {0, 0, Asc}, {0, 0, Desc}}},
        {"process/browser: another column flips too", SortPolicy::FlipOnEveryClick,
         {{3, 3, Desc}, {5, 5, Asc}, {2, 2, Desc}, {2, 2, Asc}}},
        {"startup/applications: first click on the first column sorts descending", SortPolicy::FlipOnSameColumn,
         {{0, 0, Desc}, {0, 0, Asc}}},
        {"startup/applications: first click on another column sorts ascending", SortPolicy::FlipOnSameColumn,
         {{4, 4, Asc}, {4, 4, Desc}}},
        {"startup/applications: another column keeps the direction", SortPolicy::FlipOnSameColumn,
         {{2, 2, Asc}, {3, 3, Asc}, {2, 2, Asc}, {2, 2, Desc}, {7, 7, Desc}}},
    };
    for (const auto& c : cases) {
        SortState state = InitialSortState(c.policy);
        EXPECT_FALSE(state.sorted) << c.list << ": a list starts in the order of its fill";
        for (size_t i = 0; i < c.steps.size(); ++i) {
            state = AfterColumnClick(c.policy, state, c.steps[i].click);
            EXPECT_TRUE(state.sorted) << c.list << ", click " << i;
            EXPECT_EQ(state.column, c.steps[i].column) << c.list << ", click " << i;
            EXPECT_EQ(state.order, c.steps[i].order) << c.list << ", click " << i;
        }
    }
}

TEST(SortPolicies, TheBackupListNeverSorts) {
    SortState state = InitialSortState(SortPolicy::None);
    for (int16_t column : {0, 0, 2}) state = AfterColumnClick(SortPolicy::None, state, column);
    EXPECT_FALSE(state.sorted);
}

}  // namespace
}  // namespace corvane
