#include "foundations/json.h"

#include <charconv>

#include <nlohmann/json.hpp>

#include "foundations/text.h"

namespace corvane {

using Json = nlohmann::json;

struct JsonDocument::Tree {
    Json root;
};

namespace {

const Json* Node(const void* node) { return static_cast<const Json*>(node); }

// The deepest nesting of brackets outside strings, stopping once past `limit`,
// so the parser never meets a text that could exhaust its stack or ours.
bool NestsWithin(std::string_view text, size_t limit) {
    size_t depth = 0;
    bool inString = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (inString) {
            if (c == '\\') ++i;
            else if (c == '"') inString = false;
        } else if (c == '"') {
            inString = true;
        } else if (c == '[' || c == '{') {
            if (++depth > limit) return false;
        } else if ((c == ']' || c == '}') && depth > 0) {
            --depth;
        }
    }
    return true;
}

}  // namespace

bool JsonValue::IsObject() const { return node_ && Node(node_)->is_object(); }
bool JsonValue::IsArray() const { return node_ && Node(node_)->is_array(); }
bool JsonValue::IsString() const { return node_ && Node(node_)->is_string(); }
bool JsonValue::IsNumber() const { return node_ && Node(node_)->is_number(); }
bool JsonValue::IsBool() const { return node_ && Node(node_)->is_boolean(); }

JsonValue JsonValue::operator[](std::string_view member) const {
    if (!IsObject()) return {};
    const Json& object = *Node(node_);
    const auto found = object.find(member);
    return found == object.end() ? JsonValue() : JsonValue(&*found);
}

JsonValue JsonValue::MemberAnyCase(std::string_view member) const {
    if (!IsObject()) return {};
    for (const auto& [name, value] : Node(node_)->items()) {
        if (SameTextIgnoringCase(name, member)) return JsonValue(&value);
    }
    return {};
}

std::vector<std::pair<std::string, JsonValue>> JsonValue::Members() const {
    std::vector<std::pair<std::string, JsonValue>> members;
    if (IsObject()) {
        for (const auto& [name, value] : Node(node_)->items()) members.emplace_back(name, JsonValue(&value));
    }
    return members;
}

std::vector<JsonValue> JsonValue::Items() const {
    std::vector<JsonValue> items;
    if (IsArray()) {
        for (const Json& item : *Node(node_)) items.push_back(JsonValue(&item));
    }
    return items;
}

std::optional<std::string> JsonValue::String() const {
    if (!IsString()) return std::nullopt;
    return Node(node_)->get_ref<const std::string&>();
}

std::optional<int64_t> JsonValue::Integer() const {
    if (!node_) return std::nullopt;
    const Json& node = *Node(node_);
    // A number past INT64_MAX comes back negative, which no reader takes.
    if (node.is_number_integer()) return node.get<int64_t>();
    if (!node.is_string()) return std::nullopt;
    const std::string& text = node.get_ref<const std::string&>();
    int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return value;
}

std::optional<bool> JsonValue::Bool() const {
    if (!IsBool()) return std::nullopt;
    return Node(node_)->get<bool>();
}

std::optional<JsonDocument> JsonDocument::Parse(std::string_view text) {
    if (text.size() > kJsonMaxBytes || !NestsWithin(text, kJsonMaxDepth)) return std::nullopt;
    // No exceptions: a text the parser turns away comes back as a discarded value.
    Json root = Json::parse(text.begin(), text.end(), nullptr, false);
    if (root.is_discarded()) return std::nullopt;
    JsonDocument document;
    document.tree_ = std::make_shared<const Tree>(Tree{std::move(root)});
    return document;
}

JsonValue JsonDocument::Root() const { return JsonValue(&tree_->root); }

std::optional<JsonDocument> ReadJsonFile(FileSystem& files, const std::string& path) {
    const std::optional<std::string> text = files.Read(path, nullptr, kJsonMaxBytes);
    if (!text) return std::nullopt;
    return JsonDocument::Parse(*text);
}

}  // namespace corvane
