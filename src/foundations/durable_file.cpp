#include "foundations/durable_file.h"

namespace corvane {

namespace {

SysError ReadsAs(FileSystem& files, const std::string& path, const std::string& text) {
    SysError error = kNoError;
    const auto back = files.Read(path, &error);
    if (!back) return error ? error : kWriteFault;
    return *back == text ? kNoError : kWriteFault;
}

}  // namespace

SysError WriteDurably(FileSystem& files, const std::string& path, const std::string& text) {
    if (const SysError error = files.WriteAtomic(path, text)) return error;
    return ReadsAs(files, path, text);
}

SysError CheckCopy(FileSystem& files, const std::string& original, const std::string& copy) {
    SysError error = kNoError;
    const auto bytes = files.Read(original, &error);
    if (!bytes) return error ? error : kWriteFault;
    return ReadsAs(files, copy, *bytes);
}

}  // namespace corvane
