#include "foundations/inventory_compare.h"

#include <deque>
#include <unordered_map>

#include "foundations/inventory.h"

namespace corvane {

namespace {

// The texts are UTF-8 here, so only ASCII letters are folded.
std::string LowerAscii(std::string text) {
    for (char& c : text) {
        if (c >= 'A' && c <= 'Z') c = static_cast<char>(c + ('a' - 'A'));
    }
    return text;
}

std::string KeyOf(const std::vector<std::string>& row) {
    return LowerAscii(row[kInvArea]) + '\n' + LowerAscii(row[kInvPlace]) + '\n' + LowerAscii(row[kInvName]);
}

std::string LabelOf(const std::vector<std::string>& row) {
    return row[kInvName] + " (" + row[kInvPlace] + ")";
}

}  // namespace

std::vector<ItemChange> CompareInventories(const InventoryRun& before, const InventoryRun& now) {
    // The earlier run's rows by key, each key's rows in their order.
    std::unordered_map<std::string, std::deque<size_t>> earlier;
    for (size_t i = 0; i < before.rows.size(); ++i) earlier[KeyOf(before.rows[i])].push_back(i);
    std::vector<bool> matched(before.rows.size(), false);

    static constexpr std::pair<int, const char*> kCompared[] = {
        {kInvState, "state"}, {kInvCommand, "command or path"}, {kInvSize, "size"}};
    std::vector<ItemChange> changes;
    for (const auto& row : now.rows) {
        auto found = earlier.find(KeyOf(row));
        if (found == earlier.end() || found->second.empty()) {
            changes.push_back({'+', row[kInvArea], LabelOf(row), {}});
            continue;
        }
        const size_t index = found->second.front();
        found->second.pop_front();
        matched[index] = true;
        const auto& old = before.rows[index];
        ItemChange change{'~', row[kInvArea], LabelOf(row), {}};
        for (const auto& [column, field] : kCompared) {
            if (old[column] != row[column]) change.fields.push_back({field, old[column], row[column]});
        }
        if (before.hashColumn && now.hashColumn && old[*before.hashColumn] != row[*now.hashColumn]) {
            change.fields.push_back({kInventoryHashColumn, old[*before.hashColumn], row[*now.hashColumn]});
        }
        if (!change.fields.empty()) changes.push_back(std::move(change));
    }
    for (size_t i = 0; i < before.rows.size(); ++i) {
        if (!matched[i]) changes.push_back({'-', before.rows[i][kInvArea], LabelOf(before.rows[i]), {}});
    }
    return changes;
}

std::string CompareReportBody(const std::vector<ItemChange>& changes, const std::vector<CompareArea>& areas) {
    std::string body;
    for (size_t a = 0; a < areas.size(); ++a) {
        if (a > 0) body += "\r\n";
        body += areas[a].caption + "\r\n" + std::string(areas[a].caption.size(), '-') + "\r\n";
        bool any = false;
        for (const ItemChange& change : changes) {
            if (change.area != areas[a].name) continue;
            any = true;
            body += std::string(1, change.kind) + " " + change.label + "\r\n";
            for (const FieldChange& field : change.fields) {
                body += "    " + field.field + ": " + field.before + " -> " + field.after + "\r\n";
            }
        }
        if (!any) body += "(no changes)\r\n";
    }
    return body;
}

}  // namespace corvane
