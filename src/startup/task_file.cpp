#include "startup/task_file.h"

#include <cstdint>

#include "foundations/text.h"

namespace corvane {

namespace {

// A sequence of UTF-8 bytes as UTF-16; a byte that starts no valid sequence
// stands for one U+FFFD, which the ANSI form then shows as "?".
std::u16string FromUtf8(std::string_view bytes) {
    std::u16string text;
    text.reserve(bytes.size());
    size_t i = 0;
    while (i < bytes.size()) {
        const auto b = static_cast<unsigned char>(bytes[i]);
        size_t length = b < 0x80 ? 1 : (b >> 5) == 0x6 ? 2 : (b >> 4) == 0xE ? 3 : (b >> 3) == 0x1E ? 4 : 0;
        uint32_t code = length == 1 ? b : length == 2 ? (b & 0x1Fu) : length == 3 ? (b & 0x0Fu) : (b & 0x07u);
        bool valid = length != 0 && i + length <= bytes.size();
        for (size_t k = 1; valid && k < length; ++k) {
            const auto c = static_cast<unsigned char>(bytes[i + k]);
            if ((c & 0xC0) != 0x80) valid = false;
            code = (code << 6) | (c & 0x3Fu);
        }
        if (!valid || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) {
            text.push_back(u'\uFFFD');
            ++i;
            continue;
        }
        if (code >= 0x10000) {
            code -= 0x10000;
            text.push_back(static_cast<char16_t>(0xD800 + (code >> 10)));
            text.push_back(static_cast<char16_t>(0xDC00 + (code & 0x3FF)));
        } else {
            text.push_back(static_cast<char16_t>(code));
        }
        i += length;
    }
    return text;
}

std::u16string FromUtf16(std::string_view bytes, bool bigEndian) {
    std::u16string text;
    text.reserve(bytes.size() / 2);
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto first = static_cast<unsigned char>(bytes[i]);
        const auto second = static_cast<unsigned char>(bytes[i + 1]);
        text.push_back(static_cast<char16_t>(bigEndian ? (first << 8) | second : (second << 8) | first));
    }
    return text;
}

bool IsSpace(char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\n'; }

bool IsNameChar(char16_t c) {
    return c > u' ' && c != u'<' && c != u'>' && c != u'/' && c != u'=' && c != u'"' && c != u'\'' &&
           c != u'&' && c != u'!' && c != u'?';
}

std::u16string_view LocalName(std::u16string_view name) {
    const size_t colon = name.rfind(u':');
    return colon == std::u16string_view::npos ? name : name.substr(colon + 1);
}

std::string Trimmed(const std::u16string& text, TextEncoding& ansi) {
    size_t begin = 0, end = text.size();
    while (begin < end && IsSpace(text[begin])) ++begin;
    while (end > begin && IsSpace(text[end - 1])) --end;
    return ansi.AnsiOfUtf16(std::u16string_view(text).substr(begin, end - begin));
}

// The reader proper: one pass over the text, an explicit stack of the open
// elements' local names, and the Exec action being read.
class Reader {
public:
    Reader(std::u16string_view text, TextEncoding& ansi) : text_(text), ansi_(ansi) {}

    TaskFile Read() {
        TaskFile file;
        file.wellFormed = Walk() && roots_ == 1 && open_.empty();
        if (file.wellFormed) file.execs = std::move(execs_);
        file.enabled = !file.wellFormed || Trimmed(enabled_, ansi_) != "false";
        return file;
    }

private:
    bool Starts(std::u16string_view what) const { return text_.substr(at_, what.size()) == what; }

    // Moves past `end`; false when the text ends first.
    bool SkipPast(std::u16string_view end) {
        const size_t found = text_.find(end, at_);
        if (found == std::u16string_view::npos) return false;
        at_ = found + end.size();
        return true;
    }

    bool Walk() {
        while (at_ < text_.size()) {
            if (text_[at_] != u'<') {
                if (!Text()) return false;
                continue;
            }
            bool ok = false;
            if (Starts(u"<!--")) {
                ok = SkipPast(u"-->");
            } else if (Starts(u"<![CDATA[")) {
                const size_t begin = at_ + 9;
                ok = SkipPast(u"]]>");
                if (ok) {
                    if (open_.empty()) return false;
                    Collect(text_.substr(begin, at_ - 3 - begin));
                }
            } else if (Starts(u"<?")) {
                ok = SkipPast(u"?>");
            } else if (Starts(u"<!DOCTYPE")) {
                ok = !open_.empty() || roots_ != 0 ? false : Doctype();
            } else if (Starts(u"</")) {
                ok = EndTag();
            } else {
                ok = StartTag();
            }
            if (!ok) return false;
        }
        return true;
    }

    bool Doctype() {
        int depth = 0;
        for (; at_ < text_.size(); ++at_) {
            const char16_t c = text_[at_];
            if (c == u'[') ++depth;
            if (c == u']') --depth;
            if (c == u'>' && depth <= 0) {
                ++at_;
                return true;
            }
        }
        return false;
    }

    bool Text() {
        std::u16string chars;
        while (at_ < text_.size() && text_[at_] != u'<') {
            const char16_t c = text_[at_];
            if (c != u'&') {
                chars.push_back(c);
                ++at_;
                continue;
            }
            if (!Entity(chars)) return false;
        }
        if (open_.empty()) {
            // Outside the root only blanks may stand.
            for (const char16_t c : chars) {
                if (!IsSpace(c)) return false;
            }
            return true;
        }
        Collect(chars);
        return true;
    }

    // One reference at `at_` ("&amp;", "&#38;", "&#x26;") appended to `out`.
    bool Entity(std::u16string& out) {
        const size_t semicolon = text_.find(u';', at_);
        if (semicolon == std::u16string_view::npos || semicolon - at_ > 12) return false;
        const std::u16string_view name = text_.substr(at_ + 1, semicolon - at_ - 1);
        at_ = semicolon + 1;
        static const struct {
            std::u16string_view name;
            char16_t c;
        } named[] = {{u"amp", u'&'}, {u"lt", u'<'}, {u"gt", u'>'}, {u"quot", u'"'}, {u"apos", u'\''}};
        for (const auto& n : named) {
            if (name == n.name) {
                out.push_back(n.c);
                return true;
            }
        }
        if (name.size() < 2 || name[0] != u'#') return false;
        const bool hex = name[1] == u'x';
        const std::u16string_view digits = name.substr(hex ? 2 : 1);
        if (digits.empty()) return false;
        uint32_t code = 0;
        for (const char16_t d : digits) {
            uint32_t v = 0;
            if (d >= u'0' && d <= u'9') {
                v = d - u'0';
            } else if (hex && d >= u'a' && d <= u'f') {
                v = d - u'a' + 10;
            } else if (hex && d >= u'A' && d <= u'F') {
                v = d - u'A' + 10;
            } else {
                return false;
            }
            code = code * (hex ? 16 : 10) + v;
            if (code > 0x10FFFF) return false;
        }
        if (code == 0 || (code >= 0xD800 && code < 0xE000)) return false;
        if (code >= 0x10000) {
            code -= 0x10000;
            out.push_back(static_cast<char16_t>(0xD800 + (code >> 10)));
            out.push_back(static_cast<char16_t>(0xDC00 + (code & 0x3FF)));
        } else {
            out.push_back(static_cast<char16_t>(code));
        }
        return true;
    }

    std::u16string_view Name() {
        const size_t begin = at_;
        while (at_ < text_.size() && IsNameChar(text_[at_])) ++at_;
        return text_.substr(begin, at_ - begin);
    }

    void SkipSpace() {
        while (at_ < text_.size() && IsSpace(text_[at_])) ++at_;
    }

    bool StartTag() {
        ++at_;
        const std::u16string_view name = Name();
        if (name.empty()) return false;
        // Attributes: name = "value" or 'value'; their values are not needed,
        // but a ">" inside one must not end the tag.
        for (;;) {
            const size_t before = at_;
            SkipSpace();
            if (at_ >= text_.size()) return false;
            if (text_[at_] == u'>' || Starts(u"/>")) break;
            if (at_ == before) return false;  // attributes stand apart
            if (Name().empty()) return false;
            SkipSpace();
            if (at_ >= text_.size() || text_[at_] != u'=') return false;
            ++at_;
            SkipSpace();
            if (at_ >= text_.size() || (text_[at_] != u'"' && text_[at_] != u'\'')) return false;
            const size_t close = text_.find(text_[at_], at_ + 1);
            if (close == std::u16string_view::npos) return false;
            if (text_.substr(at_ + 1, close - at_ - 1).find(u'<') != std::u16string_view::npos) return false;
            at_ = close + 1;
        }
        if (open_.empty()) {
            if (++roots_ > 1) return false;
        }
        Open(name);
        if (Starts(u"/>")) {
            at_ += 2;
            Close();
        } else {
            ++at_;
        }
        return true;
    }

    bool EndTag() {
        at_ += 2;
        const std::u16string_view name = Name();
        SkipSpace();
        if (at_ >= text_.size() || text_[at_] != u'>') return false;
        ++at_;
        if (open_.empty() || open_.back() != name) return false;
        Close();
        return true;
    }

    // Where the reader stands among the open elements.
    bool InExec() const {
        const size_t n = open_.size();
        return n >= 2 && LocalName(open_[n - 1]) == u"Exec" && LocalName(open_[n - 2]) == u"Actions";
    }

    void Open(std::u16string_view name) {
        const std::u16string_view local = LocalName(name);
        // The task's own switch, Task/Settings/Enabled; a trigger's Enabled is another.
        const bool taskSwitch = open_.size() == 2 && LocalName(open_[1]) == u"Settings" && local == u"Enabled";
        if ((InExec() && (local == u"Command" || local == u"Arguments")) || taskSwitch) {
            field_ = taskSwitch ? &enabled_ : local == u"Command" ? &command_ : &arguments_;
            fieldDepth_ = open_.size() + 1;
            field_->clear();
        }
        open_.push_back(name);
        if (InExec()) {
            execDepth_ = open_.size();
            command_.clear();
            arguments_.clear();
        }
    }

    void Close() {
        if (field_ && open_.size() == fieldDepth_) field_ = nullptr;
        if (execDepth_ != 0 && open_.size() == execDepth_) {
            execs_.push_back({Trimmed(command_, ansi_), Trimmed(arguments_, ansi_)});
            execDepth_ = 0;
        }
        open_.pop_back();
    }

    // Text that stands directly in a Command or Arguments element counts.
    void Collect(std::u16string_view chars) {
        if (field_ && open_.size() == fieldDepth_) field_->append(chars);
    }

    std::u16string_view text_;
    TextEncoding& ansi_;
    size_t at_ = 0;
    std::vector<std::u16string_view> open_;
    int roots_ = 0;
    size_t execDepth_ = 0;   // depth of the Exec being read; 0 for none
    size_t fieldDepth_ = 0;  // depth of the Command or Arguments being read
    std::u16string* field_ = nullptr;
    std::u16string command_, arguments_, enabled_;
    std::vector<TaskExec> execs_;
};

}  // namespace

std::u16string TaskFileText(std::string_view bytes) {
    if (bytes.size() >= 2 && bytes[0] == '\xFF' && bytes[1] == '\xFE') return FromUtf16(bytes.substr(2), false);
    if (bytes.size() >= 2 && bytes[0] == '\xFE' && bytes[1] == '\xFF') return FromUtf16(bytes.substr(2), true);
    if (bytes.size() >= 3 && bytes.substr(0, 3) == "\xEF\xBB\xBF") return FromUtf8(bytes.substr(3));
    // No mark: a file that begins with "<" as UTF-16 still says which it is.
    if (bytes.size() >= 2 && bytes[0] == '<' && bytes[1] == '\0') return FromUtf16(bytes, false);
    if (bytes.size() >= 2 && bytes[0] == '\0' && bytes[1] == '<') return FromUtf16(bytes, true);
    return FromUtf8(bytes);
}

TaskFile ReadTaskFile(std::string_view bytes, TextEncoding& ansi) {
    const std::u16string text = TaskFileText(bytes);
    return Reader(text, ansi).Read();
}

}  // namespace corvane
