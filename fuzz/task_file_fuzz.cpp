// Task files. ReadTaskFile on any bytes stays inside them, gives no actions
// for a file that is not well-formed, and reads the same text the same way
// whatever form of UTF-16 carries it. Actions of any command and arguments,
// written as the Task Scheduler may write them (characters as they are, as
// UTF-8, as named or numeric references, inside CDATA, with a comment
// between), read back as those actions.
//
// Input: one byte; bit 0 clear, the rest is a task file. Bit 0 set, the rest
// is actions until the input ends: a byte choosing the forms, then the
// command and the arguments, each a byte of length and its bytes (a byte
// stands for a printable ASCII or Latin-1 character).
#include "fuzz_input.h"
#include "startup/task_file.h"

using namespace corvane;

// What a reading found, as one text to compare.
static std::string Found(const TaskFile& file) {
    std::string found(file.wellFormed ? "well-formed" : "not well-formed");
    for (const TaskExec& exec : file.execs) found += '\0' + exec.command + '\0' + exec.arguments;
    return found;
}

// A field's text as the file holds it, in the forms `style` picks.
static std::string Written(const std::string& text, uint8_t style) {
    std::string out, utf8;
    for (const char c : text) {
        const auto code = static_cast<unsigned char>(c);
        const std::string literal = code < 0x80 ? std::string(1, c) : std::string{static_cast<char>(0xC0 | code >> 6), static_cast<char>(0x80 | (code & 0x3F))};
        const char* named = c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : c == '"' ? "&quot;" : c == '\'' ? "&apos;" : nullptr;
        char reference[12];
        std::snprintf(reference, sizeof reference, style & 4 ? "&#x%X;" : "&#%u;", code);
        out += style & 2 ? reference : named ? named : literal;
        if (style & 8 && out.size() % 5 == 0) out += "<!-- -->";
        utf8 += literal;
    }
    return style & 1 && utf8.find("]]>") == std::string::npos ? "<![CDATA[" + utf8 + "]]>" : out;
}

FUZZ_PROPERTY(in) {
    if (in.Byte() & 1) {
        std::string xml = "\xEF\xBB\xBF<?xml version=\"1.0\"?><t:Task xmlns:t=\"x\"><t:Actions>";
        std::string expected = "well-formed";
        while (!in.AtEnd()) {
            const uint8_t style = in.Byte();
            std::string fields[2];
            for (std::string& field : fields) {
                field = in.Bytes(in.Byte());
                for (char& c : field) c = static_cast<unsigned char>(c) >= 0xA0 ? c : static_cast<char>(0x21 + static_cast<unsigned char>(c) % 94);
            }
            xml += "<t:Exec><t:Command> " + Written(fields[0], style) + " </t:Command><t:Arguments>" +
                   Written(fields[1], style >> 4) + "</t:Arguments></t:Exec><SendEmail/>";
            expected += '\0' + fields[0] + '\0' + fields[1];
        }
        CHECK(Found(ReadTaskFile(xml + "</t:Actions></t:Task>")) == expected);
        return;
    }
    const std::string bytes = in.Rest();
    const TaskFile file = ReadTaskFile(bytes);
    CHECK(file.wellFormed || file.execs.empty());

    // The same text once more, as UTF-16LE and as UTF-16BE with their marks.
    std::string little("\xFF\xFE", 2), big("\xFE\xFF", 2);
    for (const char16_t c : TaskFileText(bytes)) {
        little += {static_cast<char>(c & 0xFF), static_cast<char>(c >> 8)};
        big += {static_cast<char>(c >> 8), static_cast<char>(c & 0xFF)};
    }
    CHECK(Found(ReadTaskFile(little)) == Found(file) && Found(ReadTaskFile(big)) == Found(file));
}
