#pragma once
// What an area's block of the full report is collected from. Each area
// offers a writer of its block over this; the full report composes them.
#include <string>

#include "foundations/report_banner.h"
#include "platform/environment.h"
#include "platform/file_facts.h"
#include "platform/file_hasher.h"
#include "platform/process_table.h"
#include "platform/registry.h"
#include "platform/shortcuts.h"
#include "platform/text_encoding.h"

namespace corvane {

// What the full report collects from. Each area adds the ports it reads here.
struct FullReportPlatform {
    explicit FullReportPlatform(ReportPorts& ports) : report(ports) {}
    ReportPorts& report;
    // The files behind the rows and the program's folder with its stores
    // and reference lists. An area whose ports are not given writes no block.
    FileFacts* facts = nullptr;
    std::string appPath;
    // The process area: the live process table.
    ProcessTable* processes = nullptr;
    // The startup and browser areas: the registry and %VAR% references;
    // the startup area's shortcut files.
    Registry* registry = nullptr;
    Environment* environment = nullptr;
    ShortcutReader* shortcuts = nullptr;
    // When given, each block that names a file gains a line with its SHA-256.
    FileHasher* hasher = nullptr;
    // The system's ANSI code page: what the system keeps in UTF-16 (a cache
    // record's path, a task file) comes in through it, and the CSV's texts go
    // out from it to UTF-8. None: Windows-1252 in, the CSV's texts as they are.
    TextEncoding* encoding = nullptr;
};

}  // namespace corvane
