#include <gtest/gtest.h>

#include "startup/task_file.h"

namespace corvane {
namespace {

std::string Utf16Le(std::string_view ascii, bool mark = true) {
    std::string bytes = mark ? std::string("\xFF\xFE", 2) : std::string();
    for (const char c : ascii) {
        bytes.push_back(c);
        bytes.push_back('\0');
    }
    return bytes;
}

std::string Utf16Be(std::string_view ascii) {
    std::string bytes("\xFE\xFF", 2);
    for (const char c : ascii) {
        bytes.push_back('\0');
        bytes.push_back(c);
    }
    return bytes;
}

const std::string kHead = R"(<?xml version="1.0" encoding="UTF-16"?>
<Task version="1.2" xmlns="http://schemas.microsoft.com/windows/2004/02/mit/task">)";

std::string Task(const std::string& actions) { return kHead + "<Actions Context=\"Author\">" + actions + "</Actions></Task>"; }

using Execs = std::vector<std::pair<std::string, std::string>>;

Execs Of(const TaskFile& file) {
    Execs execs;
    for (const TaskExec& exec : file.execs) execs.emplace_back(exec.command, exec.arguments);
    return execs;
}

TEST(TaskFile, ExecActionsInTheirOddForms) {
    const struct {
        const char* what;
        std::string bytes;
        Execs expected;
    } cases[] = {
        {"UTF-16LE with its mark",
         Utf16Le(Task("<Exec><Command>C:\\Tools\\a.exe</Command><Arguments>/x</Arguments></Exec>")),
         {{"C:\\Tools\\a.exe", "/x"}}},
        {"UTF-16LE without a mark", Utf16Le(Task("<Exec><Command>n.exe</Command></Exec>"), false), {{"n.exe", ""}}},
        {"UTF-16BE with its mark", Utf16Be(Task("<Exec><Command>b.exe</Command></Exec>")), {{"b.exe", ""}}},
        {"UTF-8 with its mark", "\xEF\xBB\xBF" + Task("<Exec><Command>c.exe</Command></Exec>"), {{"c.exe", ""}}},
        {"UTF-8 without a mark, a letter beyond ASCII and one beyond the code page",
         Task("<Exec><Command>C:\\Caf\xC3\xA9\\\xE2\x82\xAC\\\xE4\xB8\xAD.exe</Command></Exec>"),
         {{"C:\\Caf\xE9\\\x80\\?.exe", ""}}},
        {"several actions in order, one without arguments, a mail action between",
         Task("<Exec><Command>one.exe</Command><Arguments>1</Arguments></Exec>"
              "<SendEmail><Server>x</Server></SendEmail>"
              "<Exec><Command>two.exe</Command></Exec>"
              "<Exec><Arguments>only</Arguments><Command>three.exe</Command></Exec>"),
         {{"one.exe", "1"}, {"two.exe", ""}, {"three.exe", "only"}}},
        {"entities, named and numeric",
         Task("<Exec><Command>&quot;C:\\A &amp; B\\x.exe&quot;</Command>"
              "<Arguments>&lt;in&gt; &apos;q&apos; &#65;&#x42;&#x20AC;</Arguments></Exec>"),
         {{"\"C:\\A & B\\x.exe\"", "<in> 'q' AB\x80"}}},
        {"CDATA and comments inside the fields",
         Task("<Exec><Command><![CDATA[C:\\<odd>&\\y.exe]]></Command>"
              "<Arguments>-a <!-- not this --> -b</Arguments></Exec>"),
         {{"C:\\<odd>&\\y.exe", "-a  -b"}}},
        {"namespace prefixes on the elements",
         R"(<?xml version="1.0"?><t:Task xmlns:t="urn:x"><t:Actions><t:Exec><t:Command>p.exe</t:Command>)"
         R"(<t:Arguments>q</t:Arguments></t:Exec></t:Actions></t:Task>)",
         {{"p.exe", "q"}}},
        {"blanks around the text fall away, a '>' in an attribute stays inside it",
         Task("<Exec id='a>b'>\r\n  <Command>\r\n    spaced.exe  \r\n  </Command>\r\n</Exec>"),
         {{"spaced.exe", ""}}},
        {"an Exec outside Actions and a Command outside Exec are no actions",
         kHead + "<Exec><Command>no.exe</Command></Exec><Actions><Command>no2.exe</Command></Actions></Task>",
         {}},
        {"a self-closing Exec is an action without a command", Task("<Exec/>"), {{"", ""}}},
        {"a doctype and processing instructions are passed over",
         "<!DOCTYPE Task [<!ELEMENT Task ANY>]>" + std::string("<?pi x?>") +
             "<Task><Actions><Exec><Command>d.exe</Command></Exec></Actions></Task>",
         {{"d.exe", ""}}},
        {"no actions at all", kHead + "</Task>", {}},
    };
    for (const auto& c : cases) {
        const TaskFile file = ReadTaskFile(c.bytes);
        EXPECT_TRUE(file.wellFormed) << c.what;
        EXPECT_EQ(Of(file), c.expected) << c.what;
    }
}

TEST(TaskFile, WhatIsNotWellFormedGivesNoActions) {
    const std::string exec = "<Exec><Command>a.exe</Command></Exec>";
    const struct {
        const char* what;
        std::string bytes;
    } cases[] = {
        {"empty", ""},
        {"only a declaration", "<?xml version=\"1.0\"?>"},
        {"cut in the middle", Task(exec).substr(0, 150)},
        {"an element left open", kHead + "<Actions>" + exec + "</Task>"},
        {"end tags crossed", kHead + "<Actions><Exec><Command>a.exe</Exec></Command></Actions></Task>"},
        {"two roots", Task(exec) + "<Task/>"},
        {"text outside the root", Task(exec) + "x"},
        {"an unknown entity", Task("<Exec><Command>&nbsp;a.exe</Command></Exec>")},
        {"an ampersand with no end", Task("<Exec><Command>a & b.exe</Command></Exec>")},
        {"a reference to character 0", Task("<Exec><Command>&#0;</Command></Exec>")},
        {"a reference past Unicode", Task("<Exec><Command>&#x110000;</Command></Exec>")},
        {"a comment with no end", Task(exec) + "<!-- open"},
        {"a CDATA section with no end", kHead + "<Actions><Exec><Command><![CDATA[x"},
        {"an attribute without quotes", "<Task a=b>" + exec + "</Task>"},
        {"attributes run together", "<Task a='1'b='2'></Task>"},
        {"a '<' in an attribute", "<Task a='<'></Task>"},
        {"a NUL in a name", std::string("<Ta\0sk></Ta\0sk>", 16)},
        {"a lone '<'", Task("<Exec><Command>a < b</Command></Exec>")},
        {"an odd byte at the end of UTF-16", Utf16Le(Task(exec)).substr(0, 99)},
    };
    for (const auto& c : cases) {
        const TaskFile file = ReadTaskFile(c.bytes);
        EXPECT_FALSE(file.wellFormed) << c.what;
        EXPECT_TRUE(file.execs.empty()) << c.what;
    }
}

TEST(TaskFile, DeepNestingNeedsNoStack) {
    std::string deep;
    for (int i = 0; i < 20000; ++i) deep += "<a>";
    EXPECT_FALSE(ReadTaskFile(deep).wellFormed);
    for (int i = 0; i < 20000; ++i) deep += "</a>";
    EXPECT_TRUE(ReadTaskFile(deep).wellFormed);
}

}  // namespace
}  // namespace corvane
