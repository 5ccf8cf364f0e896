#pragma once
// What changed between two runs of the console report: the items of the
// earlier run's CSV matched with the items collected now.
#include <optional>
#include <string>
#include <vector>

namespace corvane {

struct FieldChange {
    std::string field, before, after;
};

struct ItemChange {
    char kind = '+';    // '+' new, '-' gone, '~' changed
    std::string area;
    std::string label;  // the item's name and place
    std::vector<FieldChange> fields;  // for '~'
};

// One run's rows as InventoryFields lays them out; `hashColumn` is where the
// hash is, when that run has one.
struct InventoryRun {
    const std::vector<std::vector<std::string>>& rows;
    std::optional<size_t> hashColumn;
};

// Items are matched by area, place and name (without regard to ASCII case, as
// the registry and the file system compare them); a key that repeats matches
// in the order the runs list it. A matched pair differs when its state,
// command or path or size does, or its hash when both runs have hashes. The
// changes come in the order of the new run, the items gone after them.
std::vector<ItemChange> CompareInventories(const InventoryRun& before, const InventoryRun& now);

// The body of the comparison's report for the areas given (by name and
// caption, in the report's order): under each caption the lines of its
// changes, "(no changes)" when it has none, one empty line between areas.
struct CompareArea {
    std::string name, caption;
};
std::string CompareReportBody(const std::vector<ItemChange>& changes, const std::vector<CompareArea>& areas);

}  // namespace corvane
